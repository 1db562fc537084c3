// Prints a line per operation: its name, and its results as a number. What the processor can do is OpenCV's environment
// variable to say.
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <opencv2/core.hpp>

#include "Quarry/Quarry.h"
#include "support/AllOperations.h"
#include "support/SampleInputs.h"

using namespace quarry::test;

namespace {

/// Fowler, Noll and Vo's hash.
uint64_t Mixed(uint64_t hash, const Buffer& bytes) {
    constexpr uint64_t kPrime = 0x100000001B3;
    for (const uint8_t byte : bytes) hash = (hash ^ byte) * kPrime;
    return hash;
}

uint64_t ResultsOf(Operation& operation, FrameSize frames) {
    constexpr int kTurns = 4;
    uint64_t hash = 0xCBF29CE484222325;
    void* handle = nullptr;
    operation.Create(&handle);
    for (int turn = 0; turn < kTurns; ++turn) hash = Mixed(hash, operation.Run(handle, FrameOfTurn(turn, frames)));
    Dispose(handle);
    return hash;
}

}  // namespace

int main() {
    cv::setNumThreads(1);
    for (const FrameSize frames : {FrameSize::Small, FrameSize::Large}) {
        for (const auto& operation : AllOperations(frames)) {
            std::printf("%s %016" PRIx64 "\n", operation->name.c_str(), ResultsOf(*operation, frames));
        }
    }
}
