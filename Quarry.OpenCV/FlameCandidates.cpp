#include "Quarry.OpenCV/FlameCandidates.h"

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>

#include "Quarry.OpenCV/PackedFrame.h"

namespace quarry {

namespace {

// Whether a pixel is a flame depends on its colour alone, so it is decided for all colours when the library is built.
// For each red and green, kFlameBlues holds the first and last blue of two runs of flame colours. The table starts at
// the lowest red and green of any flame. kLeastWarmth is the lowest red + green - blue of any flame; most greys are
// below it.
#include "FlameTable.inc"

/// @param pixel  its red is at least kLeastRed, its green at least kLeastGreen
bool IsFlame(const uchar* pixel) {
    const uint8_t* const runs = kFlameBlues[pixel[2] - kLeastRed][pixel[1] - kLeastGreen];
    const uchar blue = pixel[0];
    // No branches, since a camera's noise would make them hard to predict.
    return ((runs[0] <= blue) & (blue <= runs[1])) | ((runs[2] <= blue) & (blue <= runs[3]));
}

constexpr std::size_t kPart = 16;                 // bytes compared at a time
constexpr std::size_t kBlock = 16;                // pixels, three parts
constexpr uint64_t kFirstBytes = 0x249249249249;  // a bit per byte of a block, set for the first byte of each pixel

__m128i Load(const uchar* bytes) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

__m128i NotBelow(__m128i values, int least) {
    return _mm_cmpeq_epi8(_mm_max_epu8(values, _mm_set1_epi8(static_cast<char>(least))), values);
}

/// Tests the pixels of a block.
/// @param test  tests 16 bytes from an address on, each as if it were the first byte of a pixel
/// @return a bit per byte, set for the first byte of each pixel that passes
template <class Test>
uint64_t Passing(const uchar* block, Test test) {
    uint64_t passing = 0;
    for (std::size_t part = 0; part < kFrameChannels; ++part) {
        passing |= static_cast<uint64_t>(_mm_movemask_epi8(test(block + kPart * part))) << kPart * part;
    }
    return passing & kFirstBytes;
}

__m128i IsRed(const uchar* pixels) {
    return NotBelow(Load(pixels + 2), kLeastRed);
}

__m128i MayBeFlame(const uchar* pixels) {
    const __m128i blue = Load(pixels);
    const __m128i green = Load(pixels + 1);
    const __m128i red = Load(pixels + 2);
    // The additions saturate: a sum above 255 becomes 255, which is not below kLeastWarmth either.
    const __m128i warmth = _mm_subs_epu8(_mm_adds_epu8(red, _mm_subs_epu8(green, blue)), _mm_subs_epu8(blue, green));
    return _mm_and_si128(IsRed(pixels), _mm_and_si128(NotBelow(green, kLeastGreen), NotBelow(warmth, kLeastWarmth)));
}

/// Marks the flames of a block. It reads two bytes beyond the block.
void MarkBlock(const uchar* block, uchar* marks) {
    if (Passing(block, IsRed) == 0) return;  // true of most blocks of most frames
    for (uint64_t left = Passing(block, MayBeFlame); left != 0; left &= left - 1) {
        const int byte = __builtin_ctzll(left);
        marks[byte / kFrameChannels] = IsFlame(block + byte) ? kFlame : 0;
    }
}

}  // namespace

cv::Mat FlameCandidates(const cv::Mat& frame) {
    cv::Mat candidates = cv::Mat::zeros(frame.size(), CV_8UC1);
    const uchar* pixel = frame.data;
    uchar* mark = candidates.data;
    std::size_t left = frame.total();
    for (; left > kBlock; left -= kBlock) {
        MarkBlock(pixel, mark);
        pixel += 3 * kPart;
        mark += kBlock;
    }
    for (; left > 0; --left) {
        if (pixel[2] >= kLeastRed && pixel[1] >= kLeastGreen && IsFlame(pixel)) *mark = kFlame;
        pixel += kFrameChannels;
        ++mark;
    }
    return candidates;
}

}  // namespace quarry
