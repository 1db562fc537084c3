#pragma once

#include <cstddef>

#include "support/Allocations.h"

namespace quarry::test {

/// Whether a call, however often it is repeated, leaves no block behind. The first calls may fill caches of OpenCV and
/// of its threads.
template <class Call>
bool KeepsNothing(Call call) {
    constexpr int kTries = 20;
    for (int i = 0; i < kTries; ++i) {
        const std::size_t before = LiveBlocks();
        call();
        if (LiveBlocks() == before) return true;
    }
    return false;
}

}  // namespace quarry::test
