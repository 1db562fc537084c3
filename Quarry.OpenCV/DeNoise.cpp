#include <algorithm>
#include <cstdint>
#include <cstring>

#include "Quarry.OpenCV/BackgroundUpdating.h"

namespace {

constexpr uint8_t kForeground = 255;
constexpr int kThreeForegroundPixels = 3 * kForeground;
/// Pixels whose sums are taken before any of them is cleared.
constexpr int kBlockPixels = 1024;
/// Pixels that are cleared at a time, each a digit of a number: the leftmost is the lowest.
constexpr int kDigits = sizeof(uint64_t);

struct Rows {
    const uint8_t* above;
    uint8_t* here;
    const uint8_t* below;
};

/// What is known of a run of pixels before the one to its left is cleared.
struct Block {
    int16_t aboveAndBelow[kBlockPixels + 2];  ///< of each column, from the one left of the first pixel
    uint8_t mayStay[kBlockPixels];            ///< 255: the pixel stays if its left neighbour does
    uint8_t stays[kBlockPixels];              ///< 1: it stays in any case
};

/// A loop that takes many pixels at a time: it decides nothing that the next pixel waits for.
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

/// The new pixels: whether one stays hangs on its left neighbour as a carry hangs on the digit before it. A pixel that
/// stays in any case adds 255 and 1, so it carries; one that stays if its neighbour does adds 255 and 0, so it passes a
/// carry on; any other adds 0 and 0, so it swallows it.
/// @param carry  1 if the pixel to the left of these stays; then, 1 if the last of these does
uint64_t Cleared(uint64_t mayStay, uint64_t stays, uint64_t& carry) {
    constexpr uint64_t kTopBits = 0x8080808080808080;
    const uint64_t withoutCarry = mayStay + stays;
    const uint64_t sum = withoutCarry + carry;
    carry = static_cast<uint64_t>(withoutCarry < mayStay || sum < withoutCarry);
    // 255 to which nothing came is 255; where it carried, 0 or 1 is left.
    const uint64_t carried = mayStay & ~sum & kTopBits;
    return (carried >> 7) * kForeground;
}

/// @param carry  1 if the pixel to the left stays; then, for a full block, 1 if its last pixel does
void ClearBlock(const Rows& rows, int first, int count, Block& block, uint64_t& carry) {
    Look(rows, first, count, block);
    // The last number may hold digits of an earlier block beyond `count`: a carry never runs down from there.
    for (int i = 0; i < count; i += kDigits) {
        uint64_t mayStay = 0;
        uint64_t stays = 0;
        std::memcpy(&mayStay, block.mayStay + i, kDigits);
        if (mayStay == 0) {  // as nearly everywhere: nothing to wait for, and all eight are 0 already
            carry = 0;
            continue;
        }
        std::memcpy(&stays, block.stays + i, kDigits);
        const uint64_t cleared = Cleared(mayStay, stays, carry);
        std::memcpy(block.mayStay + i, &cleared, kDigits);
    }
    std::memcpy(rows.here + first, block.mayStay, static_cast<std::size_t>(count));
}

/// The first pixel of a row, whose left neighbour is the border and so may be any byte.
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
