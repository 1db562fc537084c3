#pragma once

#include <cstddef>
#include <limits>
#include <opencv2/core.hpp>

#include "Quarry.Frame/Processor.h"

namespace quarry {

/// The most pixels that OpenCV counts. Up to this number the sums over a Laplacian stay below 2^53, so that a double
/// holds them exactly, whatever the order of the additions. For more pixels OpenCV computes the whole picture.
constexpr std::size_t kCountablePixels = std::numeric_limits<int>::max();

/// The variance of the Laplacian of a grey picture: the square of its deviation, rounded to a float before it is
/// squared.
/// @param grey    the picture, or a part of it; then the Laplacian must be 0 on the part's outline and outside the part
/// @param pixels  number of pixels of the whole picture
float VarianceOfLaplacian(const cv::Mat& grey, std::size_t pixels);

}  // namespace quarry

/// Sharpness of a colour frame: the variance of its Laplacian (Pech-Pacheco et al., ICPR 2000). A sharp frame has
/// strong second derivatives, a blurred one weak.
///
/// Pixels are read in place during the call; rows are packed (`width * 3` bytes), `stride` is not consulted.
/// The result holds no buffer, so giving it back releases nothing.
/// @throws MarshalingException  a record's length word or tag is wrong; the result record is untouched
/// @throws cv::Exception        `data` is null while the frame is not empty, or the frame is empty
class VarianceOfLaplacianProcessor : public Processor<ProcessOptions, VoLInputData, VoLOutputData> {
public:
    using Processor::Processor;

    VoLOutputData DoProcess(VoLInputData data) override;
};
