#pragma once

#include <opencv2/core.hpp>

#include "Operations/Handle.h"

namespace quarry::host {

/// Takes noise out of pictures, by non-local means.
class Denoiser {
public:
    Denoiser();

    /// A denoised copy of a packed 8-bit B, G, R picture.
    cv::Mat Denoise(const cv::Mat& picture);

private:
    Handle handle;
};

}  // namespace quarry::host
