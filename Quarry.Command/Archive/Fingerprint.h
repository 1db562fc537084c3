#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace quarry::command {

/// Identifies the contents of a file.
struct Fingerprint {
    uint64_t bytes = 0;
    std::string sha256;  ///< 64 hexadecimal digits
};

inline bool operator==(const Fingerprint& a, const Fingerprint& b) {
    return a.bytes == b.bytes && a.sha256 == b.sha256;
}

/// @throws Failure  it is not a regular file or cannot be read
Fingerprint FingerprintOf(const std::filesystem::path& path);

}  // namespace quarry::command
