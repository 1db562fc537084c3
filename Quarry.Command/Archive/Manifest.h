#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace quarry::command {

/// One video of an archive.
struct ArchivedVideo {
    std::string name;              ///< the name in the manifest
    std::filesystem::path path;    ///< absolute
    std::filesystem::path output;  ///< the file for its lines, relative to the folder of all outputs
};

/// Lists the videos of an archive, in the byte order of their names.
/// @param manifest  a folder with videos, a text file with the name of a video per line, or `-` for such a text on
///                  standard input
/// @throws Failure               it cannot be read
/// @throws CLI::ValidationError  it holds a name that is refused, or a name twice
std::vector<ArchivedVideo> ReadManifest(const std::string& manifest);

}  // namespace quarry::command
