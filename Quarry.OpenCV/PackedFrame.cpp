#include "Quarry.OpenCV/PackedFrame.h"

#include <stdexcept>
#include <string>

#include "Quarry.Frame/Records/Buffers.h"

namespace quarry {

void CheckRoomForPackedFrame(const char* field, int width, int height, int stride) {
    if (width <= 0 || height <= 0) return;
    constexpr int64_t kChannels = 3;
    if (stride < kChannels * width) {
        throw std::invalid_argument(std::string(field) + ".stride is " + std::to_string(stride) +
                                    "; at least width x 3 = " + std::to_string(kChannels * width) + " is needed");
    }
    if (WrapsUnnoticed(height, stride)) {
        throw std::invalid_argument(std::string(field) + ": height " + std::to_string(height) + " x stride " +
                                    std::to_string(stride) + "; at most 2147483647 is allowed");
    }
}

}  // namespace quarry
