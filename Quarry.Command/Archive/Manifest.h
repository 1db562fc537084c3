#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace quarry::command {

/// One video of an archive.
struct ArchivedVideo {
    std::string name;              ///< as the manifest names it
    std::filesystem::path path;    ///< to read it, absolute
    std::filesystem::path output;  ///< of its lines, relative to the folder of all
};

/// The videos of an archive, in the byte order of their names.
/// @param manifest  a folder with videos, a file with the name of a video per line, or `-`: that from standard input
/// @throws Failure               it cannot be read
/// @throws CLI::ValidationError  it holds a name that is refused, or the same one twice
std::vector<ArchivedVideo> ReadManifest(const std::string& manifest);

}  // namespace quarry::command
