#pragma once

#include <opencv2/core.hpp>

#include "Quarry.Frame/Processor.h"

namespace quarry {

/// The variance of the Laplacian of a grey picture: the square of its deviation, narrowed before it is squared.
float VarianceOfLaplacian(const cv::Mat& grey);

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
