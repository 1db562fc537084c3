#include <opencv2/imgproc.hpp>
#include <opencv2/video/tracking.hpp>
#include <vector>

#include "Comparison.h"
#include "Quarry/Quarry.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::bench;
using Call = UpdaterCall<OFCOptions, OFCData, OFCResult>;

/// What the options of detail 0.5 and quality 0.3 come to.
constexpr OFCOptions kOptions{0, 0.5F, 0, 0.3F};
constexpr int kWindow = 17;
constexpr int kLevels = 3;
constexpr int kIterations = 3;

class PlainCalculator {
public:
    const cv::Mat& Update(const cv::Mat& frame) {
        cv::Mat grey;
        cv::cvtColor(frame, grey, cv::COLOR_RGB2GRAY);
        if (previous.empty()) {
            flow = cv::Mat::zeros(frame.size(), CV_32FC2);
        } else {
            cv::calcOpticalFlowFarneback(previous, grey, flow, static_cast<double>(0.4F), kLevels, kWindow, kIterations,
                                         3, 1.1, 0);
        }
        grey.copyTo(previous);
        return flow;
    }

private:
    cv::Mat previous;
    cv::Mat flow;
};

void CompareOn(const std::vector<cv::Mat>& frames, const std::string& input) {
    const auto plain = [] {
        return [calculator = std::make_shared<PlainCalculator>()](const cv::Mat& frame) {
            return calculator->Update(frame);
        };
    };
    const auto library = [] {
        return [call = std::make_shared<Call>(CreateCVDenseOpticalFlowCalculator, kOptions)](const cv::Mat& frame) {
            const AbsVectorMatrix& flow = *call->Update({0, quarry::test::ImageOf(frame)}).FlowMatrix;
            return cv::Mat(flow.height, flow.width, CV_32FC2, flow.data);
        };
    };
    const auto read = [](const cv::Mat& flow) { return BytesOf(flow); };
    Compare("DenseOpticalFlowCalculator", {"", input, 0.98}, Fed(frames, plain, read), Fed(frames, library, read));
}

void CompareOnDrawnMotion(int width, int height, const std::string& input) {
    CompareOn({quarry::test::MovingSquare(width, height, 0), quarry::test::MovingSquare(width, height, 1)}, input);
}

}  // namespace

int main(int argc, char** argv) {
    CompareOnDrawnMotion(640, 480, "640x480");
    CompareOnDrawnMotion(1920, 1080, "1920x1080");
    return Run(argc, argv);
}
