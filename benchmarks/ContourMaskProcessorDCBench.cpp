#include <limits>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "Comparison.h"
#include "Quarry/Memory.h"
#include "Quarry/Quarry.h"
#include "support/Footage.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::bench;

using Points = std::vector<cv::Point>;

constexpr float kFillRate = 0.4F;
constexpr float kMinAreaRate = 0.001F;
const cv::Size kGrid(32, 24);

std::vector<Points> ValidContours(const std::vector<Points>& contours, float imageArea) {
    const int threshold = static_cast<int>(imageArea * kMinAreaRate);
    std::vector<Points> valid;
    for (const Points& contour : contours) {
        if (cv::contourArea(contour, false) >= threshold) valid.push_back(contour);
    }
    return valid;
}

std::vector<Points> Contours(const cv::Mat& frame) {
    cv::Mat grey;
    cv::cvtColor(frame, grey, cv::COLOR_RGB2GRAY);
    std::vector<Points> contours;
    cv::findContours(grey, contours, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_TC89_KCOS);
    return ValidContours(contours, static_cast<float>(grey.rows * grey.cols));
}

cv::Mat Plain(const cv::Mat& frame) {
    cv::Mat drawing = cv::Mat::zeros(frame.size(), CV_8UC1);
    const std::vector<Points> contours = Contours(frame);
    for (int i = 0; i < static_cast<int>(contours.size()); ++i) {
        cv::drawContours(drawing, contours, i, cv::Scalar(255, 0, 0, 0), cv::FILLED);
    }
    const cv::Size cell(frame.cols / kGrid.width, frame.rows / kGrid.height);
    const int threshold = static_cast<int>(static_cast<float>(cell.area()) * kFillRate);
    cv::Mat grid(kGrid, CV_8UC1);
    for (int row = 0; row < kGrid.height; ++row) {
        for (int column = 0; column < kGrid.width; ++column) {
            const cv::Point corner(column * cell.width, row * cell.height);
            const int count = cv::countNonZero(drawing(cv::Rect(corner, cell)));
            grid.at<uint8_t>(row, column) = count > threshold ? 1 : 0;
        }
    }
    return grid;
}

/// The library's masks stay with the host, which releases each itself.
class Grids {
public:
    explicit Grids(const cv::Mat& frame)
        : call(CreateCVContourMaskProcessor, {0, kFillRate, kMinAreaRate},
               {0, quarry::test::ImageOf(frame), kGrid.width, kGrid.height}) {}

    std::string Next() {
        ContourMaskProcessorResult result = call.Process();
        std::string bytes = BytesOf(cv::Mat(kGrid, CV_8UC1, result.Mask->data));
        DestroyContourMaskProcessorResult(&result);
        return bytes;
    }

    void Make() {
        ContourMaskProcessorResult result = call.Process();
        DestroyContourMaskProcessorResult(&result);
    }

private:
    ProcessorCall<ContourMaskProcessorOptions, ContourMaskProcessorData, ContourMaskProcessorResult> call;
};

void CompareOn(const cv::Mat& frame, const std::string& input, double floor) {
    const auto grids = std::make_shared<Grids>(frame);
    Compare("ContourMaskProcessorDC", {"", input, floor}, Computed([frame] { return Plain(frame); }),
            {[frame, grids] { grids->Make(); }, [grids] { return grids->Next(); }});
}

}  // namespace

int main(int argc, char** argv) {
    CompareOn(quarry::test::PaintedObjects(640, 480), "640x480", 2);
    CompareOn(quarry::test::PaintedObjects(1920, 1080), "1920x1080", 4);
    const cv::Mat pedestrians = quarry::test::ChangedPedestrians();
    if (!pedestrians.empty()) CompareOn(pedestrians, "768x576 pedestrians", 1);
    return Run(argc, argv);
}
