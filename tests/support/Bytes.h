#pragma once

#include <array>
#include <cstddef>

#include "Quarry.Frame/RecordFields.h"

namespace quarry::test {

/// A record of any length, to try the frame at lengths that no real record has.
template <std::size_t Length>
struct Bytes {
    std::array<unsigned char, Length> bytes;
};

}  // namespace quarry::test

template <std::size_t Length>
struct quarry::RecordFields<quarry::test::Bytes<Length>> {
    static constexpr auto value = std::tuple{&quarry::test::Bytes<Length>::bytes};
};
