#pragma once

#include <opencv2/core.hpp>

#include "Operations/Handle.h"

namespace quarry::host {

/// The variance of the Laplacian of frames, in squared grey levels.
class SharpnessMeter {
public:
    SharpnessMeter();

    float Measure(const cv::Mat& frame);

private:
    Handle handle;
};

/// Where a face is, in pixels; all within 16 bits.
struct FaceEllipse {
    int x;           ///< centre
    int y;           ///< centre
    int halfWidth;   ///< 0 or more
    int halfHeight;  ///< 0 or more
};

/// The same of frames that are black outside an ellipse.
class FaceSharpnessMeter {
public:
    FaceSharpnessMeter();

    float Measure(const cv::Mat& frame, const FaceEllipse& face);

private:
    Handle handle;
};

}  // namespace quarry::host
