#pragma once

#include <cstddef>
#include <filesystem>

namespace quarry::command {

/// A file that appears under its name only when it is complete.
///
/// It is written under a temporary name in the same folder, with the same extension. The destructor removes it unless
/// Keep was called, and so does a signal that ends the command. At most two objects are safe from signals at a time.
class OutputFile {
public:
    /// @throws Failure  nothing can be written there
    explicit OutputFile(std::filesystem::path name);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    ~OutputFile();

    /// The name to write to.
    const std::filesystem::path& temporary() const { return temporaryName; }

    /// Writes the file to the disk and gives it its name, in place of any file that had it before.
    /// @throws Failure  it cannot be written
    void Keep();

private:
    std::filesystem::path name;
    std::filesystem::path temporaryName;
    std::size_t place;  ///< of the temporary name in the list that a signal handler removes
};

/// Whether a file has the temporary name of an OutputFile. Such files stay behind when the command is killed.
bool IsTemporary(const std::filesystem::path& path);

}  // namespace quarry::command
