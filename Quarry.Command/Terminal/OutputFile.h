#pragma once

#include <cstddef>
#include <filesystem>

namespace quarry::command {

/// A file that appears under its name only when it is complete.
///
/// It is written under a temporary name in the same folder, with the same extension. Unless Keep is called it leaves
/// nothing behind, also when the command is interrupted. Two at a time.
class OutputFile {
public:
    /// @throws Failure  nothing can be written there
    explicit OutputFile(std::filesystem::path name);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    ~OutputFile();

    /// The name to write to.
    const std::filesystem::path& temporary() const { return temporaryName; }

    /// Gives the file its name, in place of what had it before. It is on the disk then.
    void Keep();

private:
    std::filesystem::path name;
    std::filesystem::path temporaryName;
    std::size_t place;  ///< among those that an interruption removes
};

/// Whether a file has the temporary name of one that is being written, or was when the command was killed.
bool IsTemporary(const std::filesystem::path& path);

}  // namespace quarry::command
