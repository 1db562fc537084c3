#include <limits>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "Comparison.h"
#include "Quarry/Memory.h"
#include "Quarry/Quarry.h"
#include "plain/ContourMaskProcessorDC.h"
#include "support/Footage.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::bench;

constexpr float kFillRate = 0.4F;
constexpr float kMinAreaRate = 0.001F;
const cv::Size kGrid(32, 24);

cv::Mat Plain(const cv::Mat& frame) {
    using namespace quarry::plain;
    return cv::Mat(OccupiedCells(FilledBlobs(frame, kFillRate, kMinAreaRate), kGrid, kFillRate), true);
}

/// The library's masks stay with the host, which releases each itself.
class Grids {
public:
    explicit Grids(const cv::Mat& frame)
        : call(CreateCVContourMaskProcessor, {0, kFillRate, kMinAreaRate},
               {0, quarry::test::ImageOf(frame), kGrid.width, kGrid.height}) {}

    std::string Next() {
        ContourMaskProcessorResult result = call.Process();
        std::string bytes = BytesOf(cv::Mat(kGrid.area(), 1, CV_8UC1, result.Mask->data));
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
