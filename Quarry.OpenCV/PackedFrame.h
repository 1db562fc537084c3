#pragma once

#include <cstddef>
#include <cstdint>
#include <opencv2/core.hpp>

#include "Quarry/SharedRecords.h"

namespace quarry {

constexpr int kFrameChannels = 3;

/// A header over `height * width` packed 8-bit pixels of three channels: no copy, nothing owned.
/// @throws cv::Exception  `data` is null while the size is not empty
inline cv::Mat PackedFrame(uint8_t* data, int width, int height) {
    return cv::Mat(height, width, CV_8UC3, data, static_cast<std::size_t>(width) * kFrameChannels);
}

/// The pixels of an image, taken as packed: its stride is not consulted.
inline cv::Mat PackedFrame(const Image& image) {
    return PackedFrame(image.data, image.width, image.height);
}

/// Checks that no side of a frame is negative. If both are, OpenCV would process the frame as if it had pixels.
/// @param field  the record's field that holds the size, for the message
/// @throws std::invalid_argument  either side is negative
void CheckFrameSize(const char* field, int width, int height);

/// Checks that a buffer of `height * stride` bytes, counted in 32 bits, has room for the packed frame that will be
/// written into it. An empty frame needs no room.
/// @param field  the record's field that holds size and stride, for the message
/// @throws std::invalid_argument  `stride` is below `width * 3` or does not fit 32 bits, or the product wraps to fewer
///                                bytes than the frame has
void CheckRoomForPackedFrame(const char* field, int width, int height, int64_t stride);

}  // namespace quarry
