#include "Foreground.h"

#include <Quarry/HostOpenCV.hpp>
#include <opencv2/imgproc.hpp>

namespace quarry::command {

cv::Mat OnBlack(const cv::Mat& frame, const cv::Mat& foreground) {
    cv::Mat picture(frame.size(), frame.type(), cv::Scalar::all(0));
    frame.copyTo(picture, foreground);
    return picture;
}

cv::Mat RedFirst(const cv::Mat& frame) {
    cv::Mat redFirst;
    cv::cvtColor(frame, redFirst, cv::COLOR_BGR2RGB);
    return redFirst;
}

cv::Mat ForegroundExtractor::Extract(const VideoFrame& frame) {
    if (frame.timestamp == 0) return frame.pixels;
    model.Update(ViewOf(frame.pixels, frame.timestamp));
    return OnBlack(frame.pixels, MatOf(model.Result().foreground()));
}

}  // namespace quarry::command
