#pragma once

#include <cstdint>
#include <opencv2/core.hpp>
#include <ostream>
#include <vector>

#include "interface/Library.h"
#include "support/Framed.h"
#include "support/Scenes.h"

namespace quarry::test {

/// What a host sees of a background model after one frame.
struct BackgroundView {
    int32_t state = -1;
    uint64_t timestamp = 0;
    std::vector<uint8_t> mask;
    std::vector<uint8_t> background;

    bool operator==(const BackgroundView& other) const {
        return state == other.state && timestamp == other.timestamp && mask == other.mask &&
               background == other.background;
    }
};

inline std::ostream& operator<<(std::ostream& out, const BackgroundView& view) {
    return out << "state " << view.state << " at " << view.timestamp << ", " << view.mask.size() << " pixels";
}

constexpr uint64_t kTicksPerSecond = 10'000'000;

/// Options of a model that has learnt its background after two seconds.
inline Framed<BackgroundOptions> TwoSecondsToLearn() {
    auto options = FramedOptions<BackgroundOptions>();
    *options = {0, 0.5F, 100, 2.0F, 0.0F};
    return options;
}

inline void* CreateBackgroundModel(const Library& library) {
    auto options = TwoSecondsToLearn();
    void* handle = nullptr;
    library.Factory<BackgroundOptions>("CreateCVBackgroundModel")(&handle, options.record());
    return handle;
}

inline Framed<BackgroundData> BackgroundInput(const cv::Mat& frame, uint64_t timestamp) {
    auto input = FramedInput<BackgroundData>();
    input->Image = ImageOf(frame, timestamp);
    return input;
}

/// Copies what the updater shows; the buffers are its own and change with the next frame.
inline BackgroundView ViewOf(const Library& library, void* handle, int32_t state) {
    auto result = FramedResult<BackgroundResult>();
    library.GetUpdateResult(handle, result.as<UpdateResult>());
    const Image& image = *result->BackgroundImage;
    const auto pixels = static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height);
    return {state, image.timestamp, std::vector<uint8_t>(result->ForegroundMask, result->ForegroundMask + pixels),
            std::vector<uint8_t>(image.data, image.data + 3 * pixels)};
}

/// Feeds one frame and copies what the updater then shows.
inline BackgroundView Feed(const Library& library, void* handle, const cv::Mat& frame, uint64_t timestamp) {
    auto input = BackgroundInput(frame, timestamp);
    const int32_t state = library.Update(handle, input.as<UpdateData>());
    return ViewOf(library, handle, state);
}

}  // namespace quarry::test
