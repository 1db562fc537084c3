#include "Quarry.OpenCV/FaceVarianceOfLaplacian.h"

#include <opencv2/imgproc.hpp>

#include "Quarry.OpenCV/PackedFrame.h"
#include "Quarry.OpenCV/VarianceOfLaplacian.h"

namespace {

/// Pixels around the ellipse's half-axes: one for its rounded outline, one beside it that has a Laplacian, and one that
/// has none, nor a neighbour that is not black.
constexpr int kMargin = 3;

/// The part of the frame outside of which the masked frame has no Laplacian: the whole frame if none has.
cv::Rect FaceRegion(const cv::Mat& frame, const FaceVoLInputData& face) {
    const cv::Rect whole(0, 0, frame.cols, frame.rows);
    const cv::Point reach(face.FaceWidth + kMargin, face.FaceHeight + kMargin);
    const cv::Point centre(face.FaceX, face.FaceY);
    const cv::Rect region = whole & cv::Rect(centre - reach, centre + reach + cv::Point(1, 1));
    return region.empty() || frame.total() > quarry::kCountablePixels ? whole : region;
}

}  // namespace

VoLOutputData FaceVarianceOfLaplacianProcessor::DoProcess(FaceVoLInputData data) {
    const cv::Mat frame = quarry::PackedFrame(data.Image);
    const cv::Rect region = FaceRegion(frame, data);
    cv::Mat face;
    cv::cvtColor(frame(region), face, cv::COLOR_BGR2GRAY);
    // As large as the frame, so that the ellipse is drawn as in it; only the region is ever written or read.
    cv::Mat mask(frame.size(), CV_8UC1);
    mask(region).setTo(0);
    cv::ellipse(mask, {data.FaceX, data.FaceY}, {data.FaceWidth, data.FaceHeight}, 0.0, 0.0, 360.0, cv::Scalar(255),
                cv::FILLED);
    cv::bitwise_and(face, mask(region), face);
    return {0, quarry::VarianceOfLaplacian(face, frame.total())};
}
