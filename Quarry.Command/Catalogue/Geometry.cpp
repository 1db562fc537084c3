#include "Catalogue/Describing.h"
#include "Catalogue/Families.h"

namespace quarry::command {
namespace {

Operation RectExtractor() {
    return {
        "rect-extractor",
        "A rotated rectangle cut out of a frame, upright",
        Kind::Processor,
        "CreateCVRectExtractor",
        "rect",
        "",
        QUARRY_RECORD(RectExtractorOptions, "How pixels are interpolated.",
                      QUARRY_FIELD(RectExtractorOptions, Header, kHeader),
                      QUARRY_FIELD(RectExtractorOptions, Reserved, kNotRead),
                      QUARRY_FIELD(RectExtractorOptions, Interpolation, "1 bilinear, any other nearest neighbour")),
        QUARRY_RECORD(
            RectExtractorData, "A frame and the rectangle to cut.", QUARRY_FIELD(RectExtractorData, Header, kHeader),
            QUARRY_FIELD(RectExtractorData, Image, "8-bit, 3 channels, rows packed; timestamp goes to the result"),
            QUARRY_FIELD(RectExtractorData, CenterX, "centre of the rectangle, column in pixels"),
            QUARRY_FIELD(RectExtractorData, CenterY, "centre of the rectangle, row in pixels"),
            QUARRY_FIELD(RectExtractorData, Width, "of the output, pixels, 0 or more"),
            QUARRY_FIELD(RectExtractorData, Height, "of the output, pixels, 0 or more"),
            QUARRY_FIELD(RectExtractorData, Angle, "degrees; counts in single precision")),
        QUARRY_RECORD(RectExtractorResult, "The cut; give it back with DisposeResult.",
                      QUARRY_FIELD(RectExtractorResult, Status, kStatus),
                      QUARRY_FIELD(RectExtractorResult, Image,
                                   "Width x Height pixels, rows packed, black beyond the frame; stride is (input "
                                   "stride / input width) x Width")),
        {kWrongFrame,
         {"std::invalid_argument",
          "the frame's width is 0, a size is negative, or the stride leaves no room for packed rows (3 x width bytes "
          "each)"},
         {"cv::Exception",
          "the frame is too large to warp (32767 pixels and more a side); both sizes are written to the standard "
          "output first"}}};
}

Record TransformOptionsRecord() {
    return QUARRY_RECORD(TransformOptions, "Size of the output.", QUARRY_FIELD(TransformOptions, Header, kHeader),
                         QUARRY_FIELD(TransformOptions, Reserved, kNotRead),
                         QUARRY_FIELD(TransformOptions, Width, "pixels"),
                         QUARRY_FIELD(TransformOptions, Height, "pixels"));
}

Record TransformResultRecord() {
    return QUARRY_RECORD(TransformResult, "The transformed frame; give it back with DisposeResult.",
                         QUARRY_FIELD(TransformResult, Status, kStatus),
                         QUARRY_FIELD(TransformResult, ResultImage,
                                      "of the options' size, 3 channels, rows packed, with the frame's timestamp"));
}

Operation PointAlignment() {
    return {
        "point-alignment",
        "Aligns a frame to a layout of five points with the best similarity transform",
        Kind::Processor,
        "CreateCVAffineTransformProcessor",
        "align",
        "Umeyama, IEEE TPAMI 13(4), 1991",
        TransformOptionsRecord(),
        QUARRY_RECORD(
            AffineTransformData, "A frame and the point pairs to align.",
            QUARRY_FIELD(AffineTransformData, Header, kHeader),
            QUARRY_FIELD(AffineTransformData, Frame, "8-bit, 3 channels, rows packed; timestamp goes to the result"),
            QUARRY_FIELD(AffineTransformData, DstPoints, "5 points, output pixels"),
            QUARRY_FIELD(AffineTransformData, SrcPoints, "5 points, frame pixels")),
        TransformResultRecord(),
        {kWrongFrame,
         {"abort", "either number of points is not 5: the process ends"},
         {"std::invalid_argument", "Points is null, a size is negative, or the output has more than 2147483647 bytes"},
         kNoFrame,
         {"cv::Exception", "the frame is too large to warp"}}};
}

Operation FrameRotation() {
    return {
        "frame-rotation",
        "Turns a frame about its centre, and scales it, on a canvas that holds the whole turned frame",
        Kind::Processor,
        "CreateCVRotationTransformProcessor",
        "rotate",
        "",
        TransformOptionsRecord(),
        QUARRY_RECORD(RotationTransformData, "A frame and how to turn it.",
                      QUARRY_FIELD(RotationTransformData, Header, kHeader),
                      QUARRY_FIELD(RotationTransformData, Frame,
                                   "8-bit, 3 channels, rows packed, taken to be of the options' size; stride and "
                                   "timestamp go to the result"),
                      QUARRY_FIELD(RotationTransformData, Angle, "degrees, positive turns counter-clockwise"),
                      QUARRY_FIELD(RotationTransformData, Scale, "factor; changes the picture, not the canvas")),
        TransformResultRecord(),
        {kWrongFrame,
         {"std::invalid_argument",
          "a side of the options' size is negative, or stride leaves no room for packed rows (3 x width bytes each)"},
         {"cv::Exception", "data is null while the size is not empty, or the size or the canvas is empty"}}};
}

}  // namespace

std::vector<Operation> GeometryOperations() {
    return {RectExtractor(), PointAlignment(), FrameRotation()};
}

}  // namespace quarry::command
