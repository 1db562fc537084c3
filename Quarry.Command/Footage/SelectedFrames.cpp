#include "SelectedFrames.h"

#include <algorithm>

#include "OpenFrames.h"

namespace quarry::command {

SelectedFrames::SelectedFrames(const std::string& video, const FrameRange& range_)
    : range(range_), source(OpenFrames(video)) {}

bool SelectedFrames::Next(VideoFrame& frame) {
    const int wanted = index < 0 ? range.first : index + range.every;
    while (++index < wanted) {
        if (!source->Skip()) return false;
    }
    if (index >= range.end || !source->Read(pixels)) return false;
    const double rate = source->framesPerSecond();
    frame = {index, index / rate, TimestampOf(index, rate), pixels};
    return true;
}

int SelectedFrames::expected() const {
    const int span = std::min(source->frameCount(), range.end) - range.first;
    return span > 0 ? (span + range.every - 1) / range.every : 0;
}

}  // namespace quarry::command
