#pragma once

#include <algorithm>
#include <cassert>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "Quarry.Frame/Processor.h"
#include "Quarry.Frame/Records/Buffers.h"
#include "Quarry.OpenCV/CheckArray.h"
#include "Quarry.OpenCV/PixelOf.h"

/// How fast an object's shape changes: the distance of two of its contours by their Hu moments (Hu, 1962), per second.
///
/// Contours are in relative coordinates and are first scaled to whole pixels of the frame. If a side of the frame is 0,
/// the result is the default rate. Identical contours give 0; an interval of 0 gives infinity or not-a-number.
///
/// Points are read in place during the call. The result holds no buffer. A contour without points aborts the process.
/// @throws MarshalingException    a record's length word or tag is wrong; the result record is untouched
/// @throws std::bad_alloc         `Count` of a contour is negative
/// @throws std::invalid_argument  `Points` is null while `Count` is above 0
/// @throws cv::Exception          `MatchMethod` is unknown
class ContourRateMeasuringProcessor
    : public Processor<ContourRateMeasuringOptions, ContourRateMeasuringInputData, ContourRateMeasuringOutputData> {
public:
    using Processor::Processor;

    ContourRateMeasuringOutputData DoProcess(ContourRateMeasuringInputData data) override;

private:
    /// A contour in pixels of the frame, truncated.
    /// @param field  the record's field of its points
    static std::vector<cv::Point> ToPixels(const char* field, const Contour& contour, int width, int height) {
        quarry::CheckArray(field, contour.Points, contour.Count, "points");
        std::vector<cv::Point> pixels(quarry::ArraySize(contour.Count));
        std::transform(contour.Points, contour.Points + contour.Count, pixels.begin(),
                       [&](const FloatPoint& point) { return quarry::PixelOf(point, width, height); });
        return pixels;
    }
};
