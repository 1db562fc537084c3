#pragma once

#include <cstdint>
#include <cstring>

#include "Quarry/Framing.h"

/// Reads the envelope around a record (see Quarry/Framing.h).
class Marshaler {
public:
    /// The length word: the four bytes before the record.
    static int32_t GetMarshalDataSize(const void* data) {
        return Word(static_cast<const char*>(data) - sizeof(int32_t));
    }

    /// The tag of a record that is `size` bytes long: the four bytes after it.
    static int32_t GetMarshalDataType(const void* data, int size) {
        return Word(static_cast<const char*>(data) + size);
    }

    /// Whether a length word lies in 1..120.
    static bool IsSizeCorrect(int size) { return 1 <= size && size <= QUARRY_MAX_RECORD_LENGTH; }

private:
    static int32_t Word(const char* at) {
        int32_t word;
        std::memcpy(&word, at, sizeof(word));
        return word;
    }
};
