#include "Operations/Sharpness.h"

#include "Operations/Call.h"

namespace quarry::host {

SharpnessMeter::SharpnessMeter() : handle(Create(CreateCVLaplacianVarianceProcessor, ProcessOptions{})) {}

float SharpnessMeter::Measure(const cv::Mat& frame) {
    return Processed<VoLOutputData>(handle, VoLInputData{0, ImageOf(frame)})->Variance;
}

FaceSharpnessMeter::FaceSharpnessMeter() : handle(Create(CreateCVFaceLaplacianVarianceProcessor, ProcessOptions{})) {}

float FaceSharpnessMeter::Measure(const cv::Mat& frame, const FaceEllipse& face) {
    const FaceVoLInputData input = {0,
                                    ImageOf(frame),
                                    static_cast<int16_t>(face.x),
                                    static_cast<int16_t>(face.y),
                                    static_cast<int16_t>(face.halfWidth),
                                    static_cast<int16_t>(face.halfHeight)};
    return Processed<VoLOutputData>(handle, input)->Variance;
}

}  // namespace quarry::host
