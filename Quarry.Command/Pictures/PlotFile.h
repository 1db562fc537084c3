#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>

#include "OutputFile.h"

namespace quarry::command {

/// A figure that the Python package draws; it appears under its name when it is complete.
class PlotFile {
public:
    /// @param path  ends in `.svg`
    /// @throws Failure  nothing can be written there, or the Python package cannot draw here
    explicit PlotFile(const std::filesystem::path& path);

    /// Once.
    /// @param values  as `quarry.plot` reads them
    /// @throws Failure  they could not be drawn
    void Draw(const nlohmann::json& values);

private:
    std::filesystem::path path;
    OutputFile file;
};

}  // namespace quarry::command
