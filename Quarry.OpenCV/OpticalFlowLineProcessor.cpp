#include "Quarry.OpenCV/OpticalFlowLineProcessor.h"

#include <algorithm>
#include <cstddef>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <string>

#include "Quarry.OpenCV/CVHelper.h"
#include "Quarry.OpenCV/LineDistance.h"
#include "Quarry.OpenCV/PendingResult.h"
#include "Quarry.OpenCV/PixelOf.h"
#include "Quarry.OpenCV/Truncate.h"
#include "Quarry/Memory.h"

namespace {

/// @param value  not negative
int RoundHalfUp(float value) {
    return quarry::Truncate(static_cast<double>(value) + 0.5);
}

/// The index, among `length` values, of the i-th of `count` evenly picked ones.
int PickedIndex(int i, int length, int count) {
    const int index = RoundHalfUp(static_cast<float>(i) * static_cast<float>(length) / static_cast<float>(count));
    return std::min(index, length - 1);
}

/// Picks `count` values from the profile of a line with more pixels, and computes only these. The moved pixels are
/// collected first, so that the compiler vectorises the distances.
void PickProjections(const cv::Mat& flow, const cv::Point2f& p1, const cv::Point2f& p2, cv::LineIterator line,
                     float* out, int count) {
    std::vector<cv::Point2f> moved(static_cast<std::size_t>(count));
    int at = 0;
    for (int i = 0; i < count; ++i) {
        for (const int index = PickedIndex(i, line.count, count); at < index; ++at) ++line;
        moved[static_cast<std::size_t>(i)] = quarry::MovedPixel(flow, line);
    }
    const quarry::LineDistance distance(p1, p2);
    std::transform(moved.begin(), moved.end(), out, distance);
}

}  // namespace

OFLineResult OpticalFlowLineProcessor::DoProcess(OFLineData data) {
    if (data.ValuesCount < 0) {
        throw std::invalid_argument("OFLineData.ValuesCount is " + std::to_string(data.ValuesCount) +
                                    "; 0 or more is allowed");
    }
    quarry::PendingResult result(CreateOFLineResult(data.ValuesCount), DestroyOFLineResult);
    const AbsVectorMatrix* const field = data.FlowMatrix;
    if (field == nullptr || field->data == nullptr || field->width <= 0 || field->height <= 0) return result.HandOver();

    const cv::Mat flow(field->height, field->width, CV_32FC2, field->data,
                       static_cast<std::size_t>(field->width) * sizeof(AbsVector));
    const cv::Point start = quarry::PixelOf({data.LineStartX, data.LineStartY}, field->width, field->height);
    const cv::Point end = quarry::PixelOf({data.LineEndX, data.LineEndY}, field->width, field->height);
    const cv::LineIterator line(flow, start, end, 8, false);
    if (line.count > data.ValuesCount) {
        PickProjections(flow, start, end, line, result->Values, data.ValuesCount);
    } else if (line.count > 0) {
        CopyBufferToResult(CVHelper::GetVectorProjectionOntoNormal(flow, start, end, line), result->Values,
                           data.ValuesCount);
    }
    return result.HandOver();
}

void OpticalFlowLineProcessor::DoDisposeData(OFLineResult* result) {
    DestroyOFLineResult(result);
}

void OpticalFlowLineProcessor::CopyBufferToResult(const std::vector<float>& buffer, float* out, int count) {
    const int length = static_cast<int>(buffer.size());
    if (count > length) {
        const int repeats = RoundHalfUp(static_cast<float>(count) / static_cast<float>(length));
        for (int i = 0; i < count; ++i) out[i] = buffer[static_cast<std::size_t>(std::min(i / repeats, length - 1))];
    } else {
        for (int i = 0; i < count; ++i) out[i] = buffer[static_cast<std::size_t>(PickedIndex(i, length, count))];
    }
}
