#pragma once

#include <cassert>
#include <limits>
#include <opencv2/core.hpp>
#include <stdexcept>
#include <string>

#include "Quarry.Frame/Processor.h"
#include "Quarry.OpenCV/PackedFrame.h"
#include "Quarry.OpenCV/RegionOf.h"

/// How alike the colours of the same region are in two frames: a comparison of their hue and saturation histograms.
///
/// The region is relative to the first frame and covers the same pixels in both; the second frame may be larger. The
/// histograms hold pixel counts, 50 hues by 60 saturations.
///
/// Pixels are read in place during the call; rows are packed (`width * 3` bytes), `stride` is not consulted. The result
/// holds no buffer.
/// @throws MarshalingException    a record's length word or tag is wrong; the result record is untouched
/// @throws std::invalid_argument  a frame's row has more than 2147483647 bytes
/// @throws cv::Exception          `data` is null while a frame is not empty, the region is empty or does not lie inside
///                                both frames, or `CompareMethod` is unknown
class ColorComparingProcessor
    : public Processor<ColorComparingOptions, ColorComparingInputData, ColorComparingOutputData> {
public:
    using Processor::Processor;

    ColorComparingOutputData DoProcess(ColorComparingInputData data) override;

private:
    /// @param field  the record's field of the image
    static cv::Mat Wrap(const char* field, const Image& image) {
        constexpr int kWidest = std::numeric_limits<int>::max() / quarry::kFrameChannels;
        if (image.width > kWidest || image.width < -kWidest) {
            throw std::invalid_argument(std::string("ColorComparingInputData.") + field + ".width is " +
                                        std::to_string(image.width) + "; at most " + std::to_string(kWidest) +
                                        " is allowed");
        }
        return quarry::PackedFrame(image);
    }

    /// Counts per hue and saturation.
    static cv::Mat HistogramOf(const cv::Mat& region);
};
