/// @file
/// What holds for all Create... and Destroy... functions. Tests that include it link Allocations.cpp.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>
#include <vector>

#include "support/Allocations.h"

namespace quarry::test {

using Sizes = std::vector<std::size_t>;

/// The smallest side of a square whose area does not fit 31 bits: 46341 x 46341 wraps to a negative number.
constexpr int kWrapsNegative = 46341;
/// The side of a square whose area wraps to 0.
constexpr int kWrapsToZero = 65536;

/// Writes every byte of a buffer, for a sanitizer to see that they are there.
template <class Element>
void FillWhole(Element* buffer, std::size_t count) {
    std::memset(buffer, 0x6B, count * sizeof(Element));
}

template <class Element>
bool AllZero(const Element* buffer, std::size_t count) {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(buffer);
    return std::all_of(bytes, bytes + count * sizeof(Element), [](unsigned char byte) { return byte == 0; });
}

/// Sizes of the blocks that a creation asks for, smallest first; `release` takes what `create` gave.
template <class Create, class Release>
Sizes RequestsOf(Create create, Release release) {
    AllocationLog log;
    auto created = create();
    Sizes sizes = log.Sizes();
    release(created);
    return sizes;
}

template <class Create>
bool ThrowsBadAlloc(Create create) {
    try {
        create();
    } catch (const std::bad_alloc&) {
        return true;
    }
    return false;
}

/// A creation that cannot succeed throws std::bad_alloc and keeps nothing.
template <class Create>
void ExpectRefused(Create create) {
    const std::size_t live = LiveBlocks();
    EXPECT_TRUE(ThrowsBadAlloc(create));
    EXPECT_EQ(LiveBlocks(), live);
}

/// When any of a creation's allocations fails, std::bad_alloc is thrown and those before it are released.
template <class Create>
void ExpectNothingKeptWhenMemoryEnds(std::size_t allocations, Create create) {
    for (std::size_t served = 0; served < allocations; ++served) {
        const std::size_t live = LiveBlocks();
        bool thrown = false;
        {
            const FailingAllocation failing(served);
            thrown = ThrowsBadAlloc(create);
        }
        EXPECT_TRUE(thrown) << "after " << served << " allocations";
        EXPECT_EQ(LiveBlocks(), live) << "after " << served << " allocations";
    }
}

/// A destruction through a reference sets it to null and releases everything.
template <class Record, class Destroy>
void ExpectReleasedThroughReference(Record* (*create)(), Destroy destroy) {
    const std::size_t live = LiveBlocks();
    Record* record = create();
    destroy(record);
    EXPECT_EQ(record, nullptr);
    EXPECT_EQ(LiveBlocks(), live);
}

/// A destruction accepts a reference to null.
template <class Record, class Destroy>
void ExpectNullIsAccepted(Destroy destroy) {
    const std::size_t live = LiveBlocks();
    Record* record = nullptr;
    destroy(record);
    EXPECT_EQ(record, nullptr);
    EXPECT_EQ(LiveBlocks(), live);
}

}  // namespace quarry::test
