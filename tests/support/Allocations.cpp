#include "support/Allocations.h"

#include <dlfcn.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>
#include <opencv2/core/utility.hpp>

namespace {

/// Threads of OpenCV would count: they let go of what they share with a call some time after its end.
[[maybe_unused]] const bool kAreThereNoOthers = (cv::setNumThreads(1), true);

constexpr std::size_t kLargestBlock = std::size_t{1} << 30;
constexpr std::size_t kMostNotes = 256;

std::atomic<std::size_t> liveBlocks{0};
std::atomic<bool> noting{false};
std::atomic<std::size_t> noteCount{0};
std::array<std::size_t, kMostNotes> notes;
std::atomic<bool> failing{false};
std::atomic<std::size_t> servedBeforeFailure{0};
std::atomic<const void*> failingObject{nullptr};

/// Where the program or shared object that an address lies in is loaded.
const void* ObjectAt(const void* address) {
    Dl_info info = {};
    return dladdr(address, &info) != 0 ? info.dli_fbase : nullptr;
}

void* Allocate(std::size_t size, const void* caller) {
    if (noting) {
        const std::size_t note = noteCount++;
        if (note < kMostNotes) notes[note] = size;
    }
    if (failing && (failingObject == nullptr || failingObject == ObjectAt(caller)) && servedBeforeFailure-- == 0) {
        failing = false;
        throw std::bad_alloc();
    }
    void* const block = size > kLargestBlock ? nullptr : std::malloc(std::max<std::size_t>(size, 1));
    if (block == nullptr) throw std::bad_alloc();
    std::memset(block, quarry::test::kFreshByte, size);
    ++liveBlocks;
    return block;
}

void Release(void* block) noexcept {
    if (block == nullptr) return;
    --liveBlocks;
    std::free(block);
}

}  // namespace

void* operator new(std::size_t size) {
    return Allocate(size, __builtin_return_address(0));
}
void* operator new[](std::size_t size) {
    return Allocate(size, __builtin_return_address(0));
}
void operator delete(void* block) noexcept {
    Release(block);
}
void operator delete[](void* block) noexcept {
    Release(block);
}
void operator delete(void* block, std::size_t /*size*/) noexcept {
    Release(block);
}
void operator delete[](void* block, std::size_t /*size*/) noexcept {
    Release(block);
}

namespace quarry::test {

int CountFresh(const unsigned char* bytes, int count) {
    return static_cast<int>(std::count(bytes, bytes + count, kFreshByte));
}

std::size_t LiveBlocks() {
    return liveBlocks;
}

AllocationLog::AllocationLog() {
    noteCount = 0;
    noting = true;
}

AllocationLog::~AllocationLog() {
    noting = false;
}

std::vector<std::size_t> AllocationLog::Sizes() {
    noting = false;
    const auto count = static_cast<std::ptrdiff_t>(std::min<std::size_t>(noteCount, kMostNotes));
    std::vector<std::size_t> sizes(notes.begin(), notes.begin() + count);
    std::sort(sizes.begin(), sizes.end());
    return sizes;
}

FailingAllocation::FailingAllocation(std::size_t served, const void* object) {
    servedBeforeFailure = served;
    failingObject = object == nullptr ? nullptr : ObjectAt(object);
    failing = true;
}

FailingAllocation::~FailingAllocation() {
    failing = false;
}

bool FailingAllocation::HasHappened() const {
    return !failing;
}

}  // namespace quarry::test
