#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "Quarry/Quarry.h"
#include "support/Allocations.h"
#include "support/Footage.h"
#include "support/Framed.h"
#include "support/HugeFrame.h"
#include "support/RefusedInput.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::test;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr int kLowest = std::numeric_limits<int>::min();
const float kJustAboveHalf = std::nextafter(0.5F, 1.0F);
const cv::Scalar kWhite = cv::Scalar::all(255);

cv::Mat FrameWith(const cv::Size& size, const cv::Rect& object, const cv::Scalar& color = kWhite) {
    cv::Mat frame = BlackFrame(size.width, size.height);
    frame(object).setTo(color);
    return frame;
}

/// A cluster as numbers, to compare bit for bit.
struct Blob {
    std::vector<float> places;  ///< x and y of each point
    float area, perimeter, centerX, centerY;
};

bool operator==(const Blob& a, const Blob& b) {
    return a.places == b.places && a.area == b.area && a.perimeter == b.perimeter && a.centerX == b.centerX &&
           a.centerY == b.centerY;
}

std::ostream& operator<<(std::ostream& out, const Blob& blob) {
    return out << blob.places.size() / 2 << " points, area " << blob.area << ", perimeter " << blob.perimeter
               << ", centre (" << blob.centerX << ", " << blob.centerY << ")";
}

/// The integer before the fraction; the lowest one for what no integer holds.
template <class Number>
int Whole(Number value) {
    const auto wide = static_cast<double>(value);
    return wide > -2147483649.0 && wide < 2147483648.0 ? static_cast<int>(std::trunc(wide)) : kLowest;
}

std::vector<std::vector<cv::Point>> ReferenceOutlines(const cv::Mat& frame, float precision) {
    cv::Mat grey;
    cv::cvtColor(frame, grey, cv::COLOR_RGB2GRAY);
    std::vector<std::vector<cv::Point>> outlines;
    cv::findContours(grey, outlines, cv::RETR_EXTERNAL,
                     precision > 0.5F ? cv::CHAIN_APPROX_NONE : cv::CHAIN_APPROX_TC89_KCOS);
    return outlines;
}

Blob ReferenceBlob(const std::vector<cv::Point>& outline, const cv::Size& frame) {
    const auto width = static_cast<float>(frame.width);
    const auto height = static_cast<float>(frame.height);
    const cv::Moments moments = cv::moments(outline);
    Blob blob{};
    for (const cv::Point& point : outline) {
        blob.places.push_back(static_cast<float>(point.x) / width);
        blob.places.push_back(static_cast<float>(point.y) / height);
    }
    blob.area = static_cast<float>(cv::contourArea(outline) / (frame.height * frame.width));
    blob.perimeter = static_cast<float>(cv::arcLength(outline, true) / frame.width);
    blob.centerX = static_cast<float>(Whole(moments.m10 / moments.m00)) / width;
    blob.centerY = static_cast<float>(Whole(moments.m01 / moments.m00)) / height;
    return blob;
}

std::vector<Blob> Reference(const cv::Mat& frame, float precision, float areaRate) {
    volatile float smallest = static_cast<float>(frame.rows * frame.cols) * areaRate;
    std::vector<Blob> blobs;
    for (const std::vector<cv::Point>& outline : ReferenceOutlines(frame, precision)) {
        if (cv::contourArea(outline) < Whole<float>(smallest)) continue;
        blobs.push_back(ReferenceBlob(outline, frame.size()));
    }
    return blobs;
}

/// Processors, called through the drivers.
class ContourClusters : public testing::Test {
protected:
    ContourClusters() { Create(1.0F, 0.0F); }
    ~ContourClusters() override { Dispose(handle); }

    void Create(float precision, float areaRate) {
        Dispose(handle);
        auto options = FramedOptions<ClustererOptions>(0xA5);
        options->OutlinePrecision = precision;
        options->MinContourAreaRate = areaRate;
        CreateCVClustererContours(&handle, options.record());
    }

    static Framed<ClustererData> Input(const Image& image) {
        auto input = FramedInput<ClustererData>(0xA5);
        input->Image = image;
        return input;
    }

    std::vector<Blob> Find(const Image& image) {
        auto input = Input(image);
        auto result = FramedResult<ClustererResult>(0xA5);
        Process(handle, input.as<ProcessData>(), result.as<ProcessResult>());
        std::vector<Blob> blobs;
        for (int i = 0; i < result->Count; ++i) {
            const Cluster& cluster = result->Clusters[i];
            const Contour& contour = *cluster.Contour;
            blobs.push_back({{}, contour.Area, contour.Perimeter, cluster.CenterX, cluster.CenterY});
            for (int k = 0; k < contour.Count; ++k) {
                blobs.back().places.push_back(contour.Points[k].X);
                blobs.back().places.push_back(contour.Points[k].Y);
            }
        }
        DisposeResult(handle, result.as<ProcessResult>());
        return blobs;
    }
    std::vector<Blob> Find(const cv::Mat& frame) { return Find(ImageOf(frame)); }

    /// A call that must throw, and change nothing.
    void ExpectRefusal(const Image& image, const std::string& message = {}) {
        SCOPED_TRACE(testing::Message() << image.width << " x " << image.height);
        auto input = Input(image);
        const std::string said = RefusalOfInput<cv::Exception, ClustererResult>(handle, input);
        EXPECT_NE(said.find(message), std::string::npos) << said;
    }

    void* handle = nullptr;
};

TEST_F(ContourClusters, AreTheOutlinesOfRandomScenes) {
    const cv::Size sizes[] = {{1, 1}, {7, 5}, {33, 21}, {64, 48}, {101, 77}};
    for (const float precision : {0.0F, 0.5F, kJustAboveHalf, 1.0F, -3.0F, kNan, kInfinity}) {
        for (const float areaRate : {0.0F, 0.004F, 0.03F, -1.0F}) {
            Create(precision, areaRate);
            for (uint64_t seed = 0; seed < 60; ++seed) {
                const cv::Mat frame = RandomScene(sizes[seed % std::size(sizes)], seed);
                EXPECT_EQ(Find(frame), Reference(frame, precision, areaRate))
                    << precision << ", " << areaRate << ", seed " << seed << ", " << frame.size();
            }
        }
    }
}

TEST_F(ContourClusters, AreTheOutlinesOfRealFrames) {
    const std::vector<cv::Mat> frames = PedestrianFrames(6);
    if (frames.empty()) GTEST_SKIP() << "no footage in " << MediaDirectory();
    for (const float precision : {0.2F, 0.8F}) {
        Create(precision, 0.0002F);
        for (std::size_t i = 0; i < frames.size(); ++i) {
            cv::Mat frame = frames[i].clone();
            cv::Mat grey;
            cv::cvtColor(frame, grey, cv::COLOR_BGR2GRAY);
            frame.setTo(cv::Scalar::all(0), grey > 110);
            EXPECT_EQ(Find(frame), Reference(frame, precision, 0.0002F)) << "frame " << i << ", " << precision;
        }
    }
}

TEST_F(ContourClusters, TraceEveryPixelAboveAPrecisionOfAHalf) {
    cv::Mat frame = BlackFrame(64, 48);
    cv::circle(frame, {30, 20}, 15, kWhite, cv::FILLED);
    const std::vector<Blob> coarse = {ReferenceBlob(ReferenceOutlines(frame, 0.0F)[0], frame.size())};
    const std::vector<Blob> exact = {ReferenceBlob(ReferenceOutlines(frame, 1.0F)[0], frame.size())};
    ASSERT_LT(coarse[0].places.size(), exact[0].places.size());
    for (const float precision : {0.5F, 0.0F, -kInfinity, kNan}) {
        Create(precision, 0.0F);
        EXPECT_EQ(Find(frame), coarse) << precision;
    }
    for (const float precision : {kJustAboveHalf, 1.0F, kInfinity}) {
        Create(precision, 0.0F);
        EXPECT_EQ(Find(frame), exact) << precision;
    }
}

TEST_F(ContourClusters, OfABlackFrameAreNone) {
    const cv::Mat frame = BlackFrame(64, 48);
    Find(frame);
    auto input = Input(ImageOf(frame));
    auto result = FramedResult<ClustererResult>(0xA5);
    const std::size_t before = LiveBlocks();
    Process(handle, input.as<ProcessData>(), result.as<ProcessResult>());
    EXPECT_EQ(result->Count, 0);
    EXPECT_NE(result->Clusters, nullptr);
    DisposeResult(handle, result.as<ProcessResult>());
    EXPECT_EQ(result->Clusters, nullptr);
    EXPECT_EQ(LiveBlocks(), before);
}

TEST_F(ContourClusters, KeepASinglePixelWhoseCentreIsFarOutside) {
    for (const float precision : {0.0F, 1.0F}) {
        Create(precision, 0.0F);
        const std::vector<Blob> blobs = Find(FrameWith({64, 48}, {20, 10, 1, 1}));
        const float lowest = -2147483648.0F;
        const std::vector<Blob> pixel = {{{20 / 64.0F, 10 / 48.0F}, 0.0F, 0.0F, lowest / 64.0F, lowest / 48.0F}};
        EXPECT_EQ(blobs, pixel) << precision;
    }
}

TEST_F(ContourClusters, KeepALineWhoseCentreIsFarOutside) {
    const std::vector<Blob> blobs = Find(FrameWith({64, 48}, {20, 10, 3, 1}));
    ASSERT_EQ(blobs.size(), 1U);
    EXPECT_EQ(blobs[0].area, 0.0F);
    EXPECT_EQ(blobs[0].perimeter, 4 / 64.0F);
    EXPECT_EQ(blobs[0].centerX, -2147483648.0F / 64.0F);
    EXPECT_EQ(blobs[0].centerY, -2147483648.0F / 48.0F);
}

TEST_F(ContourClusters, AreTwoForTwoBlobsHoweverClose) {
    cv::Mat frame = FrameWith({64, 48}, {10, 10, 9, 9});
    frame(cv::Rect(20, 10, 9, 9)).setTo(kWhite);
    const std::vector<Blob> blobs = Find(frame);
    ASSERT_EQ(blobs.size(), 2U);
    EXPECT_EQ(blobs[0].centerX + blobs[1].centerX, (14 + 24) / 64.0F);
    frame.at<cv::Vec3b>(14, 19) = cv::Vec3b::all(255);
    EXPECT_EQ(Find(frame).size(), 1U);
}

TEST_F(ContourClusters, ComeInTheOrderInWhichTheyAreFound) {
    cv::Mat frame = BlackFrame(64, 48);
    for (int i = 0; i < 9; ++i) frame(cv::Rect(5 + 20 * (i % 3), 4 + 15 * (i / 3), 4 + i, 5)).setTo(kWhite);
    const std::vector<std::vector<cv::Point>> outlines = ReferenceOutlines(frame, 1.0F);
    const std::vector<Blob> blobs = Find(frame);
    ASSERT_EQ(blobs.size(), 9U);
    for (std::size_t i = 0; i < blobs.size(); ++i) {
        EXPECT_EQ(blobs[i].places[0], static_cast<float>(outlines[i][0].x) / 64.0F) << "blob " << i;
        EXPECT_EQ(blobs[i].places[1], static_cast<float>(outlines[i][0].y) / 48.0F) << "blob " << i;
    }
}

TEST_F(ContourClusters, CountTheHolesOfABlob) {
    cv::Mat frame = FrameWith({64, 48}, {10, 10, 21, 21});
    frame(cv::Rect(15, 15, 11, 11)).setTo(0);
    frame(cv::Rect(19, 19, 3, 3)).setTo(kWhite);  // inside a hole: no cluster of its own
    const std::vector<Blob> blobs = Find(frame);
    ASSERT_EQ(blobs.size(), 1U);
    EXPECT_EQ(blobs[0].area, 400 / 3072.0F);
}

TEST_F(ContourClusters, HaveTheirCentreInWholePixels) {
    // The centre of mass is (13.5, 21.5).
    const std::vector<Blob> blobs = Find(FrameWith({64, 48}, {10, 18, 8, 8}));
    ASSERT_EQ(blobs.size(), 1U);
    EXPECT_EQ(blobs[0].centerX, 13 / 64.0F);
    EXPECT_EQ(blobs[0].centerY, 21 / 48.0F);
}

TEST_F(ContourClusters, AreMeasuredByTheFramesAreaAndByItsWidthAlone) {
    const std::vector<Blob> blobs = Find(FrameWith({640, 480}, {100, 50, 101, 201}));
    ASSERT_EQ(blobs.size(), 1U);
    EXPECT_EQ(blobs[0].area, 100 * 200 / 307200.0F);
    EXPECT_EQ(blobs[0].perimeter, 600 / 640.0F);
}

TEST_F(ContourClusters, DivideTheirAreaInDoublePrecision) {
    // The frame has more pixels than a float can count, which shows in the last bit.
    const auto divided = static_cast<float>(100.0 / (4099.0 * 4099.0));
    ASSERT_NE(divided, 100.0F / (4099.0F * 4099.0F));
    const std::vector<Blob> blobs = Find(FrameWith({4099, 4099}, {7, 5, 11, 11}));
    ASSERT_EQ(blobs.size(), 1U);
    EXPECT_EQ(blobs[0].area, divided);
}

TEST_F(ContourClusters, DivideTheirPerimeterInDoublePrecision) {
    int telling = 0;
    for (int radius = 1; radius < 200; ++radius) {
        cv::Mat frame = BlackFrame(437, 411);
        cv::circle(frame, {210, 205}, radius, kWhite, cv::FILLED);
        const double length = cv::arcLength(ReferenceOutlines(frame, 1.0F)[0], true);
        const auto divided = static_cast<float>(length / 437.0);
        telling += divided != static_cast<float>(length) / 437.0F ? 1 : 0;
        EXPECT_EQ(Find(frame).at(0).perimeter, divided) << "radius " << radius;
    }
    EXPECT_GT(telling, 0) << "no perimeter tells double from single precision";
}

TEST_F(ContourClusters, KeepABlobOfExactlyTheSmallestArea) {
    // Between the centres of its pixels the square has an area of 100.
    const cv::Mat frame = FrameWith({100, 100}, {20, 20, 11, 11});
    ASSERT_EQ(10000.0F * 0.01F, 100.0F);
    Create(1.0F, 0.01F);
    EXPECT_EQ(Find(frame).size(), 1U);
    Create(1.0F, 0.0102F);
    EXPECT_EQ(Find(frame).size(), 0U);
}

TEST_F(ContourClusters, TruncateTheSmallestAreaToWholePixels) {
    ASSERT_GT(10000.0F * 0.01009F, 100.5F);
    Create(1.0F, 0.01009F);
    EXPECT_EQ(Find(FrameWith({100, 100}, {20, 20, 11, 11})).size(), 1U);
}

TEST_F(ContourClusters, AreMeasuredByFramesOfMorePixelsThan31BitsCount) {
    const HugeFrame huge;
    if (!huge.IsThere()) GTEST_SKIP() << "no addresses for " << HugeFrame::kPixels << " pixels";
    cv::Mat frame = huge.pixels();
    frame(cv::Rect(100, 100, 11, 11)).setTo(kWhite);
    frame(cv::Rect(200, 100, 2, 2)).setTo(kWhite);
    Create(1.0F, 2e-8F);  // 42 pixels
    const std::vector<Blob> blobs = Find(huge.record());
    ASSERT_EQ(blobs.size(), 1U);
    EXPECT_EQ(blobs[0].area, static_cast<float>(100 / HugeFrame::kPixels));
}

TEST_F(ContourClusters, KeepEveryBlobWhenTheSmallestAreaIsBelowZeroOrNoInteger) {
    const cv::Mat frame = FrameWith({100, 100}, {20, 20, 1, 1});
    for (const float rate : {-1.0F, kNan, kInfinity, -kInfinity, 1e30F}) {
        Create(1.0F, rate);
        EXPECT_EQ(Find(frame).size(), 1U) << rate;
    }
}

TEST_F(ContourClusters, AreReadWithRedFirst) {
    // Red of 3 is grey 1, blue of 3 is grey 0.
    EXPECT_EQ(Find(FrameWith({20, 20}, {5, 5, 9, 9}, {3, 0, 0})).size(), 1U);
    EXPECT_EQ(Find(FrameWith({20, 20}, {5, 5, 9, 9}, {0, 0, 3})).size(), 0U);
}

TEST_F(ContourClusters, LeaveTheHeadAndTheTailOfTheHostsRecordAsTheyAre) {
    for (const cv::Mat& frame : {BlackFrame(64, 48), FrameWith({64, 48}, {10, 10, 5, 5})}) {
        auto input = Input(ImageOf(frame));
        auto result = FramedResult<ClustererResult>(0xC3);
        Process(handle, input.as<ProcessData>(), result.as<ProcessResult>());
        const auto bytes = result.Bytes();
        for (std::size_t i = 0; i < 8; ++i) EXPECT_EQ(bytes[i], 0xC3) << "byte " << i;
        for (std::size_t i = 20; i < 24; ++i) EXPECT_EQ(bytes[i], 0xC3) << "byte " << i;
        DisposeResult(handle, result.as<ProcessResult>());
    }
}

TEST_F(ContourClusters, RefuseNullPixelsOfAFrameThatIsNotEmpty) {
    Find(BlackFrame(4, 4));
    ExpectRefusal({nullptr, 8, 6, 24, 0}, "total() == 0 || data != NULL");
}

TEST_F(ContourClusters, RefuseAFrameWithoutPixels) {
    uint8_t pixel[3] = {};
    Find(BlackFrame(4, 4));
    for (uint8_t* const data : {pixel, static_cast<uint8_t*>(nullptr)}) {
        ExpectRefusal({data, 0, 0, 0, 0});
        ExpectRefusal({data, 5, 0, 15, 0});
        ExpectRefusal({data, 0, 5, 0, 0});
    }
}

TEST_F(ContourClusters, LoseNothingWhenTheMemoryForTheResultRunsOut) {
    cv::Mat frame = FrameWith({64, 48}, {10, 10, 5, 5});
    frame(cv::Rect(20, 10, 5, 5)).setTo(kWhite);
    auto input = Input(ImageOf(frame));
    std::size_t allocations = 0;
    Find(frame);
    {
        auto result = FramedResult<ClustererResult>();
        AllocationLog log;
        Process(handle, input.as<ProcessData>(), result.as<ProcessResult>());
        allocations = log.Sizes().size();
        DisposeResult(handle, result.as<ProcessResult>());
    }
    // The last are the array and, for each cluster, a contour and its points; those before are OpenCV's.
    ASSERT_GE(allocations, 5U);
    for (std::size_t served = allocations - 5; served < allocations; ++served) {
        SCOPED_TRACE(served);
        auto result = FramedResult<ClustererResult>(0xA5);
        const std::size_t before = LiveBlocks();
        {
            const FailingAllocation failure(served);
            EXPECT_THROW(Process(handle, input.as<ProcessData>(), result.as<ProcessResult>()), std::bad_alloc);
        }
        EXPECT_EQ(LiveBlocks(), before);
        for (const unsigned char byte : result.Bytes()) EXPECT_EQ(byte, 0xA5);
    }
}

TEST_F(ContourClusters, AreFoundAfterAFailedCall) {
    const cv::Mat frame = FrameWith({64, 48}, {10, 10, 5, 5});
    ExpectRefusal({nullptr, 8, 6, 24, 0});
    EXPECT_EQ(Find(frame), Reference(frame, 1.0F, 0.0F));
}

TEST_F(ContourClusters, LeaveTheFrameAsItIs) {
    const cv::Mat frame = RandomScene({64, 48}, 3);
    const cv::Mat before = frame.clone();
    Find(frame);
    EXPECT_EQ(std::memcmp(frame.data, before.data, frame.total() * 3), 0);
}

TEST_F(ContourClusters, AreReadAsPackedWhateverTheStride) {
    const cv::Mat frame = RandomScene({33, 21}, 5);
    for (const int stride : {0, -1, 99, 100, 400}) {
        Image image = ImageOf(frame, 0x8123456789ABCDEF);
        image.stride = stride;
        EXPECT_EQ(Find(image), Reference(frame, 1.0F, 0.0F)) << "stride " << stride;
    }
}

TEST_F(ContourClusters, AreReleasedAndForgottenWhenGivenBack) {
    cv::Mat frame = FrameWith({64, 48}, {10, 10, 5, 5});
    frame(cv::Rect(20, 10, 5, 5)).setTo(kWhite);
    Find(frame);
    auto input = Input(ImageOf(frame));
    auto result = FramedResult<ClustererResult>(0xA5);
    const std::size_t before = LiveBlocks();
    Process(handle, input.as<ProcessData>(), result.as<ProcessResult>());
    EXPECT_EQ(LiveBlocks(), before + 5);
    DisposeResult(handle, result.as<ProcessResult>());
    EXPECT_EQ(LiveBlocks(), before);
    EXPECT_EQ(result->Clusters, nullptr);
}

TEST_F(ContourClusters, GivingBackAResultWithoutClustersChangesNothing) {
    auto result = FramedResult<ClustererResult>(0x5A);
    result->Clusters = nullptr;
    const auto before = result.Bytes();
    DisposeResult(handle, result.as<ProcessResult>());
    EXPECT_EQ(result.Bytes(), before);
}

}  // namespace
