/// @file
/// The records that other records are built from. Their layout is part of the binary interface.
#pragma once

#include "Quarry/Framing.h"

/// A frame or picture, by pointer to its pixels: three bytes per pixel.
///
/// Frames are read as packed (`width` x 3 bytes per row) whatever `stride` says, unless an operation says
/// otherwise.
typedef struct Image {
    uint8_t* data;       ///< first pixel byte
    int32_t width;       ///< pixels per row
    int32_t height;      ///< rows
    int32_t stride;      ///< bytes from one row to the next
    uint64_t timestamp;  ///< frame time in ticks of 100 ns (10,000,000 per second)
} Image;

QUARRY_LAYOUT_SIZE(Image, 32);
QUARRY_LAYOUT_FIELD(Image, data, 0);
QUARRY_LAYOUT_FIELD(Image, width, 8);
QUARRY_LAYOUT_FIELD(Image, height, 12);
QUARRY_LAYOUT_FIELD(Image, stride, 16);
QUARRY_LAYOUT_FIELD(Image, timestamp, 24);

/// One byte per pixel, rows packed (`width` bytes apart).
typedef struct Mask {
    uint8_t* data;   ///< first pixel byte
    int32_t width;   ///< pixels per row
    int32_t height;  ///< rows
} Mask;

QUARRY_LAYOUT_SIZE(Mask, 16);
QUARRY_LAYOUT_FIELD(Mask, data, 0);
QUARRY_LAYOUT_FIELD(Mask, width, 8);
QUARRY_LAYOUT_FIELD(Mask, height, 12);

/// A point: relative (fractions of the frame's width and height) or in pixels, as its owner says.
typedef struct FloatPoint {
    float X;  ///< to the right
    float Y;  ///< down
} FloatPoint;

QUARRY_LAYOUT_SIZE(FloatPoint, 8);
QUARRY_LAYOUT_FIELD(FloatPoint, X, 0);
QUARRY_LAYOUT_FIELD(FloatPoint, Y, 4);

/// A closed contour.
typedef struct Contour {
    FloatPoint* Points;  ///< `Count` points, relative
    int32_t Count;       ///< number of points
    float Area;          ///< share of the frame's area, 0..1
    float Perimeter;     ///< length in pixels / frame width
} Contour;

QUARRY_LAYOUT_SIZE(Contour, 24);
QUARRY_LAYOUT_FIELD(Contour, Points, 0);
QUARRY_LAYOUT_FIELD(Contour, Count, 8);
QUARRY_LAYOUT_FIELD(Contour, Area, 12);
QUARRY_LAYOUT_FIELD(Contour, Perimeter, 16);

/// A rectangle in fractions of the frame's width and height.
typedef struct RelRect {
    float X;       ///< left side, share of the width
    float Y;       ///< upper side, share of the height
    float Width;   ///< share of the width
    float Height;  ///< share of the height
} RelRect;

QUARRY_LAYOUT_SIZE(RelRect, 16);
QUARRY_LAYOUT_FIELD(RelRect, X, 0);
QUARRY_LAYOUT_FIELD(RelRect, Y, 4);
QUARRY_LAYOUT_FIELD(RelRect, Width, 8);
QUARRY_LAYOUT_FIELD(RelRect, Height, 12);

/// A rectangle in pixels.
typedef struct PixelRect {
    int16_t X;       ///< left side, pixels
    int16_t Y;       ///< upper side, pixels
    int16_t Width;   ///< pixels
    int16_t Height;  ///< pixels
} PixelRect;

QUARRY_LAYOUT_SIZE(PixelRect, 8);
QUARRY_LAYOUT_FIELD(PixelRect, X, 0);
QUARRY_LAYOUT_FIELD(PixelRect, Y, 2);
QUARRY_LAYOUT_FIELD(PixelRect, Width, 4);
QUARRY_LAYOUT_FIELD(PixelRect, Height, 6);

/// An array of rectangles.
typedef struct RectArray {
    int32_t Count;   ///< number of rectangles
    RelRect* Rects;  ///< `Count` rectangles
} RectArray;

QUARRY_LAYOUT_SIZE(RectArray, 16);
QUARRY_LAYOUT_FIELD(RectArray, Count, 0);
QUARRY_LAYOUT_FIELD(RectArray, Rects, 8);

/// An array of points.
typedef struct PointArray {
    union {
        int32_t Count;        ///< number of points; PointsCount is another name of it
        int32_t PointsCount;  ///< the same number; both names are part of the interface
    };
    FloatPoint* Points;  ///< `Count` points
} PointArray;

QUARRY_LAYOUT_SIZE(PointArray, 16);
QUARRY_LAYOUT_FIELD(PointArray, Count, 0);
QUARRY_LAYOUT_FIELD(PointArray, PointsCount, 0);
QUARRY_LAYOUT_FIELD(PointArray, Points, 8);

/// One float per pixel, rows packed.
typedef struct FloatImage {
    int32_t width;   ///< pixels per row
    int32_t height;  ///< rows
    float* data;     ///< `width` x `height` floats
} FloatImage;

QUARRY_LAYOUT_SIZE(FloatImage, 16);
QUARRY_LAYOUT_FIELD(FloatImage, width, 0);
QUARRY_LAYOUT_FIELD(FloatImage, height, 4);
QUARRY_LAYOUT_FIELD(FloatImage, data, 8);

/// A displacement.
typedef struct AbsVector {
    float Dx;  ///< pixels to the right
    float Dy;  ///< pixels down
} AbsVector;

QUARRY_LAYOUT_SIZE(AbsVector, 8);
QUARRY_LAYOUT_FIELD(AbsVector, Dx, 0);
QUARRY_LAYOUT_FIELD(AbsVector, Dy, 4);

/// A motion field: one displacement per pixel, rows packed.
typedef struct AbsVectorMatrix {
    int32_t width;    ///< pixels per row
    int32_t height;   ///< rows
    AbsVector* data;  ///< `width` x `height` displacements
} AbsVectorMatrix;

QUARRY_LAYOUT_SIZE(AbsVectorMatrix, 16);
QUARRY_LAYOUT_FIELD(AbsVectorMatrix, width, 0);
QUARRY_LAYOUT_FIELD(AbsVectorMatrix, height, 4);
QUARRY_LAYOUT_FIELD(AbsVectorMatrix, data, 8);

/// A detection.
typedef struct Response {
    double Weight;  ///< how sure the people detector is: 0 or more, larger is surer; a cascade does not set it
    RelRect Rect;   ///< where it is
} Response;

QUARRY_LAYOUT_SIZE(Response, 24);
QUARRY_LAYOUT_FIELD(Response, Weight, 0);
QUARRY_LAYOUT_FIELD(Response, Rect, 8);

/// A contour and its centre of mass.
typedef struct Cluster {
    struct Contour* Contour;  ///< the outline
    float CenterX;            ///< share of the frame's width
    float CenterY;            ///< share of the frame's height
} Cluster;

QUARRY_LAYOUT_SIZE(Cluster, 16);
QUARRY_LAYOUT_FIELD(Cluster, Contour, 0);
QUARRY_LAYOUT_FIELD(Cluster, CenterX, 8);
QUARRY_LAYOUT_FIELD(Cluster, CenterY, 12);
