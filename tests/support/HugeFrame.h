/// @file
/// A frame of more pixels than 31 bits count.
#pragma once

#include <sys/mman.h>

#include <cstddef>
#include <cstdint>
#include <opencv2/core.hpp>

#include "Quarry/SharedRecords.h"

namespace quarry::test {

/// A black frame of 65536 x 32769 pixels of three channels: 2^31 + 2^16. Memory is taken for what is painted alone.
class HugeFrame {
public:
    static constexpr int kWidth = 65536;
    static constexpr int kHeight = 32769;
    static constexpr double kPixels = 2147549184.0;

    HugeFrame()
        : memory(mmap(nullptr, kBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)) {
        if (memory != MAP_FAILED) madvise(memory, kBytes, MADV_HUGEPAGE);  // so that reading it takes few faults
    }
    HugeFrame(const HugeFrame&) = delete;
    HugeFrame& operator=(const HugeFrame&) = delete;
    ~HugeFrame() {
        if (memory != MAP_FAILED) munmap(memory, kBytes);
    }

    /// Whether the system gives addresses to more than it has memory for.
    bool IsThere() const { return memory != MAP_FAILED; }
    cv::Mat pixels() const { return cv::Mat(kHeight, kWidth, CV_8UC3, memory); }
    Image record() const { return {static_cast<uint8_t*>(memory), kWidth, kHeight, kWidth * 3, 0}; }

private:
    static constexpr std::size_t kBytes = std::size_t{kWidth} * kHeight * 3;

    void* memory;
};

}  // namespace quarry::test
