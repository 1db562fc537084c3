#include "Quarry.OpenCV/FaceVarianceOfLaplacian.h"

#include <opencv2/imgproc.hpp>

#include "Quarry.OpenCV/PackedFrame.h"
#include "Quarry.OpenCV/VarianceOfLaplacian.h"

namespace {

/// Pixels added around the ellipse's half-axes: one for the rounded outline, one for the black pixels next to it, whose
/// Laplacian is not 0, and one for pixels whose Laplacian is 0, since all their neighbours are black.
constexpr int kMargin = 3;

/// The part of the frame that holds all pixels of the masked frame whose Laplacian is not 0. It is the whole frame if
/// the ellipse lies outside, or if the frame has more pixels than OpenCV can count.
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
    // The mask has the frame's size, so that the ellipse is drawn as in the frame. Only the region is written or read.
    cv::Mat mask(frame.size(), CV_8UC1);
    mask(region).setTo(0);
    cv::ellipse(mask, {data.FaceX, data.FaceY}, {data.FaceWidth, data.FaceHeight}, 0.0, 0.0, 360.0, cv::Scalar(255),
                cv::FILLED);
    cv::bitwise_and(face, mask(region), face);
    return {0, quarry::VarianceOfLaplacian(face, frame.total())};
}
