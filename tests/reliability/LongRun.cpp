/// @file
/// Uses every operation for long and looks whether the process stays as it was: `LongRun [ROUNDS]`, 100000 by default.
/// Prints a line per operation; exits with 1 when memory, files or threads have grown.
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>

#include "Quarry/Quarry.h"
#include "support/AllOperations.h"
#include "support/SampleInputs.h"

using namespace quarry::test;

namespace {

constexpr long kMostGrowth = 1024;  // KiB

/// How many times fewer rounds the slow ones make.
const std::map<std::string, int> kShares = {{"CascadeDetector", 200},
                                            {"ClothingColors", 5},
                                            {"FastNlMeansDenoising", 100},
                                            {"FirePixels", 5},
                                            {"PeopleDetector", 20}};

long EntriesOf(const char* folder) {
    return std::distance(std::filesystem::directory_iterator(folder), {});
}

/// What a process must not hoard.
struct Footprint {
    long kibibytes;
    long files;
    long threads;

    static Footprint Now() {
        long all = 0;
        long resident = 0;
        std::ifstream("/proc/self/statm") >> all >> resident;
        return {resident * (sysconf(_SC_PAGESIZE) / 1024), EntriesOf("/proc/self/fd"), EntriesOf("/proc/self/task")};
    }
};

/// Repeats a round after a tenth of them to warm up.
/// @return whether the process has stayed as it was
template <class Round>
bool StaysFlat(const std::string& name, const char* unit, int rounds, Round round) {
    for (int i = 0; i < std::max(rounds / 10, 10); ++i) round(i);
    const Footprint before = Footprint::Now();
    for (int i = 0; i < rounds; ++i) round(i);
    const Footprint after = Footprint::Now();
    const bool flat = after.kibibytes - before.kibibytes <= kMostGrowth && after.files == before.files &&
                      after.threads == before.threads;
    std::printf("%-32s %7d %-6s %+6ld KiB  %ld files  %ld threads%s\n", name.c_str(), rounds, unit,
                after.kibibytes - before.kibibytes, after.files, after.threads, flat ? "" : "  GROWN");
    std::fflush(stdout);
    return flat;
}

/// From factory to end, over and over.
bool LivesStayFlat(Operation& operation, int rounds) {
    return StaysFlat(operation.name, "lives", rounds, [&](int turn) {
        void* handle = nullptr;
        operation.Create(&handle);
        operation.Run(handle, FrameOfTurn(turn));
        Dispose(handle);
    });
}

/// One handle, whose frames change their size every fourth time.
bool FramesStayFlat(Operation& operation, int frames) {
    void* handle = nullptr;
    operation.Create(&handle);
    const bool flat =
        StaysFlat(operation.name, "frames", frames, [&](int turn) { operation.Run(handle, FrameOfTurn(turn)); });
    Dispose(handle);
    return flat;
}

bool EverythingStaysFlat(int rounds) {
    bool flat = true;
    for (const auto& operation : AllOperations()) {
        const auto share = kShares.find(operation->name);
        flat = LivesStayFlat(*operation, rounds / (share == kShares.end() ? 1 : share->second)) && flat;
        if (operation->isUpdater) flat = FramesStayFlat(*operation, rounds / 5) && flat;
    }
    return flat;
}

}  // namespace

int main(int count, char** arguments) {
    try {
        return EverythingStaysFlat(count > 1 ? std::atoi(arguments[1]) : 100'000) ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return EXIT_FAILURE;
    }
}
