#pragma once

#include <Quarry/Quarry.h>

#include <array>
#include <cstddef>
#include <opencv2/core.hpp>

#include "Operations/Handle.h"

namespace quarry::host {

constexpr std::size_t kLandmarks = 5;
/// In pixels.
using Landmarks = std::array<FloatPoint, kLandmarks>;

/// Turns, scales and shifts pictures so that landmarks in them come to lie where they should.
class Aligner {
public:
    /// @param size  of the pictures that it makes
    explicit Aligner(const cv::Size& size);

    /// Black where it reaches beyond the picture.
    /// @param picture      packed 8-bit, three channels, as is the result
    /// @param source       where the landmarks are in the picture; not all in one place
    /// @param destination  where they are to be in the result
    cv::Mat Align(const cv::Mat& picture, const Landmarks& source, const Landmarks& destination);

private:
    Handle handle;
};

}  // namespace quarry::host
