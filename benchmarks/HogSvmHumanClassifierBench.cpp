#include <memory>
#include <opencv2/objdetect.hpp>
#include <vector>

#include "Comparison.h"
#include "Quarry/Quarry.h"
#include "plain/HogSvmHumanClassifier.h"
#include "support/Footage.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::bench;
using namespace quarry::test;

constexpr float kSensitivity = 0.3F;  // a stride of 8 and a scale of 1.12
constexpr int kSmallest = 128;        // pixels

/// A detection's rectangle, relative to the frame, and its weight.
using Person = cv::Vec<double, 5>;

cv::Mat Plain(const cv::HOGDescriptor& hog, const cv::Mat& frame) {
    constexpr quarry::plain::PeopleSearch kSearch = {8, 1.12, kSmallest, std::numeric_limits<int>::max()};
    std::vector<Person> people;
    const double width = frame.cols;
    const double height = frame.rows;
    for (const auto& [rect, weight] : quarry::plain::People(hog, frame, kSearch)) {
        people.push_back({static_cast<float>(rect.x / width), static_cast<float>(rect.y / height),
                          static_cast<float>(rect.width / width), static_cast<float>(rect.height / height), weight});
    }
    return cv::Mat(people, true);
}

cv::Mat PeopleOf(const ClassificationResult& result) {
    std::vector<Person> people;
    for (int i = 0; i < result.Count; ++i) {
        const auto& [weight, rect] = result.Responses[i];
        people.push_back({rect.X, rect.Y, rect.Width, rect.Height, weight});
    }
    return cv::Mat(people, true);
}

void CompareOn(const cv::Mat& frame, const std::string& name, const std::string& input) {
    ClassificationOptions options{};
    options.Sensitivity = kSensitivity;
    options.MaxSize = 1.1;  // of the frame's height: no person is larger
    ClassificationData data{};
    data.Frame = ImageOf(frame);
    data.WholeFrame = 1;
    const auto hog = std::make_shared<cv::HOGDescriptor>(quarry::plain::PeopleDescriptor());
    Compare("HogSvmHumanClassifier", {name, input, 0.98}, Computed([hog, frame] { return Plain(*hog, frame); }),
            Called<ClassificationOptions, ClassificationData, ClassificationResult>(
                CreateCVHogSvmHumanClassifier, options, data,
                [](const ClassificationResult& result) { return BytesOf(PeopleOf(result)); }));
}

}  // namespace

int main(int argc, char** argv) {
    CompareOn(MovingSquare(640, 480, 0), "", "640x480");
    CompareOn(MovingSquare(1920, 1080, 0), "", "1920x1080");
    for (const cv::Mat& frame : PedestrianFrames(1)) CompareOn(frame, "pedestrians", "768x576");
    return Run(argc, argv);
}
