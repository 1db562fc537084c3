#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <new>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "Quarry/Memory.h"
#include "plain/ContourMaskProcessorDC.h"
#include "support/Allocations.h"
#include "support/Calls.h"
#include "support/Footage.h"
#include "support/HugeFrame.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::test;
using Cells = std::vector<uint8_t>;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr int kLowest = std::numeric_limits<int>::min();
const float kJustAboveHalf = std::nextafter(0.5F, 1.0F);

Cells Reference(const cv::Mat& frame, const cv::Size& grid, float fillRate, float areaRate) {
    return quarry::plain::OccupiedCells(quarry::plain::FilledBlobs(frame, fillRate, areaRate), grid, fillRate);
}

class ContourMask : public ProcessorTest<operations::ContourGrid> {
protected:
    ContourMask() : ProcessorTest({0, 0.25F, 0.0F}) {}

    void Create(float fillRate, float areaRate) { ProcessorTest::Create({0, fillRate, areaRate}); }

    Cells Grid(const Image& frame, const cv::Size& grid) {
        auto result = Call({0, frame, grid.width, grid.height});
        EXPECT_EQ(result->Mask->width, grid.width);
        EXPECT_EQ(result->Mask->height, grid.height);
        Cells cells(result->Mask->data, result->Mask->data + grid.area());
        DestroyContourMaskProcessorResult(result.operator->());
        return cells;
    }
    Cells Grid(const cv::Mat& frame, const cv::Size& grid) { return Grid(ImageOf(frame), grid); }

    template <class Exception>
    void ExpectRefusal(const Image& image, const cv::Size& grid, const std::string& message = {}) {
        SCOPED_TRACE(testing::Message() << image.width << " x " << image.height << ", grid " << grid);
        const std::string said = RefusalOf<Exception>({0, image, grid.width, grid.height});
        EXPECT_NE(said.find(message), std::string::npos) << said;
    }
};

TEST_F(ContourMask, MarksTheFilledCellsOfRandomScenes) {
    const cv::Size sizes[] = {{1, 1}, {7, 5}, {33, 21}, {64, 48}, {101, 77}};
    const cv::Size grids[] = {{1, 1}, {2, 3}, {7, 5}, {10, 10}, {33, 21}, {13, 1}};
    for (const float fillRate : {0.0F, 0.3F, 0.5F, kJustAboveHalf, 0.75F, 0.999F, 1.0F, 1.5F, -0.1F, kNan}) {
        for (const float areaRate : {0.0F, 0.004F, 0.03F, 0.3F}) {
            Create(fillRate, areaRate);
            for (uint64_t seed = 0; seed < 40; ++seed) {
                const cv::Mat frame = RandomScene(sizes[seed % std::size(sizes)], seed);
                const cv::Size& grid = grids[seed % std::size(grids)];
                EXPECT_EQ(Grid(frame, grid), Reference(frame, grid, fillRate, areaRate))
                    << fillRate << ", " << areaRate << ", seed " << seed << ", " << frame.size() << ", " << grid;
            }
        }
    }
}

TEST_F(ContourMask, MarksTheFilledCellsOfRealFrames) {
    const std::vector<cv::Mat> frames = PedestrianFrames(6);
    if (frames.empty()) GTEST_SKIP() << "no footage in " << MediaDirectory();
    for (const float fillRate : {0.4F, 0.6F}) {
        Create(fillRate, 0.0002F);
        for (std::size_t i = 0; i < frames.size(); ++i) {
            cv::Mat frame = frames[i].clone();
            cv::Mat grey;
            cv::cvtColor(frame, grey, cv::COLOR_BGR2GRAY);
            frame.setTo(cv::Scalar::all(0), grey > 110);
            for (const cv::Size& grid : {cv::Size(16, 12), cv::Size(61, 47)}) {
                EXPECT_EQ(Grid(frame, grid), Reference(frame, grid, fillRate, 0.0002F))
                    << "frame " << i << ", " << grid << ", " << fillRate;
            }
        }
    }
}

TEST_F(ContourMask, OfABlackFrameIsZeros) {
    for (const float fillRate : {0.0F, 0.5F, 1.0F}) {
        Create(fillRate, 0.0F);
        EXPECT_EQ(Grid(BlackFrame(64, 48), {8, 6}), Cells(48, 0)) << fillRate;
    }
}

TEST_F(ContourMask, KeepsASinglePixelWhenNoAreaIsAskedFor) {
    Create(0.0F, 0.0F);
    Cells expected(16, 0);
    expected[6] = 1;
    EXPECT_EQ(Grid(FrameWith({40, 40}, {25, 15, 1, 1}), {4, 4}), expected);
}

TEST_F(ContourMask, GoesRowByRow) {
    Cells expected(15, 0);
    expected[8] = 1;  // the fourth of five cells in the second of three rows
    EXPECT_EQ(Grid(FrameWith({50, 30}, {30, 10, 10, 10}), {5, 3}), expected);
}

TEST_F(ContourMask, MarksACellOnlyWhenMoreThanTheRateOfItIsFilled) {
    // Three quarters of a cell's 400 pixels, and one pixel more. Above a half every pixel of an outline is traced.
    Create(0.75F, 0.0F);
    cv::Mat frame = FrameWith({20, 20}, {0, 0, 15, 20});
    EXPECT_EQ(Grid(frame, {1, 1}), Cells{0});
    frame.at<cv::Vec3b>(5, 17) = cv::Vec3b::all(255);
    EXPECT_EQ(Grid(frame, {1, 1}), Cells{1});
}

TEST_F(ContourMask, CountsAgainstTheWholePixelsOfTheRate) {
    // 300 pixels of 400 are filled: more than 299.96, which rounds to as many.
    Create(0.7499F, 0.0F);
    EXPECT_EQ(Grid(FrameWith({20, 20}, {0, 0, 15, 20}), {1, 1}), Cells{1});
    // None are filled, and more than -0.5 are asked for, which is no whole pixel.
    Create(-0.005F, 0.0F);
    EXPECT_EQ(Grid(BlackFrame(10, 10), {1, 1}), Cells{0});
}

TEST_F(ContourMask, NeverMarksACellWhenAllOfItIsAskedFor) {
    const cv::Mat frame = FrameWith({40, 40}, {0, 0, 40, 40});
    Create(0.99F, 0.0F);
    EXPECT_EQ(Grid(frame, {4, 4}), Cells(16, 1));
    Create(1.0F, 0.0F);
    EXPECT_EQ(Grid(frame, {4, 4}), Cells(16, 0));
}

TEST_F(ContourMask, KeepsAContourOfExactlyTheSmallestArea) {
    // Between the centres of its pixels the square has an area of 100.
    const cv::Mat frame = FrameWith({100, 100}, {20, 20, 11, 11});
    ASSERT_EQ(10000.0F * 0.01F, 100.0F);
    Create(0.0F, 0.01F);
    EXPECT_EQ(Grid(frame, {1, 1}), Cells{1});
    Create(0.0F, 0.0102F);
    EXPECT_EQ(Grid(frame, {1, 1}), Cells{0});
}

TEST_F(ContourMask, TruncatesTheSmallestAreaToWholePixels) {
    const cv::Mat frame = FrameWith({100, 100}, {20, 20, 11, 11});
    ASSERT_GT(10000.0F * 0.01009F, 100.5F);
    Create(0.0F, 0.01009F);
    EXPECT_EQ(Grid(frame, {1, 1}), Cells{1});
}

TEST_F(ContourMask, TakesTheShareOfACellOfMorePixelsThan31BitsCount) {
    const HugeFrame huge;
    if (!huge.IsThere()) GTEST_SKIP() << "no addresses for " << HugeFrame::kPixels << " pixels";
    cv::Mat frame = huge.pixels();
    Create(2e-8F, 0.0F);  // 42 pixels
    frame(cv::Rect(100, 100, 3, 3)).setTo(cv::Scalar::all(255));
    EXPECT_EQ(Grid(huge.record(), {1, 1}), Cells{0});
    frame(cv::Rect(100, 100, 20, 20)).setTo(cv::Scalar::all(255));
    EXPECT_EQ(Grid(huge.record(), {1, 1}), Cells{1});
}

TEST_F(ContourMask, KeepsEveryContourWhenTheSmallestAreaIsBelowZeroOrNoInteger) {
    const cv::Mat frame = FrameWith({100, 100}, {20, 20, 1, 1});
    for (const float rate : {-1.0F, kNan, kInfinity, -kInfinity, 1e30F}) {
        Create(0.0F, rate);
        EXPECT_EQ(Grid(frame, {1, 1}), Cells{1}) << rate;
    }
}

TEST_F(ContourMask, FillsARingSolid) {
    cv::Mat frame = FrameWith({60, 60}, {0, 0, 60, 60});
    frame(cv::Rect(15, 15, 30, 30)).setTo(0);
    Create(0.9F, 0.0F);
    EXPECT_EQ(Grid(frame, {6, 6}), Cells(36, 1));
}

TEST_F(ContourMask, LeavesOutThePixelsBesideTheLastWholeCell) {
    Create(0.0F, 0.0F);
    EXPECT_EQ(Grid(FrameWith({100, 100}, {99, 0, 1, 100}), {3, 3}), Cells(9, 0));
    EXPECT_EQ(Grid(FrameWith({100, 100}, {0, 99, 100, 1}), {3, 3}), Cells(9, 0));
    Cells expected(9, 0);
    expected[8] = 1;
    EXPECT_EQ(Grid(FrameWith({100, 100}, {98, 98, 1, 1}), {3, 3}), expected);
    EXPECT_EQ(Grid(FrameWith({100, 100}, {66, 66, 1, 1}), {3, 3}), expected);
}

TEST_F(ContourMask, TracesEveryPixelAboveAFillRateOfAHalf) {
    int telling = 0;
    for (uint64_t seed = 0; seed < 40; ++seed) {
        const cv::Mat frame = RandomScene({33, 21}, seed);
        const cv::Mat coarse = quarry::plain::FilledBlobs(frame, 0.5F, 0.0F);
        const cv::Mat exact = quarry::plain::FilledBlobs(frame, 1.0F, 0.0F);
        telling += cv::norm(coarse, exact, cv::NORM_INF) > 0 ? 1 : 0;
        // With a cell for each pixel the grid is the drawing: half of a pixel is none.
        Create(0.5F, 0.0F);
        const Cells atHalf = Grid(frame, frame.size());
        Create(kJustAboveHalf, 0.0F);
        const Cells above = Grid(frame, frame.size());
        for (std::size_t i = 0; i < atHalf.size(); ++i) {
            ASSERT_EQ(atHalf[i] != 0, coarse.data[i] != 0) << "seed " << seed << ", pixel " << i;
            ASSERT_EQ(above[i] != 0, exact.data[i] != 0) << "seed " << seed << ", pixel " << i;
        }
    }
    EXPECT_GT(telling, 0) << "no scene tells the two ways of tracing apart";
}

TEST_F(ContourMask, TakesPureBlueOfOneForBackground) {
    Create(0.0F, 0.0F);
    EXPECT_EQ(Grid(FrameWith({20, 20}, {5, 5, 9, 9}, {0, 0, 1}), {2, 2}), Cells(4, 0));
}

TEST_F(ContourMask, ReadsRedFirst) {
    // Red of 3 is grey 1, blue of 3 is grey 0.
    Create(0.0F, 0.0F);
    EXPECT_EQ(Grid(FrameWith({20, 20}, {5, 5, 9, 9}, {3, 0, 0}), {2, 2}), Cells(4, 1));
    EXPECT_EQ(Grid(FrameWith({20, 20}, {5, 5, 9, 9}, {0, 0, 3}), {2, 2}), Cells(4, 0));
}

TEST_F(ContourMask, MarksNoCellWithoutPixels) {
    const cv::Mat frame = FrameWith({5, 4}, {0, 0, 5, 4});
    for (const float rate : {0.0F, 0.3F, 0.9F, -1.0F}) {
        Create(rate, 0.0F);
        EXPECT_EQ(Grid(frame, {6, 5}), Cells(30, 0)) << rate;
        EXPECT_EQ(Grid(frame, {6, 1}), Cells(6, 0)) << rate;
        EXPECT_EQ(Grid(frame, {1, 5}), Cells(5, 0)) << rate;
    }
}

TEST_F(ContourMask, MarksEveryCellWhenTheRateIsNotANumber) {
    Create(kNan, 0.0F);
    EXPECT_EQ(Grid(BlackFrame(40, 40), {4, 4}), Cells(16, 1));
    EXPECT_EQ(Grid(BlackFrame(5, 4), {6, 5}), Cells(30, 1));
}

TEST_F(ContourMask, MarksEveryCellWhenNoIntegerHoldsItsThreshold) {
    for (const float rate : {kInfinity, -kInfinity, 1e30F, -1.0F}) {
        Create(rate, 0.0F);
        EXPECT_EQ(Grid(BlackFrame(40, 40), {4, 4}), Cells(16, 1)) << rate;
    }
}

TEST_F(ContourMask, RefusesAGridWithoutCells) {
    const cv::Mat frame = FrameWith({20, 20}, {5, 5, 9, 9});
    ExpectRefusal<std::invalid_argument>(ImageOf(frame), {0, 3},
                                         "ContourMaskProcessorData.GridWidth x GridHeight is 0 x 3; each must be 1 or "
                                         "more");
    for (const cv::Size& grid : {cv::Size(3, 0), cv::Size(0, 0), cv::Size(-1, 3), cv::Size(3, -1), cv::Size(-2, -2),
                                 cv::Size(kLowest, kLowest), cv::Size(kLowest, 2), cv::Size(-1, 0)}) {
        ExpectRefusal<std::invalid_argument>(
            ImageOf(frame), grid, "is " + std::to_string(grid.width) + " x " + std::to_string(grid.height) + ";");
    }
}

TEST_F(ContourMask, RefusesAGridOfMoreCellsThanARecordCounts) {
    const cv::Mat frame = FrameWith({20, 20}, {5, 5, 9, 9});
    for (const cv::Size& grid :
         {cv::Size(65536, 65536), cv::Size(65537, 65536), cv::Size(46341, 46341), cv::Size(1 << 30, 4),
          cv::Size(std::numeric_limits<int>::max(), std::numeric_limits<int>::max())}) {
        ExpectRefusal<std::invalid_argument>(ImageOf(frame), grid, "at most 2147483647");
    }
}

TEST_F(ContourMask, FailsWithoutALossForAGridThatNoMemoryHolds) {
    const cv::Mat frame = FrameWith({20, 20}, {5, 5, 9, 9});
    Grid(frame, {2, 2});
    ExpectRefusal<std::bad_alloc>(ImageOf(frame), {40000, 40000});
}

TEST_F(ContourMask, RefusesNullPixelsOfAFrameThatIsNotEmpty) {
    Grid(BlackFrame(4, 4), {2, 2});
    ExpectRefusal<cv::Exception>({nullptr, 8, 6, 24, 0}, {2, 2}, "total() == 0 || data != NULL");
}

TEST_F(ContourMask, RefusesAFrameWithoutPixels) {
    uint8_t pixel[3] = {};
    Grid(BlackFrame(4, 4), {2, 2});
    for (uint8_t* const data : {pixel, static_cast<uint8_t*>(nullptr)}) {
        ExpectRefusal<cv::Exception>({data, 0, 0, 0, 0}, {2, 2});
        ExpectRefusal<cv::Exception>({data, 5, 0, 15, 0}, {2, 2});
        ExpectRefusal<cv::Exception>({data, 0, 5, 0, 0}, {2, 2});
    }
}

TEST_F(ContourMask, GivingAResultBackLeavesTheMaskInPlace) {
    const cv::Mat frame = FrameWith({50, 30}, {30, 10, 10, 10});
    const Cells expected = Grid(frame, {5, 3});
    auto input = FramedInput<ContourMaskProcessorData>();
    *input = {0, ImageOf(frame), 5, 3};
    auto result = FramedResult<ContourMaskProcessorResult>(0xA5);
    const std::size_t before = LiveBlocks();
    Process(handle.get(), input.as<ProcessData>(), result.as<ProcessResult>());
    EXPECT_EQ(LiveBlocks(), before + 2);
    const auto bytes = result.Bytes();
    DisposeResult(handle.get(), result.as<ProcessResult>());
    EXPECT_EQ(LiveBlocks(), before + 2);
    EXPECT_EQ(result.Bytes(), bytes);
    EXPECT_EQ(Cells(result->Mask->data, result->Mask->data + 15), expected);
    DestroyContourMaskProcessorResult(result.record());
    EXPECT_EQ(LiveBlocks(), before);
    EXPECT_EQ(result->Mask, nullptr);
}

}  // namespace
