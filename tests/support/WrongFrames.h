#pragma once

#include <cstdint>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include "Quarry/Framing.h"

namespace quarry::test {

/// A frame that no call may accept for a record of some length in some role.
struct WrongFrame {
    std::string flaw;
    int32_t length;
    uint32_t tag;
};

inline std::ostream& operator<<(std::ostream& out, const WrongFrame& frame) {
    return out << frame.flaw;
}

/// Frames with one flaw each, around a record of `length` bytes whose right tag is `tag`.
inline std::vector<WrongFrame> WrongFrames(int32_t length, uint32_t tag) {
    std::vector<WrongFrame> frames;
    for (const int32_t word :
         {0, -1, 1, 119, 120, 121, length - 4, length + 4, length - 1, length + 1, -length, length + 256, length << 24,
          std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()}) {
        if (word != length) frames.push_back({"length word " + std::to_string(word), word, tag});
    }
    const uint32_t swapped = tag << 24 | (tag & 0xFF00U) << 8 | (tag >> 8 & 0xFF00U) | tag >> 24;
    for (const uint32_t word : {uint32_t{QUARRY_OPTIONS_TAG}, uint32_t{QUARRY_INPUT_TAG}, uint32_t{QUARRY_RESULT_TAG},
                                uint32_t{0}, ~tag, tag ^ 1U, tag ^ 0x80000000U, swapped}) {
        if (word != tag) frames.push_back({"tag " + std::to_string(word), length, word});
    }
    return frames;
}

/// Puts a flawed frame around a record, as Framed lays it out.
template <class FramedRecord>
void Apply(const WrongFrame& frame, FramedRecord&& record) {
    record.SetLength(frame.length);
    record.SetTag(frame.tag);
}

}  // namespace quarry::test
