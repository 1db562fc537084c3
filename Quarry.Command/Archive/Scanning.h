#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

#include "FrameAnalyser.h"
#include "Manifest.h"
#include "SelectedFrames.h"

namespace quarry::command {

/// What is done with each video of an archive.
struct Scanning {
    std::string operation;
    nlohmann::ordered_json options;  ///< all that the results depend on
    Beginning begin;
    FrameRange frames;
    std::filesystem::path out;  ///< folder of all outputs
};

/// What becomes of a video.
enum class Outcome {
    Done,
    Skipped,  ///< its lines were there
    Bad,      ///< its lines say why: it will be no other when it is tried again
    Failed,   ///< something could not be read or written, or memory ran out
    Bug,      ///< something that nobody expects
};

struct Scanned {
    Outcome outcome;
    std::string trouble;  ///< of one that is neither done nor skipped
};

/// Writes the lines of a video, unless they are there. All that is wrong is in the result.
Scanned Scan(const ArchivedVideo& video, const Scanning& scanning);

/// What the exception being handled means, Failed or Bug; call it inside a `catch`.
Outcome CurrentOutcome();

}  // namespace quarry::command
