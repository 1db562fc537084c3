#pragma once

#include <opencv2/core.hpp>

#include "Quarry.OpenCV/CVOpticalFlowCalculator.h"

/// How far every pixel moved from the previous frame to the current one, by polynomial expansion (Farneback, SCIA
/// 2003).
///
/// Frames are read in place during the call, as R, G, B, where the other operations read B, G, R; rows are packed
/// (`width * 3` bytes), `stride` is not consulted. The flow is written straight into the result's buffer, which is this
/// object's own and valid until the next Update or the end. A frame of another size begins anew; a null frame
/// gives no result and, if it is of the same size, leaves the previous frame in place.
/// @throws cv::Exception          the frame has pixels but is empty
/// @throws std::invalid_argument  the frame has more pixels than a 32-bit size can say; where that wraps to a negative
///                                size it is std::bad_alloc
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
