#include "Quarry.OpenCV/BackgroundUpdating.h"

#include <cmath>
#include <opencv2/imgproc.hpp>
#include <stdexcept>

#include "Quarry.Frame/Records/Buffers.h"
#include "Quarry.OpenCV/CVHelper.h"
#include "Quarry.OpenCV/PackedFrame.h"
#include "Quarry/Memory.h"

namespace {

constexpr uint64_t kTicksPerSecond = 10'000'000;
constexpr uint8_t kForeground = 255;
/// Foreground thresholds at sensitivity 0 and 0.5, in grey levels.
constexpr float kLeastSensitiveThreshold = 60.0F;
constexpr float kMediumThreshold = 50.0F;
/// Squared Mahalanobis distance at which a pixel still belongs to a Gaussian of the mixture.
constexpr double kVarThreshold = 16.0;
/// Time constants in one period: a period replaces 88 % of the background.
constexpr double kTimeConstantsPerPeriod = 2.15;

}  // namespace

BackgroundUpdatingSystem::~BackgroundUpdatingSystem() {
    BackgroundUpdatingSystem::Dispose();
}

void BackgroundUpdatingSystem::Dispose() {
    ReleaseBuffers();
    DestroyBackgroundResult(result);
    CVBackgroungModel::Dispose();
}

bool BackgroundUpdatingSystem::NeedInitialize(BackgroundData data) {
    return width == 0 || height == 0 || data.Image.width != width || data.Image.height != height;
}

void BackgroundUpdatingSystem::DoInitialize(BackgroundData data) {
    quarry::CheckRoomForPackedFrame("BackgroundData.Image", data.Image.width, data.Image.height,
                                    quarry::Product(data.Image.width, quarry::kFrameChannels));
    ReleaseBuffers();
    DestroyBackgroundResult(result);
    frame = cv::Mat();
    width = data.Image.width;
    height = data.Image.height;
    try {
        threshold = CVHelper::LinearApprox(kLeastSensitiveThreshold, kMediumThreshold, options.Sensitivity);
        subtractor = cv::createBackgroundSubtractorMOG2(options.HistoryLength, kVarThreshold, true);
        accumulatedTime = 0;
        lastTimestamp = 0;
        adaptationTime = options.AdaptationTime;
        learningPeriod =
            options.LearningSpeedup != 0 ? options.AdaptationTime / options.LearningSpeedup : options.AdaptationTime;
        state = NoResult;
        InitResult();
        InitBuffers();
    } catch (...) {
        // Discard what is half built, so that the next frame begins a new model, whatever its size.
        Dispose();
        width = 0;
        height = 0;
        throw;
    }
}

void BackgroundUpdatingSystem::InitResult() {
    result = CreateBackgroundResult(width, height, quarry::Product(width, quarry::kFrameChannels), 0);
}

void BackgroundUpdatingSystem::InitBuffers() {
    mask = cv::Mat(height, width, CV_8UC1, result->ForegroundMask);
    background = quarry::PackedFrame(result->BackgroundImage->data, width, height);
    reserved = quarry::PackedFrame(result->ReservedImage->data, width, height);
    difference.create(height, width, CV_8UC3);
}

void BackgroundUpdatingSystem::ReleaseBuffers() {
    difference.release();
}

float BackgroundUpdatingSystem::CalcCurrentRate(float elapsedSeconds, float period) {
    const auto timeConstant = static_cast<float>(static_cast<double>(period) / kTimeConstantsPerPeriod);
    return 1.0F - std::exp(-elapsedSeconds / timeConstant);
}

void BackgroundUpdatingSystem::DoUpdate(BackgroundData data) {
    const cv::Mat next = quarry::PackedFrame(data.Image);
    const uint64_t timestamp = data.Image.timestamp;
    // For the first frame the last timestamp is 0, so the elapsed time is the whole timestamp: usually long enough to
    // replace the model.
    const uint64_t elapsed = timestamp - lastTimestamp;
    const float elapsedSeconds = static_cast<float>(elapsed) / static_cast<float>(kTicksPerSecond);
    const float rate = CalcCurrentRate(elapsedSeconds, state == Ready ? adaptationTime : learningPeriod);
    subtractor->apply(next, mask, static_cast<double>(rate));
    frame = next;
    if (lastTimestamp != 0) accumulatedTime += elapsed;
    lastTimestamp = timestamp;
    const uint64_t learntSeconds = accumulatedTime / kTicksPerSecond;
    // Negated, so that a period that is not a number counts as completed.
    state = !(learningPeriod > static_cast<float>(learntSeconds)) ? Ready : Accumulating;
}

void BackgroundUpdatingSystem::AssignResultData() {
    if (frame.dims == 0) {
        throw std::logic_error("GetUpdateResult: no frame since the model was built; call Update with a frame first");
    }
    subtractor->getBackgroundImage(background);
    cv::absdiff(frame, background, difference);
    cv::cvtColor(difference, mask, cv::COLOR_BGR2GRAY);
    cv::threshold(mask, mask, static_cast<double>(threshold), kForeground, cv::THRESH_BINARY);
    result->BackgroundImage->timestamp = lastTimestamp;
    result->ReservedImage->timestamp = lastTimestamp;
}
