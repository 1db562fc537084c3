#include "Catalogue/Describing.h"

namespace quarry::command {

template <>
const Record& SharedRecord<Image>() {
    static const Record kRecord =
        QUARRY_RECORD(Image, "A frame or picture, by pointer to its pixels: three bytes per pixel.",
                      QUARRY_FIELD(Image, data, "first pixel byte"), QUARRY_FIELD(Image, width, "pixels per row"),
                      QUARRY_FIELD(Image, height, "rows"),
                      QUARRY_FIELD(Image, stride,
                                   "bytes from one row to the next; frames are read as packed (3 x width bytes per "
                                   "row) whatever it says, unless the operation says otherwise"),
                      QUARRY_FIELD(Image, timestamp, "frame time in ticks of 100 ns"));
    return kRecord;
}

template <>
const Record& SharedRecord<Mask>() {
    static const Record kRecord = QUARRY_RECORD(
        Mask, "One byte per pixel, rows packed (width bytes apart).", QUARRY_FIELD(Mask, data, "first pixel byte"),
        QUARRY_FIELD(Mask, width, "pixels per row"), QUARRY_FIELD(Mask, height, "rows"));
    return kRecord;
}

template <>
const Record& SharedRecord<FloatPoint>() {
    static const Record kRecord = QUARRY_RECORD(
        FloatPoint, "A point: relative (fractions of the frame's width and height) or in pixels, as its owner says.",
        QUARRY_FIELD(FloatPoint, X, "to the right"), QUARRY_FIELD(FloatPoint, Y, "down"));
    return kRecord;
}

template <>
const Record& SharedRecord<Contour>() {
    static const Record kRecord =
        QUARRY_RECORD(Contour, "A closed contour.", QUARRY_FIELD(Contour, Points, "Count points, relative"),
                      QUARRY_FIELD(Contour, Count, "number of points"),
                      QUARRY_FIELD(Contour, Area, "share of the frame's area, 0..1"),
                      QUARRY_FIELD(Contour, Perimeter, "length in pixels / frame width"));
    return kRecord;
}

template <>
const Record& SharedRecord<RelRect>() {
    static const Record kRecord = QUARRY_RECORD(RelRect, "A rectangle in fractions of the frame's width and height.",
                                                QUARRY_FIELD(RelRect, X, "left side, share of the width"),
                                                QUARRY_FIELD(RelRect, Y, "upper side, share of the height"),
                                                QUARRY_FIELD(RelRect, Width, "share of the width"),
                                                QUARRY_FIELD(RelRect, Height, "share of the height"));
    return kRecord;
}

template <>
const Record& SharedRecord<PixelRect>() {
    static const Record kRecord =
        QUARRY_RECORD(PixelRect, "A rectangle in pixels.", QUARRY_FIELD(PixelRect, X, "left side, pixels"),
                      QUARRY_FIELD(PixelRect, Y, "upper side, pixels"), QUARRY_FIELD(PixelRect, Width, "pixels"),
                      QUARRY_FIELD(PixelRect, Height, "pixels"));
    return kRecord;
}

template <>
const Record& SharedRecord<PointArray>() {
    static const Record kRecord =
        QUARRY_RECORD(PointArray, "An array of points.",
                      QUARRY_FIELD(PointArray, Count, "number of points; PointsCount is another name of it"),
                      QUARRY_FIELD(PointArray, Points, "Count points"));
    return kRecord;
}

template <>
const Record& SharedRecord<AbsVector>() {
    static const Record kRecord =
        QUARRY_RECORD(AbsVector, "A displacement.", QUARRY_FIELD(AbsVector, Dx, "pixels to the right"),
                      QUARRY_FIELD(AbsVector, Dy, "pixels down"));
    return kRecord;
}

template <>
const Record& SharedRecord<AbsVectorMatrix>() {
    static const Record kRecord = QUARRY_RECORD(
        AbsVectorMatrix, "A motion field: one displacement per pixel, rows packed.",
        QUARRY_FIELD(AbsVectorMatrix, width, "pixels per row"), QUARRY_FIELD(AbsVectorMatrix, height, "rows"),
        QUARRY_FIELD(AbsVectorMatrix, data, "width x height displacements"));
    return kRecord;
}

template <>
const Record& SharedRecord<Response>() {
    static const Record kRecord = QUARRY_RECORD(
        Response, "A detection.",
        QUARRY_FIELD(Response, Weight,
                     "how sure the people detector is: 0 or more, larger is surer; a cascade does not set it"),
        QUARRY_FIELD(Response, Rect, "where it is"));
    return kRecord;
}

template <>
const Record& SharedRecord<Cluster>() {
    static const Record kRecord =
        QUARRY_RECORD(Cluster, "A contour and its centre of mass.", QUARRY_FIELD(Cluster, Contour, "the outline"),
                      QUARRY_FIELD(Cluster, CenterX, "share of the frame's width"),
                      QUARRY_FIELD(Cluster, CenterY, "share of the frame's height"));
    return kRecord;
}

Record PlainOptions() {
    return QUARRY_RECORD(ProcessOptions, "Holds nothing that is read.", QUARRY_FIELD(ProcessOptions, Header, kHeader),
                         QUARRY_FIELD(ProcessOptions, Reserved, kNotRead));
}

}  // namespace quarry::command
