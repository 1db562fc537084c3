// Runs while the library is built. It prints the flame colours, by the library's own rules, as a table to include.
//
// The table is the same on every machine: no value that the rules compare comes closer than 1e-8 to its bound, and
// mathematics libraries differ by far less.
#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <iostream>
#include <vector>

#include "Quarry.OpenCV/PixelwiseFire.h"

namespace {

constexpr std::size_t kValues = 256;
constexpr std::size_t kMostRuns = 2;  // of blues that are flame, per red and green

struct Run {
    std::size_t first;
    std::size_t last;
};
constexpr Run kNone = {1, 0};  // holds no blue
using Runs = std::vector<Run>;

bool IsFlame(std::size_t red, std::size_t green, std::size_t blue) {
    const auto [L, a, b] = PixelwiseFireProcessor::RGB2Lab(static_cast<double>(red), static_cast<double>(green),
                                                           static_cast<double>(blue));
    return PixelwiseFireProcessor::ColorIsFlame(L, a, b);
}

/// The blues that are flame with a red and a green.
Runs BluesOf(std::size_t red, std::size_t green) {
    Runs runs;
    bool inside = false;
    for (std::size_t blue = 0; blue < kValues; ++blue) {
        const bool flame = IsFlame(red, green, blue);
        if (flame && !inside) runs.push_back({blue, blue});
        if (flame) runs.back().last = blue;
        inside = flame;
    }
    return runs;
}

void Print(Runs runs) {
    runs.resize(kMostRuns, kNone);
    std::cout << '{';
    for (const Run& run : runs) std::cout << run.first << ',' << run.last << ',';
    std::cout << "},";
}

}  // namespace

int main() {
    std::vector<std::vector<Runs>> blues(kValues, std::vector<Runs>(kValues));
    std::size_t leastRed = kValues - 1;
    std::size_t leastGreen = kValues - 1;
    std::size_t leastWarmth = kValues - 1;  // of red + green - blue
    for (std::size_t red = 0; red < kValues; ++red) {
        for (std::size_t green = 0; green < kValues; ++green) {
            const Runs& runs = blues[red][green] = BluesOf(red, green);
            if (runs.empty()) continue;
            if (runs.size() > kMostRuns) {
                std::cerr << "red " << red << ", green " << green << ": more runs of blues than the table holds\n";
                return EXIT_FAILURE;
            }
            leastRed = std::min(leastRed, red);
            leastGreen = std::min(leastGreen, green);
            leastWarmth = std::min(leastWarmth, red + green - std::min(red + green, runs.back().last));
        }
    }

    std::cout << "constexpr int kLeastRed = " << leastRed << ";\n";
    std::cout << "constexpr int kLeastGreen = " << leastGreen << ";\n";
    std::cout << "constexpr int kLeastWarmth = " << leastWarmth << ";\n";
    std::cout << "constexpr uint8_t kFlameBlues[][" << kValues - leastGreen << "][" << 2 * kMostRuns << "] = {\n";
    for (std::size_t red = leastRed; red < kValues; ++red) {
        std::cout << '{';
        for (std::size_t green = leastGreen; green < kValues; ++green) Print(blues[red][green]);
        std::cout << "},\n";
    }
    std::cout << "};\n";
    return std::cout.flush() ? EXIT_SUCCESS : EXIT_FAILURE;
}
