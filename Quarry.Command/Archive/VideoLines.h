#pragma once

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "OutputFile.h"

namespace quarry::command {

/// Writes the lines of a video. The first says what the others depend on, the last how many frames there were. The file
/// appears when it is complete.
class VideoLines {
public:
    /// @param head  the first line
    /// @throws Failure  nothing can be written there
    VideoLines(const std::filesystem::path& path, const std::string& head);

    /// Writes the line of a frame.
    /// @throws Failure  it cannot be written
    void Write(const std::string& line);

    /// Writes the last line and gives the file its name.
    /// @param error  why the video is bad; empty when it is not
    /// @throws Failure  it cannot be written
    void Finish(const std::string& error);

private:
    void Put(const std::string& line);

    std::filesystem::path path;
    OutputFile file;
    std::ofstream stream;
    int frames = 0;
};

/// The first line of a file with all lines of a video, and the error in its last line.
struct FinishedLines {
    std::string head;   ///< the first line, with its line end
    std::string error;  ///< empty when there is none
};

/// @return nothing when there is no such file or it does not have all lines
std::optional<FinishedLines> ReadFinished(const std::filesystem::path& path);

}  // namespace quarry::command
