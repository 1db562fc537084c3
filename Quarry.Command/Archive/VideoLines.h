#pragma once

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "OutputFile.h"

namespace quarry::command {

/// The lines of a video while they are written: the first says what they depend on, the last one how many frames there
/// were. The file appears when they are complete.
class VideoLines {
public:
    /// @param head  the first line
    /// @throws Failure  nothing can be written there
    VideoLines(const std::filesystem::path& path, const std::string& head);

    /// The line of a frame.
    /// @throws Failure  it cannot be written
    void Write(const std::string& line);

    /// @param error  why the video is bad; empty: it is not
    /// @throws Failure  it cannot be written
    void Finish(const std::string& error);

private:
    void Put(const std::string& line);

    std::filesystem::path path;
    OutputFile file;
    std::ofstream stream;
    int frames = 0;
};

/// What a file with all lines of a video says but for the frames.
struct FinishedLines {
    std::string head;   ///< the first line, with its end
    std::string error;  ///< empty: none
};

/// @return nothing where the file is not there or has not all lines
std::optional<FinishedLines> ReadFinished(const std::filesystem::path& path);

}  // namespace quarry::command
