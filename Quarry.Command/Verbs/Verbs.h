/// @file
/// The verbs of the command. Each has a source of its own, with a function that adds it to the command line.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "FrameAnalyser.h"
#include "VerbNames.h"

namespace quarry::command {

/// A verb over frames, which `scan` applies to many videos too.
struct FrameVerb {
    std::string name;
    std::string description;
    /// Adds the options that the results depend on.
    std::function<FrameAnalyserFactory(CLI::App&)> addOptions;
};

/// Adds the verb to the command line, without any options.
CLI::App* AddCommand(CLI::App& commandLine, const FrameVerb& verb, const std::string& footer);

struct Verb {
    CLI::App* command;                                   ///< owned by the command line that it was added to
    std::function<int()> run;                            ///< gives the exit code; throws when the verb fails as a whole
    std::optional<FrameVerb> overFrames = std::nullopt;  ///< what `scan` applies; none for most verbs
};

/// Adds all verbs: those of operations in the order of the table of operations, then the others.
std::vector<Verb> AddVerbs(CLI::App& commandLine);

#define QUARRY_DECLARE_VERB(Name) Verb Add##Name(CLI::App& commandLine);
QUARRY_OPERATION_VERBS(QUARRY_DECLARE_VERB)
QUARRY_OTHER_VERBS(QUARRY_DECLARE_VERB)
#undef QUARRY_DECLARE_VERB

/// @param verbs  those that it may apply to many videos
Verb AddScan(CLI::App& commandLine, const std::vector<Verb>& verbs);

}  // namespace quarry::command
