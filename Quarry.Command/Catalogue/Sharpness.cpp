#include "Catalogue/Describing.h"
#include "Catalogue/Families.h"

namespace quarry::command {
namespace {

constexpr const char* kMethod = "Pech-Pacheco et al., ICPR 2000";

Record Sharpness() {
    return QUARRY_RECORD(VoLOutputData, "The sharpness; holds no buffer.", QUARRY_FIELD(VoLOutputData, Status, kStatus),
                         QUARRY_FIELD(VoLOutputData, Variance,
                                      "variance of the Laplacian of the grey frame, squared grey levels, 0 or more"));
}

Operation FrameSharpness() {
    return {"frame-sharpness",
            "Sharpness of a frame: the variance of its Laplacian",
            Kind::Processor,
            "CreateCVLaplacianVarianceProcessor",
            "sharpness",
            kMethod,
            PlainOptions(),
            QUARRY_RECORD(VoLInputData, "A frame to measure.", QUARRY_FIELD(VoLInputData, Header, kHeader),
                          QUARRY_FIELD(VoLInputData, Image, kBgr)),
            Sharpness(),
            {kWrongFrame, kNoFrame}};
}

Operation FaceSharpness() {
    return {"face-sharpness",
            "Sharpness of a face: the variance of the Laplacian of a frame that is black outside an ellipse",
            Kind::Processor,
            "CreateCVFaceLaplacianVarianceProcessor",
            "sharpness",
            kMethod,
            PlainOptions(),
            QUARRY_RECORD(FaceVoLInputData, "A frame and the ellipse to measure in it.",
                          QUARRY_FIELD(FaceVoLInputData, Header, kHeader), QUARRY_FIELD(FaceVoLInputData, Image, kBgr),
                          QUARRY_FIELD(FaceVoLInputData, FaceX, "centre of the ellipse, column in pixels"),
                          QUARRY_FIELD(FaceVoLInputData, FaceY, "centre of the ellipse, row in pixels"),
                          QUARRY_FIELD(FaceVoLInputData, FaceWidth, "half-axis along x, pixels, 0 or more"),
                          QUARRY_FIELD(FaceVoLInputData, FaceHeight, "half-axis along y, pixels, 0 or more")),
            Sharpness(),
            {kWrongFrame, kNoFrame, {"cv::Exception", "a half-axis is negative"}}};
}

}  // namespace

std::vector<Operation> SharpnessOperations() {
    return {FrameSharpness(), FaceSharpness()};
}

}  // namespace quarry::command
