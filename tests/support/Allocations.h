#pragma once

#include <cstddef>
#include <vector>

/// What goes through `operator new`, for tests that link Allocations.cpp: it replaces the operators of the whole
/// program. Fresh blocks are filled with kFreshByte, so that a buffer is never 0 by chance, and a block of more than a
/// gigabyte is refused, so that an absurd request fails on every machine. OpenCV starts no threads there.
namespace quarry::test {

constexpr unsigned char kFreshByte = 0xCD;

/// How many of the bytes nobody has written into since they were allocated.
int CountFresh(const unsigned char* bytes, int count);

/// Blocks that were given out and have not been taken back.
std::size_t LiveBlocks();

/// Notes the size of every block that is asked for while it lives; one at a time.
class AllocationLog {
public:
    AllocationLog();
    AllocationLog(const AllocationLog&) = delete;
    AllocationLog& operator=(const AllocationLog&) = delete;
    ~AllocationLog();

    /// Ends the notes and gives them, smallest first.
    std::vector<std::size_t> Sizes();
};

/// Makes one allocation fail while it lives: the one after `served` more have been served.
class FailingAllocation {
public:
    /// @param object  an address in the program or shared object whose own allocations alone count; null counts all
    explicit FailingAllocation(std::size_t served, const void* object = nullptr);
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
    ~FailingAllocation();

    bool HasHappened() const;
};

}  // namespace quarry::test
