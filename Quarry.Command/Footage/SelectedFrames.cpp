#include "SelectedFrames.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <optional>
#include <system_error>

#include "OpenFrames.h"
#include "Options.h"
#include "VideoFrame.h"

namespace quarry::command {
namespace {

/// A frame's index, or nothing where none is given.
std::optional<int> IndexOf(const std::string& text, int otherwise) {
    int index = otherwise;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), index);
    if (text.empty()) return otherwise;
    return error == std::errc() && end == text.data() + text.size() && index >= 0 ? std::optional(index) : std::nullopt;
}

void SetRange(FrameRange& range, const std::string& text) {
    const std::size_t colon = text.find(':');
    const std::optional<int> first = IndexOf(text.substr(0, colon), 0);
    const std::optional<int> end = colon == std::string::npos ? std::nullopt : IndexOf(text.substr(colon + 1), INT_MAX);
    if (!first || !end || *first >= *end) {
        throw CLI::ValidationError("--frames", "must be A:B, A: or :B with indexes from 0 and A below B, not " + text);
    }
    range.first = *first;
    range.end = *end;
}

}  // namespace

void AddFrameOptions(CLI::App& command, FrameRange& range) {
    command
        .add_option_function<std::string>(
            "--frames", [&range](const std::string& text) { SetRange(range, text); },
            "Take the frames from index A up to, not including, B")
        ->type_name("A:B");
    command.add_option("--every", range.every, "Take every N-th of them")
        ->type_name("N")
        ->check(Within(1, 1'000'000))
        ->capture_default_str();
}

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
