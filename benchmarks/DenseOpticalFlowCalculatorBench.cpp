#include <opencv2/imgproc.hpp>
#include <opencv2/video/tracking.hpp>
#include <vector>

#include "Comparison.h"
#include "Quarry/Quarry.h"
#include "plain/DenseOpticalFlowCalculator.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::bench;
using Call = UpdaterCall<OFCOptions, OFCData, OFCResult>;

constexpr OFCOptions kOptions{0, 0.5F, 0, 0.3F};

class PlainCalculator {
public:
    const cv::Mat& Update(const cv::Mat& frame) {
        const cv::Mat grey = quarry::plain::GreyOfRgb(frame);
        if (previous.empty()) {
            flow = cv::Mat::zeros(frame.size(), CV_32FC2);
        } else {
            quarry::plain::FindFlow(previous, grey, flow, quarry::plain::kMiddle);
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
