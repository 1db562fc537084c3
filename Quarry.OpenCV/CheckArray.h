#pragma once

#include <stdexcept>
#include <string>

namespace quarry {

/// Checks that a host's array is not null when elements of it will be read.
/// @param field  the record's field that points at it, for the message
/// @param what   what its elements are, for the message
/// @throws std::invalid_argument  the array is null and `count` is above 0
inline void CheckArray(const char* field, const void* array, int count, const char* what) {
    if (array == nullptr && count > 0) {
        throw std::invalid_argument(std::string(field) + " is null; " + std::to_string(count) + " " + what +
                                    " are needed");
    }
}

}  // namespace quarry
