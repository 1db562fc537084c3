/// @file
/// The sections of the demo page, one operation each.
///
/// A new operation has its section in a source of its own and one line in the list below.
#pragma once

#include <string>

#include "Demo/Footage.h"

/// In the order of the page: `SECTION(Name)` stands for a function `NameSection`.
#define QUARRY_DEMO_SECTIONS(SECTION) \
    SECTION(Background)               \
    SECTION(Tracking)                 \
    SECTION(Flow)                     \
    SECTION(FlowLine)                 \
    SECTION(Difference)               \
    SECTION(Contour)                  \
    SECTION(Occupancy)                \
    SECTION(Clusters)                 \
    SECTION(Inside)                   \
    SECTION(ShapeRate)                \
    SECTION(Sharpness)                \
    SECTION(FaceSharpness)            \
    SECTION(Denoising)                \
    SECTION(Similarity)               \
    SECTION(Rect)                     \
    SECTION(Clothing)                 \
    SECTION(Colour)                   \
    SECTION(Alignment)                \
    SECTION(Rotation)                 \
    SECTION(People)                   \
    SECTION(Detection)                \
    SECTION(Fire)

namespace quarry::command {

/// One operation on the page. All but the numbers is HTML.
struct Section {
    std::string id;         ///< name of the operation in the catalogue, and anchor
    std::string title;      ///< name of the operation
    std::string summary;    ///< what it does, one sentence
    std::string input;      ///< what it was run on, for the table
    std::string result;     ///< a picture or plot for the table, and for the page of the operation in the documentation
    double milliseconds{};  ///< per frame, median; 0: it did not run
    std::string counted;    ///< what the time is of, where it is not a frame of the clip: "per pair"
    std::string body;       ///< what follows title and summary
};

#define QUARRY_DECLARE_SECTION(Name) Section Name##Section(const Footage& footage);
QUARRY_DEMO_SECTIONS(QUARRY_DECLARE_SECTION)
#undef QUARRY_DECLARE_SECTION

}  // namespace quarry::command
