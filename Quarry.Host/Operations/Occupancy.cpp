#include "Operations/Occupancy.h"

#include <Quarry/Memory.h>

#include <opencv2/imgproc.hpp>

#include "Operations/Call.h"

namespace quarry::host {
namespace {

/// The mask of a result: the library leaves it to the host.
class OwnedMask {
public:
    explicit OwnedMask(const ContourMaskProcessorResult& result_) : result(result_) {}
    OwnedMask(const OwnedMask&) = delete;
    OwnedMask& operator=(const OwnedMask&) = delete;
    ~OwnedMask() { DestroyContourMaskProcessorResult(&result); }

    cv::Mat Copy() const {
        return cv::Mat(result.Mask->height, result.Mask->width, CV_8UC1, result.Mask->data).clone();
    }

private:
    ContourMaskProcessorResult result;
};

}  // namespace

OccupancyMeter::OccupancyMeter(const OccupancySettings& settings)
    : handle(Create(CreateCVContourMaskProcessor, ContourMaskProcessorOptions{0, settings.fill, settings.minArea})),
      grid(settings.grid) {}

cv::Mat OccupancyMeter::Measure(const cv::Mat& frame) {
    cv::cvtColor(frame, redFirst, cv::COLOR_BGR2RGB);
    const ContourMaskProcessorData input = {0, ImageOf(redFirst), grid.width, grid.height};
    const Processed<ContourMaskProcessorResult> processed(handle, input);
    return OwnedMask({processed->Status, processed->Mask}).Copy();
}

}  // namespace quarry::host
