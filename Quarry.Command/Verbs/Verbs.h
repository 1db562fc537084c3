/// @file
/// The verbs of the command: each adds its subcommand to the command line and runs it when it was chosen.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>

#include "FrameAnalyser.h"

namespace quarry::command {

struct Verb {
    CLI::App* command;         ///< owned by the command line it was added to
    std::function<int()> run;  ///< gives the exit code; throws when the verb fails as a whole
};

Verb AddSharpness(CLI::App& commandLine);
Verb AddBackground(CLI::App& commandLine);
Verb AddDiff(CLI::App& commandLine);
Verb AddSimilarity(CLI::App& commandLine);
Verb AddDenoise(CLI::App& commandLine);
Verb AddTrack(CLI::App& commandLine);
Verb AddFlow(CLI::App& commandLine);
Verb AddContours(CLI::App& commandLine);
Verb AddOccupancy(CLI::App& commandLine);
Verb AddClusters(CLI::App& commandLine);
Verb AddInside(CLI::App& commandLine);
Verb AddShapeRate(CLI::App& commandLine);
Verb AddRect(CLI::App& commandLine);
Verb AddClothing(CLI::App& commandLine);
Verb AddColours(CLI::App& commandLine);
Verb AddAlign(CLI::App& commandLine);
Verb AddRotate(CLI::App& commandLine);
Verb AddPeople(CLI::App& commandLine);
Verb AddDetect(CLI::App& commandLine);
Verb AddFire(CLI::App& commandLine);
Verb AddList(CLI::App& commandLine);
Verb AddDescribe(CLI::App& commandLine);
Verb AddScan(CLI::App& commandLine);
Verb AddMerge(CLI::App& commandLine);

FrameOperation SharpnessOperation();
FrameOperation BackgroundOperation();
FrameOperation TrackOperation();
FrameOperation FlowOperation();
FrameOperation ContoursOperation();
FrameOperation OccupancyOperation();
FrameOperation ClustersOperation();
FrameOperation PeopleOperation();
FrameOperation DetectOperation();
FrameOperation FireOperation();

}  // namespace quarry::command
