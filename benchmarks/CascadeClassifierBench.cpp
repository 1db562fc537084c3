#include <filesystem>
#include <memory>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <opencv2/objdetect.hpp>
#include <vector>

#include "Comparison.h"
#include "Quarry/Quarry.h"
#include "support/Footage.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::bench;
using namespace quarry::test;

const char* const kFaces = "/usr/share/opencv4/haarcascades/haarcascade_frontalface_alt.xml";
const RelRect kWhole = {0, 0, 1, 1};
constexpr int kSmallest = 40;  // pixels

/// Rectangles as x, y, width and height, relative to the frame.
cv::Mat Plain(cv::CascadeClassifier& cascade, const cv::Mat& frame) {
    cv::Mat grey;
    std::vector<cv::Rect> objects;
    cv::cvtColor(frame, grey, cv::COLOR_BGR2GRAY);
    cascade.detectMultiScale(grey, objects, 1.1, 5, cv::CASCADE_SCALE_IMAGE, {kSmallest, kSmallest}, {});
    const auto width = static_cast<float>(frame.cols);
    const auto height = static_cast<float>(frame.rows);
    cv::Mat relative(static_cast<int>(objects.size()), 4, CV_32F);
    for (int i = 0; i < relative.rows; ++i) {
        const cv::Rect& rect = objects[static_cast<std::size_t>(i)];
        relative.at<cv::Vec4f>(i) = {static_cast<float>(rect.x) / width, static_cast<float>(rect.y) / height,
                                     static_cast<float>(rect.width) / width, static_cast<float>(rect.height) / height};
    }
    return relative;
}

cv::Mat RectanglesOf(const ClassificationResult& result) {
    cv::Mat rectangles(result.Count, 4, CV_32F);
    for (int i = 0; i < result.Count; ++i) {
        const RelRect& rect = result.Responses[i].Rect;
        rectangles.at<cv::Vec4f>(i) = {rect.X, rect.Y, rect.Width, rect.Height};
    }
    return rectangles;
}

void CompareOn(const cv::Mat& frame, const std::string& name, const std::string& input) {
    ClassificationOptions options{};
    options.MinSize = kSmallest;
    options.MaxSize = -1;
    options.CascadePath = kFaces;
    ClassificationData data{};
    data.Frame = ImageOf(frame);
    data.Areas = &kWhole;
    const auto cascade = std::make_shared<cv::CascadeClassifier>(kFaces);
    Compare("CascadeClassifier", {name, input, 0.98}, Computed([cascade, frame] { return Plain(*cascade, frame); }),
            Called<ClassificationOptions, ClassificationData, ClassificationResult>(
                CreateCVCascadeClassifier, options, data,
                [](const ClassificationResult& result) { return BytesOf(RectanglesOf(result)); }));
}

}  // namespace

int main(int argc, char** argv) {
    if (std::filesystem::exists(kFaces)) {
        CompareOn(MovingSquare(640, 480, 0), "", "640x480");
        CompareOn(MovingSquare(1920, 1080, 0), "", "1920x1080");
        const cv::Mat face = cv::imread((MediaDirectory() / "messi5.jpg").string());
        if (!face.empty()) CompareOn(face, "a face", std::to_string(face.cols) + "x" + std::to_string(face.rows));
    }
    return Run(argc, argv);
}
