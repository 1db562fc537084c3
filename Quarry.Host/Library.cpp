#include "Library.h"

#include <cmath>

#include "Timing.h"

namespace quarry::host {
namespace {

Image ImageOf(const cv::Mat& frame, uint64_t timestamp) {
    CV_Assert(frame.type() == CV_8UC3 && frame.isContinuous());
    return {frame.data, frame.cols, frame.rows, static_cast<int32_t>(frame.step[0]), timestamp};
}

}  // namespace

SharpnessMeter::SharpnessMeter() {
    QUARRY_FRAMED(ProcessOptions) options = {0, sizeof(ProcessOptions), {}, QUARRY_OPTIONS_TAG};
    void* created = nullptr;
    CreateCVLaplacianVarianceProcessor(&created, &options.Record);
    handle.reset(created);
}

float SharpnessMeter::Measure(const cv::Mat& frame) {
    QUARRY_FRAMED(VoLInputData) input = {0, sizeof(VoLInputData), {0, ImageOf(frame, 0)}, QUARRY_INPUT_TAG};
    QUARRY_FRAMED(VoLOutputData) output = {0, sizeof(VoLOutputData), {}, QUARRY_RESULT_TAG};
    auto* const result = reinterpret_cast<ProcessResult*>(&output.Record);
    Process(handle.get(), reinterpret_cast<ProcessData*>(&input.Record), result);
    const float variance = output.Record.Variance;
    DisposeResult(handle.get(), result);
    return variance;
}

BackgroundModel::BackgroundModel(const BackgroundSettings& settings) {
    QUARRY_FRAMED(BackgroundOptions)
    options = {0,
               sizeof(BackgroundOptions),
               {0, settings.sensitivity, settings.history, settings.adaptationSeconds, settings.speedup},
               QUARRY_OPTIONS_TAG};
    void* created = nullptr;
    CreateCVBackgroundModel(&created, &options.Record);
    handle.reset(created);
}

BackgroundView BackgroundModel::Take(const cv::Mat& frame, uint64_t timestamp) {
    QUARRY_FRAMED(BackgroundData)
    input = {0, sizeof(BackgroundData), {0, ImageOf(frame, timestamp), 0}, QUARRY_INPUT_TAG};
    QUARRY_FRAMED(BackgroundResult) output = {0, sizeof(BackgroundResult), {}, QUARRY_RESULT_TAG};

    const Stopwatch watch;
    const int32_t state = Update(handle.get(), reinterpret_cast<UpdateData*>(&input.Record));
    GetUpdateResult(handle.get(), reinterpret_cast<UpdateResult*>(&output.Record));
    const double milliseconds = watch.Milliseconds();

    const cv::Mat foreground(frame.size(), CV_8UC1, output.Record.ForegroundMask);
    const cv::Mat background(frame.size(), CV_8UC3, output.Record.BackgroundImage->data);
    const double share = cv::countNonZero(foreground) / static_cast<double>(frame.total());
    return {static_cast<UpdaterState>(state), foreground, background, share, milliseconds};
}

uint64_t TimestampOf(int frame, double framesPerSecond) {
    return static_cast<uint64_t>(std::llround((frame + 1) * kTicksPerSecond / framesPerSecond));
}

const char* NameOf(UpdaterState state) {
    switch (state) {
        case NoResult:
            return "NoResult";
        case Accumulating:
            return "Accumulating";
        case Ready:
            return "Ready";
    }
    return "unknown";
}

}  // namespace quarry::host
