#include <algorithm>
#include <cstdint>
#include <cstring>

#include "Quarry.OpenCV/BackgroundUpdating.h"

namespace {

constexpr uint8_t kForeground = 255;
constexpr int kThreeForegroundPixels = 3 * kForeground;
/// Number of pixels whose sums are computed before any of them is cleared.
constexpr int kBlockPixels = 1024;
/// Number of pixels that are cleared together. They are the digits of one number, the leftmost pixel the lowest digit.
constexpr int kDigits = sizeof(uint64_t);

struct Rows {
    const uint8_t* above;
    uint8_t* here;
    const uint8_t* below;
};

/// What can be computed for a run of pixels before their left neighbours have their new values.
struct Block {
    int16_t aboveAndBelow[kBlockPixels + 2];  ///< of each column, from the one left of the first pixel
    uint8_t mayStay[kBlockPixels];            ///< 255: the pixel stays if its left neighbour does
    uint8_t stays[kBlockPixels];              ///< 1: it stays in any case
};

/// Computes a block. No pixel depends on the new value of another here, so that the compiler vectorises the loops.
void Look(const Rows& rows, int first, int count, Block& block) {
    const uint8_t* const above = rows.above + first - 1;
    const uint8_t* const below = rows.below + first - 1;
    const uint8_t* const here = rows.here + first;
    for (int i = 0; i < count + 2; ++i) block.aboveAndBelow[i] = static_cast<int16_t>(above[i] + below[i]);
    for (int i = 0; i < count; ++i) {
        const int16_t* const columns = block.aboveAndBelow + i;
        const auto sumButLeft = static_cast<int16_t>(columns[0] + columns[1] + columns[2] + here[i] + here[i + 1]);
        const bool isForeground = here[i] == kForeground;
        block.mayStay[i] = isForeground && sumButLeft >= kThreeForegroundPixels - kForeground ? kForeground : 0;
        block.stays[i] = isForeground && sumButLeft >= kThreeForegroundPixels ? 1 : 0;
    }
}

/// The new values of eight pixels. Whether a pixel stays may depend on its left neighbour, as a digit's sum depends on
/// the carry of the digit before it, so one addition decides all eight. A pixel that stays in any case adds 255 and 1:
/// it carries. A pixel that stays if its neighbour stays adds 255 and 0: it passes a carry on. Any other pixel adds 0
/// and 0: it stops a carry.
/// @param carry  before: 1 if the pixel to the left of these stays; after: 1 if the last of these stays
uint64_t Cleared(uint64_t mayStay, uint64_t stays, uint64_t& carry) {
    constexpr uint64_t kTopBits = 0x8080808080808080;
    const uint64_t withoutCarry = mayStay + stays;
    const uint64_t sum = withoutCarry + carry;
    carry = static_cast<uint64_t>(withoutCarry < mayStay || sum < withoutCarry);
    // A digit of 255 that carried has become 0 or 1; without a carry it is still 255.
    const uint64_t carried = mayStay & ~sum & kTopBits;
    return (carried >> 7) * kForeground;
}

/// @param carry  before: 1 if the pixel to the left stays; after, for a full block: 1 if its last pixel stays
void ClearBlock(const Rows& rows, int first, int count, Block& block, uint64_t& carry) {
    Look(rows, first, count, block);
    // Beyond `count` the last number may hold digits of an earlier block. They are higher digits, whose carries do not
    // reach the others.
    for (int i = 0; i < count; i += kDigits) {
        uint64_t mayStay = 0;
        uint64_t stays = 0;
        std::memcpy(&mayStay, block.mayStay + i, kDigits);
        if (mayStay == 0) {  // true nearly everywhere: none of the eight stays, and all of them are 0 already
            carry = 0;
            continue;
        }
        std::memcpy(&stays, block.stays + i, kDigits);
        const uint64_t cleared = Cleared(mayStay, stays, carry);
        std::memcpy(block.mayStay + i, &cleared, kDigits);
    }
    std::memcpy(rows.here + first, block.mayStay, static_cast<std::size_t>(count));
}

/// Clears the first pixel of a row. Its left neighbour is on the border, so it may be any byte and is summed too.
/// @return whether the pixel stays
bool ClearFirst(const Rows& rows) {
    int sum = 0;
    for (int c = 0; c <= 2; ++c) sum += rows.above[c] + rows.here[c] + rows.below[c];
    const bool stays = sum >= kThreeForegroundPixels && rows.here[1] == kForeground;
    rows.here[1] = stays ? kForeground : 0;
    return stays;
}

}  // namespace

void BackgroundUpdatingSystem::DeNoise(cv::Mat& mask) {
    if (mask.cols < 3) return;
    const int end = mask.cols - 1;
    Block block{};
    for (int row = 1; row < mask.rows - 1; ++row) {
        const Rows rows{mask.ptr(row - 1), mask.ptr(row), mask.ptr(row + 1)};
        uint64_t carry = ClearFirst(rows) ? 1 : 0;
        for (int first = 2, count = 0; first < end; first += count) {
            count = std::min(kBlockPixels, end - first);
            ClearBlock(rows, first, count, block, carry);
        }
    }
}
