#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

#include "FrameAnalyser.h"
#include "Manifest.h"
#include "SelectedFrames.h"

namespace quarry::command {

/// The analysis that each video of an archive gets.
struct Scanning {
    std::string operation;
    nlohmann::ordered_json options;  ///< all options that the results depend on
    FrameAnalyserFactory makeAnalyser;
    FrameRange frames;
    std::filesystem::path out;  ///< folder for the lines of all videos
};

/// The result of the scan of one video.
enum class Outcome {
    Done,
    Skipped,  ///< its lines were there already
    Bad,      ///< it cannot be played, now and whenever it is tried again; its lines say why
    Failed,   ///< something could not be read or written, or memory ran out; another try may succeed
    Bug,      ///< an error in the command itself
};

struct Scanned {
    Outcome outcome;
    std::string trouble;  ///< why it was bad or failed; empty when it was done or skipped
};

/// Writes the lines of a video, unless they are there already. It does not throw: the result says what went wrong.
Scanned Scan(const ArchivedVideo& video, const Scanning& scanning);

/// The outcome, Failed or Bug, that the exception being handled means. Call it inside a `catch`.
Outcome CurrentOutcome();

}  // namespace quarry::command
