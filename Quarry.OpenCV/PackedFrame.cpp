#include "Quarry.OpenCV/PackedFrame.h"

#include <limits>
#include <stdexcept>
#include <string>

#include "Quarry.Frame/Records/Buffers.h"

namespace quarry {

void CheckFrameSize(const char* field, int width, int height) {
    if (width >= 0 && height >= 0) return;
    throw std::invalid_argument(std::string(field) + ": " + std::to_string(width) + " x " + std::to_string(height) +
                                " pixels; neither may be negative");
}

void CheckRoomForPackedFrame(const char* field, int width, int height, int64_t stride) {
    if (width <= 0 || height <= 0) return;
    const int64_t packed = int64_t{width} * kFrameChannels;
    if (stride < packed) {
        throw std::invalid_argument(std::string(field) + ".stride is " + std::to_string(stride) +
                                    "; at least width x 3 = " + std::to_string(packed) + " is needed");
    }
    // If the product wraps to a negative number, the allocation fails. If it wraps to a positive one, there may be room
    // nevertheless.
    const int64_t room = Product(height, static_cast<int32_t>(stride));
    if (stride > std::numeric_limits<int32_t>::max() || (room >= 0 && room < height * packed)) {
        throw std::invalid_argument(std::string(field) + ": height " + std::to_string(height) + " x stride " +
                                    std::to_string(stride) + "; at most 2147483647 is allowed");
    }
}

}  // namespace quarry
