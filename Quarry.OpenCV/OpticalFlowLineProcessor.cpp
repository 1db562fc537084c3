#include "Quarry.OpenCV/OpticalFlowLineProcessor.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <string>

#include "Quarry.OpenCV/CVHelper.h"
#include "Quarry.OpenCV/PendingResult.h"
#include "Quarry.OpenCV/PixelOf.h"
#include "Quarry.OpenCV/Truncate.h"
#include "Quarry/Memory.h"

namespace {

int RoundHalfUp(float value) {
    return quarry::Truncate(std::floor(static_cast<double>(value) + 0.5));
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
    if (line.count > 0) {
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
    const int last = length - 1;
    const auto at = [&](int index) { return buffer[static_cast<std::size_t>(std::min(index, last))]; };
    if (count > length) {
        const int repeats = RoundHalfUp(static_cast<float>(count) / static_cast<float>(length));
        for (int i = 0; i < count; ++i) out[i] = at(i / repeats);
    } else {
        for (int i = 0; i < count; ++i) {
            out[i] = at(RoundHalfUp(static_cast<float>(i) * static_cast<float>(length) / static_cast<float>(count)));
        }
    }
}
