#pragma once

#include <opencv2/core.hpp>

#include "Quarry.OpenCV/CVOpticalFlowCalculator.h"

/// How far every pixel moved from the previous frame to the current one, by polynomial expansion (Farneback, SCIA
/// 2003).
///
/// Frames are read in place during the call, in R, G, B order; rows are packed (`width * 3` bytes), `stride` is not
/// consulted. The flow is written straight into the result's buffer, which belongs to this object and is valid until
/// its next Update or its end. A frame of another size begins anew. A frame with null `data` gives no result; if it has
/// the same size, the previous frame stays in place.
/// @throws cv::Exception          `data` is not null but the frame is empty
/// @throws std::invalid_argument  the frame has more than 2147483647 pixels (`std::bad_alloc` if their number wraps to
///                                a negative 32-bit number)
class DenseOpticalFlowCalculator : public CVOpticalFlowCalculator {
public:
    explicit DenseOpticalFlowCalculator(OFCOptions* source);

    void DoUpdate(OFCData data) override;
    void InitResult() override;
    void AssignResultData() override {}
    ~DenseOpticalFlowCalculator() override;
    bool NeedInitialize(OFCData data) override;
    void DoInitialize(OFCData data) override;
    void Dispose() override;

private:
    float pyramidScale = 0.4F;
    int levels = 5;
    int windowSize = 18;  ///< pixels
    int iterations = 3;
    int polynomialNeighbourhood = 3;  ///< pixels
    double polynomialSigma = 1.1;     ///< pixels
    int flags = 0;
    int width = 0;  ///< of the frames that the buffers were built for; 0 before the first
    int height = 0;
    cv::Mat previousGrey;
    bool firstFrame = true;
};
