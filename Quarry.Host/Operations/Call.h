/// @file
/// How an operation of this host calls the library: records put in their frames, handles and results that end
/// themselves. Only the sources of this folder include it.
#pragma once

#include <Quarry/Quarry.h>

#include <cstdint>
#include <opencv2/core.hpp>

#include "Operations/Handle.h"

namespace quarry::host {

/// A record in its frame.
template <typename Content>
class Framed {
public:
    explicit Framed(const Content& content, uint32_t tag) : framed{0, sizeof(Content), content, tag} {}

    Content& record() { return framed.Record; }
    const Content& record() const { return framed.Record; }

    /// The record's address as the function takes it that serves all operations.
    template <typename Any>
    Any* As() {
        return reinterpret_cast<Any*>(&framed.Record);
    }

private:
    QUARRY_FRAMED(Content) framed;
};

/// A new handle from the library's factory.
template <typename Options>
Handle Create(void (*factory)(void**, Options*), const Options& options) {
    Framed<Options> framed(options, QUARRY_OPTIONS_TAG);
    void* created = nullptr;
    factory(&created, &framed.record());
    return Handle(created);
}

/// What a processor makes of an input; its buffers go back at its end, so it must not outlive the handle.
template <typename Result>
class Processed {
public:
    template <typename Input>
    Processed(const Handle& handle_, const Input& input) : handle(handle_.get()), result({}, QUARRY_RESULT_TAG) {
        Framed<Input> framed(input, QUARRY_INPUT_TAG);
        Process(handle, framed.template As<ProcessData>(), result.template As<ProcessResult>());
    }
    Processed(const Processed&) = delete;
    Processed& operator=(const Processed&) = delete;
    ~Processed() { DisposeResult(handle, result.template As<ProcessResult>()); }

    const Result* operator->() const { return &result.record(); }

private:
    void* handle;
    Framed<Result> result;
};

/// What an updater makes of a frame; the result's buffers stay the updater's until its next update or its end.
template <typename Result>
struct Updated {
    UpdaterState state;
    Result result;
};

template <typename Result, typename Input>
Updated<Result> Feed(const Handle& handle, const Input& input) {
    Framed<Input> framed(input, QUARRY_INPUT_TAG);
    Framed<Result> result({}, QUARRY_RESULT_TAG);
    const int32_t state = Update(handle.get(), framed.template As<UpdateData>());
    GetUpdateResult(handle.get(), result.template As<UpdateResult>());
    return {static_cast<UpdaterState>(state), result.record()};
}

/// A packed 8-bit frame of three channels as the library takes it.
inline Image ImageOf(const cv::Mat& frame, uint64_t timestamp = 0) {
    CV_Assert(frame.type() == CV_8UC3 && frame.isContinuous());
    return {frame.data, frame.cols, frame.rows, static_cast<int32_t>(frame.step[0]), timestamp};
}

/// A copy of what the library gave, rows packed.
inline cv::Mat PictureOf(const Image& image) {
    return cv::Mat(image.height, image.width, CV_8UC3, image.data).clone();
}

inline cv::Mat PictureOf(const Mask& mask) {
    return cv::Mat(mask.height, mask.width, CV_8UC1, mask.data).clone();
}

/// The pixels that a rectangle in fractions of `whole` covers.
inline cv::Rect PixelsOf(const RelRect& rect, const cv::Rect& whole) {
    return {whole.x + cvRound(rect.X * static_cast<float>(whole.width)),
            whole.y + cvRound(rect.Y * static_cast<float>(whole.height)),
            cvRound(rect.Width * static_cast<float>(whole.width)),
            cvRound(rect.Height * static_cast<float>(whole.height))};
}

}  // namespace quarry::host
