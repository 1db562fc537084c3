#pragma once

#include "Quarry.Frame/Processor.h"

/// Sharpness of a face: the variance of the Laplacian (Pech-Pacheco et al., ICPR 2000) of a frame that is black outside
/// an ellipse. The variance is that of the whole frame, so the ellipse's border and size affect it.
///
/// Pixels are read in place during the call; rows are packed (`width * 3` bytes), `stride` is not consulted.
/// The result holds no buffer, so giving it back releases nothing.
/// @throws MarshalingException  a record's length word or tag is wrong; the result record is untouched
/// @throws cv::Exception        `data` is null while the frame is not empty, the frame is empty, or a half-axis is
///                              negative
class FaceVarianceOfLaplacianProcessor : public Processor<ProcessOptions, FaceVoLInputData, VoLOutputData> {
public:
    using Processor::Processor;

    VoLOutputData DoProcess(FaceVoLInputData data) override;
};
