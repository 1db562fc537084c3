#include "Quarry.OpenCV/DenseOpticalFlowCalculator.h"

#include <cstddef>
#include <cstdint>
#include <opencv2/imgproc.hpp>
#include <opencv2/video/tracking.hpp>
#include <stdexcept>
#include <string>

#include "Quarry.Frame/Records/Buffers.h"
#include "Quarry.OpenCV/PackedFrame.h"
#include "Quarry.OpenCV/Truncate.h"
#include "Quarry/Memory.h"

namespace {

/// Above this quality the averaging window is Gaussian: finer and slower.
constexpr double kGaussianQuality = 0.7;

/// False for not-a-number too, so that the default stays.
bool IsShare(float value) {
    return 0.0F <= value && value <= 1.0F;
}

/// Refuses a size whose number of pixels wraps to 0 or more in 32 bits, since its buffer would be too small. If the
/// number wraps to a negative one, the allocation fails.
void CheckSize(const Image& image) {
    const int32_t served = quarry::Product(image.width, image.height);
    if (served >= 0 && served != int64_t{image.width} * image.height) {
        throw std::invalid_argument("OFCData.Image: " + std::to_string(image.width) + " x " +
                                    std::to_string(image.height) + " pixels; at most 2147483647 are allowed");
    }
}

}  // namespace

DenseOpticalFlowCalculator::DenseOpticalFlowCalculator(OFCOptions* source) : CVOpticalFlowCalculator(source) {
    if (IsShare(options.Detail)) windowSize = quarry::Truncate(27.0F - 20.0F * options.Detail);
    if (IsShare(options.Quality)) {
        levels = quarry::Truncate(10.0F * options.Quality);
        iterations = options.Quality == 0.0F ? 1 : levels;
        flags = static_cast<double>(options.Quality) > kGaussianQuality ? cv::OPTFLOW_FARNEBACK_GAUSSIAN : 0;
    }
}

DenseOpticalFlowCalculator::~DenseOpticalFlowCalculator() {
    DenseOpticalFlowCalculator::Dispose();
}

void DenseOpticalFlowCalculator::Dispose() {
    previousGrey.release();
    DestroyOFCResult(result);
}

bool DenseOpticalFlowCalculator::NeedInitialize(OFCData data) {
    return width == 0 || height == 0 || data.Image.width != width || data.Image.height != height;
}

void DenseOpticalFlowCalculator::DoInitialize(OFCData data) {
    CheckSize(data.Image);
    Dispose();
    state = NoResult;
    width = data.Image.width;
    height = data.Image.height;
    firstFrame = true;
    try {
        previousGrey.create(height, width, CV_8UC1);
        InitResult();
    } catch (...) {
        // Discard what is half built, so that the next frame begins anew, whatever its size.
        Dispose();
        width = 0;
        height = 0;
        throw;
    }
}

void DenseOpticalFlowCalculator::InitResult() {
    result = CreateOFCResult(width, height);
}

void DenseOpticalFlowCalculator::DoUpdate(OFCData data) {
    if (data.Image.data == nullptr) {
        state = NoResult;
        return;
    }
    state = Accumulating;
    cv::Mat grey;
    cv::cvtColor(quarry::PackedFrame(data.Image), grey, cv::COLOR_RGB2GRAY);
    if (!firstFrame) {
        cv::Mat flow(height, width, CV_32FC2, result->FlowMatrix->data,
                     static_cast<std::size_t>(width) * sizeof(AbsVector));
        cv::calcOpticalFlowFarneback(previousGrey, grey, flow, static_cast<double>(pyramidScale), levels, windowSize,
                                     iterations, polynomialNeighbourhood, polynomialSigma, flags);
        state = Ready;
    }
    previousGrey = grey;
    firstFrame = false;
}
