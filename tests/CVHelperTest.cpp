#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <new>
#include <random>
#include <type_traits>
#include <vector>

#include "Quarry.OpenCV/CVHelper.h"
#include "support/Allocations.h"

namespace {

constexpr int kLowest = std::numeric_limits<int>::min();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

/// A single-precision number whose every operation is carried out in double precision and then rounded: the same bits
/// as single precision gives by definition, whatever a compiler makes of the real thing.
struct Single {
    double value;

    explicit Single(double exact) : value(static_cast<double>(static_cast<float>(exact))) {}
    float Get() const { return static_cast<float>(value); }
};
Single operator+(Single a, Single b) {
    return Single(a.value + b.value);
}
Single operator-(Single a, Single b) {
    return Single(a.value - b.value);
}
Single operator*(Single a, Single b) {
    return Single(a.value * b.value);
}
Single operator/(Single a, Single b) {
    return Single(a.value / b.value);
}
Single Root(Single a) {
    return Single(std::sqrt(a.value));
}

uint32_t Bits(float value) {
    uint32_t bits;
    std::memcpy(&bits, &value, sizeof(bits));
    return bits;
}

/// Equal to the last bit; any not-a-number equals any other.
testing::AssertionResult SameBits(float actual, float expected) {
    if (Bits(actual) == Bits(expected) || (std::isnan(actual) && std::isnan(expected))) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << std::hexfloat << actual << " is not " << expected;
}

// ---- CopyHeaderMatToImage

TEST(CopyHeaderMatToImage, TakesTheGeometryOfAWholeMatrix) {
    cv::Mat frame(5, 7, CV_8UC3, cv::Scalar::all(9));
    const cv::Mat before = frame.clone();
    Image image{nullptr, 0, 0, 0, 0xFEDCBA9876543210U};
    CVHelper::CopyHeaderMatToImage(&frame, &image);
    EXPECT_EQ(image.data, frame.data);
    EXPECT_EQ(image.width, 7);
    EXPECT_EQ(image.height, 5);
    EXPECT_EQ(image.stride, 21);
    EXPECT_EQ(image.timestamp, 0xFEDCBA9876543210U) << "not of the matrix";
    EXPECT_EQ(cv::norm(frame, before, cv::NORM_INF), 0.0);
}

TEST(CopyHeaderMatToImage, TakesTheRowStepOfAPartOfAMatrix) {
    cv::Mat frame(20, 30, CV_8UC3);
    cv::Mat part = frame(cv::Rect(4, 3, 10, 6));
    Image image{};
    CVHelper::CopyHeaderMatToImage(&part, &image);
    EXPECT_EQ(image.data, frame.ptr(3, 4));
    EXPECT_EQ(image.width, 10);
    EXPECT_EQ(image.height, 6);
    EXPECT_EQ(image.stride, 90);
}

TEST(CopyHeaderMatToImage, TakesTheRowStepInBytesOfWideElements) {
    cv::Mat field(2, 9, CV_64FC2);
    Image image{};
    CVHelper::CopyHeaderMatToImage(&field, &image);
    EXPECT_EQ(image.stride, 9 * 16);
}

TEST(CopyHeaderMatToImage, EmptiesTheImageForAnEmptyMatrix) {
    cv::Mat empty;
    uint8_t pixel = 0;
    Image image{&pixel, 1, 2, 3, 4};
    CVHelper::CopyHeaderMatToImage(&empty, &image);
    EXPECT_EQ(image.data, nullptr);
    EXPECT_EQ(image.width, 0);
    EXPECT_EQ(image.height, 0);
}

// ---- RelativeToAbsolute

TEST(RelativeToAbsolute, GivesPixels) {
    EXPECT_EQ(CVHelper::RelativeToAbsolute({0.5F, 0.5F, 0.25F, 0.25F}, 640, 480), cv::Rect(320, 240, 160, 120));
}

TEST(RelativeToAbsolute, TakesXAndWidthFromTheWidth) {
    EXPECT_EQ(CVHelper::RelativeToAbsolute({0.5F, 0.25F, 0.75F, 1.0F}, 100, 1000), cv::Rect(50, 250, 75, 1000));
}

TEST(RelativeToAbsolute, TruncatesTowardZero) {
    EXPECT_EQ(CVHelper::RelativeToAbsolute({0.99F, -0.99F, 1.99F, -1.99F}, 1, 1), cv::Rect(0, 0, 1, -1));
}

TEST(RelativeToAbsolute, MultipliesInSinglePrecision) {
    // 0.7 x 10 is below 7 in double precision, where 0.7F is 0.69999998..., and 7 in single precision.
    EXPECT_EQ(CVHelper::RelativeToAbsolute({0.7F, 0.7F, 0.7F, 0.7F}, 10, 10), cv::Rect(7, 7, 7, 7));
}

TEST(RelativeToAbsolute, RoundsAFrameSizeToSinglePrecision) {
    EXPECT_EQ(CVHelper::RelativeToAbsolute({1.0F, 1.0F, 1.0F, 1.0F}, 16777217, 16777219),
              cv::Rect(16777216, 16777220, 16777216, 16777220));
}

TEST(RelativeToAbsolute, GivesTheLowestIntegerForWhatNoIntegerHolds) {
    const cv::Rect lowest(kLowest, kLowest, kLowest, kLowest);
    EXPECT_EQ(CVHelper::RelativeToAbsolute({kNaN, kNaN, kNaN, kNaN}, 640, 480), lowest);
    EXPECT_EQ(CVHelper::RelativeToAbsolute({kInfinity, -kInfinity, kInfinity, -kInfinity}, 640, 480), lowest);
    EXPECT_EQ(CVHelper::RelativeToAbsolute({2147483648.0F, -2147483904.0F, 1e20F, -1e20F}, 1, 1), lowest);
}

TEST(RelativeToAbsolute, KeepsTheLargestFloatsThatFit) {
    EXPECT_EQ(CVHelper::RelativeToAbsolute({2147483520.0F, -2147483648.0F, 2147483520.0F, -2147483520.0F}, 1, 1),
              cv::Rect(2147483520, kLowest, 2147483520, -2147483520));
}

TEST(RelativeToAbsolute, GivesNothingInAnEmptyFrame) {
    EXPECT_EQ(CVHelper::RelativeToAbsolute({0.5F, 0.5F, 0.5F, 0.5F}, 0, 0), cv::Rect(0, 0, 0, 0));
}

int TruncatedProduct(float share, int size) {
    const double product = (Single(static_cast<double>(share)) * Single(size)).value;
    return product > -2147483649.0 && product < 2147483648.0 ? static_cast<int>(product) : kLowest;
}

TEST(RelativeToAbsolute, AgreesWithScalarArithmeticForRandomRectangles) {
    std::mt19937 random(20240611);
    std::uniform_real_distribution<float> share(-2.0F, 3.0F);
    std::uniform_int_distribution<int> size(-5000, 20'000'000);
    for (int i = 0; i < 200'000; ++i) {
        const RelRect rect{share(random), share(random), share(random), share(random)};
        const int width = size(random);
        const int height = size(random);
        const cv::Rect expected(TruncatedProduct(rect.X, width), TruncatedProduct(rect.Y, height),
                                TruncatedProduct(rect.Width, width), TruncatedProduct(rect.Height, height));
        ASSERT_EQ(CVHelper::RelativeToAbsolute(rect, width, height), expected) << "rectangle " << i;
    }
}

// ---- AbsoluteToRelative

TEST(AbsoluteToRelative, GivesFractions) {
    EXPECT_EQ(CVHelper::AbsoluteToRelative({320, 120}, 640, 480), cv::Point2f(0.5F, 0.25F));
}

TEST(AbsoluteToRelative, KeepsTheSign) {
    EXPECT_EQ(CVHelper::AbsoluteToRelative({-64, 96}, 128, -128), cv::Point2f(-0.5F, -0.75F));
}

TEST(AbsoluteToRelative, GivesInfinityInAFrameWithoutSize) {
    const cv::Point2f point = CVHelper::AbsoluteToRelative({3, -4}, 0, 0);
    EXPECT_EQ(point.x, kInfinity);
    EXPECT_EQ(point.y, -kInfinity);
}

TEST(AbsoluteToRelative, GivesNoNumberForTheOriginOfAFrameWithoutSize) {
    const cv::Point2f point = CVHelper::AbsoluteToRelative({0, 0}, 0, 0);
    EXPECT_TRUE(std::isnan(point.x));
    EXPECT_TRUE(std::isnan(point.y));
}

TEST(AbsoluteToRelative, AgreesWithScalarArithmeticForRandomPoints) {
    std::mt19937 random(7);
    std::uniform_int_distribution<int> any(std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
    std::uniform_int_distribution<int> small(-5000, 5000);
    for (int i = 0; i < 200'000; ++i) {
        auto& distribution = i % 2 == 0 ? any : small;
        const cv::Point point(distribution(random), distribution(random));
        const int width = distribution(random);
        const int height = distribution(random);
        const cv::Point2f actual = CVHelper::AbsoluteToRelative(point, width, height);
        ASSERT_TRUE(SameBits(actual.x, (Single(point.x) / Single(width)).Get())) << "point " << i;
        ASSERT_TRUE(SameBits(actual.y, (Single(point.y) / Single(height)).Get())) << "point " << i;
    }
}

// ---- LinearApprox

TEST(LinearApprox, IsTheFirstValueAtZeroAndTheSecondAtAHalf) {
    EXPECT_EQ(CVHelper::LinearApprox(60.0F, 50.0F, 0.0F), 60.0F);
    EXPECT_EQ(CVHelper::LinearApprox(60.0F, 50.0F, 0.5F), 50.0F);
    EXPECT_EQ(CVHelper::LinearApprox(60.0F, 50.0F, 1.0F), 40.0F);
    EXPECT_EQ(CVHelper::LinearApprox(1.0F, 3.0F, -0.5F), -1.0F);
    EXPECT_TRUE(std::isnan(CVHelper::LinearApprox(60.0F, 50.0F, kNaN)));
}

TEST(LinearApprox, AgreesWithScalarArithmeticForRandomLines) {
    std::mt19937 random(11);
    std::uniform_real_distribution<float> value(-1000.0F, 1000.0F);
    std::uniform_real_distribution<float> place(-2.0F, 3.0F);
    for (int i = 0; i < 200'000; ++i) {
        const float a = value(random);
        const float b = value(random);
        const float t = place(random);
        const Single rise = Single(static_cast<double>(b)) - Single(static_cast<double>(a));
        const Single offset = Single(static_cast<double>(t)) - Single(0.5);
        const Single expected = (rise + rise) * offset + Single(static_cast<double>(b));
        ASSERT_TRUE(SameBits(CVHelper::LinearApprox(a, b, t), expected.Get())) << a << ", " << b << ", " << t;
    }
}

// ---- RateTableLinearApprox

constexpr int kTableFrames[] = {1, 2, 4, 9, 22, 30, 45, 85, 135, 255, 460, 2302, 4605, 7675, 11512, 23025};
constexpr double kTableRates[] = {0.9,   0.7,   0.45,  0.25,  0.1,    0.074,  0.05,   0.027,
                                  0.017, 0.009, 0.005, 0.001, 0.0005, 0.0003, 0.0002, 0.0001};

/// The rate from the two points that the value lies between, found from the top of the table down.
float ExpectedRate(int value) {
    const double frames = Single(value).value;
    const auto* const above = std::upper_bound(std::begin(kTableFrames), std::end(kTableFrames), frames,
                                               [](double x, int entry) { return x < entry; });
    auto from = static_cast<std::size_t>(above - std::begin(kTableFrames));
    from = from == 0 || from > 14 ? 14 : from - 1;  // below the table and at its end: the last segment
    const Single x0(kTableFrames[from]);
    const Single y0(kTableRates[from]);
    const Single slope = (Single(kTableRates[from + 1]) - y0) / (Single(kTableFrames[from + 1]) - x0);
    return (Single(frames) * slope + (y0 - x0 * slope)).Get();
}

TEST(RateTableLinearApprox, MeetsEveryPointOfItsTable) {
    for (std::size_t k = 0; k < std::size(kTableFrames); ++k) {
        EXPECT_NEAR(static_cast<double>(CVHelper::RateTableLinearApprox(kTableFrames[k])), kTableRates[k],
                    kTableRates[k] * 1e-5)
            << kTableFrames[k];
    }
}

TEST(RateTableLinearApprox, IsLinearBetweenThePoints) {
    EXPECT_NEAR(static_cast<double>(CVHelper::RateTableLinearApprox(3)), 0.575, 1e-6);
    EXPECT_NEAR(static_cast<double>(CVHelper::RateTableLinearApprox(65)), 0.0385, 1e-7);
    EXPECT_NEAR(static_cast<double>(CVHelper::RateTableLinearApprox(6140)), 0.0004, 1e-8);
}

TEST(RateTableLinearApprox, TakesZeroFromTheLastSegment) {
    // 0.0002 + 11512 x 0.0001 / 11513
    EXPECT_NEAR(static_cast<double>(CVHelper::RateTableLinearApprox(0)), 0.00029999131, 1e-9);
}

TEST(RateTableLinearApprox, TakesNegativeValuesFromTheLastSegment) {
    // One length of the last segment below its start.
    EXPECT_NEAR(static_cast<double>(CVHelper::RateTableLinearApprox(11512 - 2 * 11513)), 0.0004, 1e-9);
}

TEST(RateTableLinearApprox, GoesOnBeyondTheTable) {
    EXPECT_NEAR(static_cast<double>(CVHelper::RateTableLinearApprox(23025 + 11513)), 0.0, 1e-9);
    EXPECT_NEAR(static_cast<double>(CVHelper::RateTableLinearApprox(23025 + 2 * 11513)), -0.0001, 1e-9);
}

TEST(RateTableLinearApprox, AgreesWithScalarArithmeticForEveryValueAroundItsTable) {
    for (int value = -30'000; value <= 60'000; ++value) {
        ASSERT_TRUE(SameBits(CVHelper::RateTableLinearApprox(value), ExpectedRate(value))) << value;
    }
}

TEST(RateTableLinearApprox, AgreesWithScalarArithmeticForRandomValues) {
    std::mt19937 random(3);
    std::uniform_int_distribution<int> any(std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
    for (int i = 0; i < 100'000; ++i) {
        const int value = i == 0 ? any.min() : i == 1 ? any.max() : any(random);
        ASSERT_TRUE(SameBits(CVHelper::RateTableLinearApprox(value), ExpectedRate(value))) << value;
    }
}

// ---- GetRotationMatrix

/// The point that the matrix takes (x, y) to.
cv::Point2d Mapped(const cv::Mat& matrix, double x, double y) {
    return {matrix.at<double>(0, 0) * x + matrix.at<double>(0, 1) * y + matrix.at<double>(0, 2),
            matrix.at<double>(1, 0) * x + matrix.at<double>(1, 1) * y + matrix.at<double>(1, 2)};
}

TEST(GetRotationMatrix, IsTwoByThreeOfDoubles) {
    const cv::Mat matrix = CVHelper::GetRotationMatrix(cv::Mat(10, 20, CV_8UC3), {3, 4}, 12.0);
    EXPECT_EQ(matrix.size(), cv::Size(3, 2));
    EXPECT_EQ(matrix.type(), CV_64F);
}

TEST(GetRotationMatrix, OnlyMovesTheCentreAtAngleZero) {
    const cv::Mat matrix = CVHelper::GetRotationMatrix(cv::Mat(10, 20, CV_8UC3), {37, 41}, 0.0);
    const cv::Mat expected = (cv::Mat_<double>(2, 3) << 1.0, 0.0, 27.0, 0.0, 1.0, 36.0);
    EXPECT_EQ(cv::norm(matrix, expected, cv::NORM_INF), 0.0);
}

TEST(GetRotationMatrix, HalvesTheSizeInWholePixels) {
    const cv::Mat matrix = CVHelper::GetRotationMatrix(cv::Mat(7, 5, CV_8UC1), {0, 0}, 0.0);
    EXPECT_EQ(matrix.at<double>(0, 2), -2.0);
    EXPECT_EQ(matrix.at<double>(1, 2), -3.0);
}

TEST(GetRotationMatrix, TurnsXTowardY) {
    const cv::Mat matrix = CVHelper::GetRotationMatrix(cv::Mat(10, 10, CV_8UC1), {5, 5}, 90.0);
    const cv::Point2d right = Mapped(matrix, 6.0, 5.0);
    EXPECT_NEAR(right.x, 5.0, 1e-6);
    EXPECT_NEAR(right.y, 6.0, 1e-6);
}

TEST(GetRotationMatrix, PutsTheCentreOfTheImageOntoTheTarget) {
    std::mt19937 random(5);
    std::uniform_int_distribution<int> size(1, 3000);
    std::uniform_int_distribution<int> place(-3000, 3000);
    std::uniform_real_distribution<double> angle(-720.0, 720.0);
    for (int i = 0; i < 2000; ++i) {
        const cv::Mat image(size(random), size(random), CV_8UC1);
        const cv::Point target(place(random), place(random));
        const cv::Mat matrix = CVHelper::GetRotationMatrix(image, target, angle(random));
        const int column = image.cols / 2;
        const int row = image.rows / 2;
        const cv::Point2d centre = Mapped(matrix, column, row);
        ASSERT_NEAR(centre.x, target.x, 1e-9) << "matrix " << i;
        ASSERT_NEAR(centre.y, target.y, 1e-9) << "matrix " << i;
    }
}

struct RoundedAngle {
    double degrees;
    double radians;  ///< rounded to single precision, written out
};
constexpr RoundedAngle kRoundedAngles[] = {
    {30.0, 0.5235987901687622}, {-30.0, -0.5235987901687622},    {45.0, 0.7853981852531433},
    {90.0, 1.5707963705062866}, {180.0, 3.1415927410125732},     {-17.3, -0.30194196105003357},
    {359.5, 6.274458885192871}, {0.001, 1.7453292457503267e-05},
};

TEST(GetRotationMatrix, RoundsTheAngleInRadiansToSinglePrecision) {
    for (const RoundedAngle& angle : kRoundedAngles) {
        const cv::Mat matrix = CVHelper::GetRotationMatrix(cv::Mat(10, 20, CV_8UC1), {3, 4}, angle.degrees);
        EXPECT_EQ(matrix.at<double>(0, 0), std::cos(angle.radians)) << angle.degrees;
        EXPECT_EQ(matrix.at<double>(0, 1), -std::sin(angle.radians)) << angle.degrees;
        EXPECT_EQ(matrix.at<double>(1, 0), std::sin(angle.radians)) << angle.degrees;
        EXPECT_EQ(matrix.at<double>(1, 1), std::cos(angle.radians)) << angle.degrees;
    }
}

TEST(GetRotationMatrix, ComputesTheTranslationInDoublePrecision) {
    for (const RoundedAngle& angle : kRoundedAngles) {
        const cv::Mat matrix = CVHelper::GetRotationMatrix(cv::Mat(481, 641, CV_8UC1), {100, -50}, angle.degrees);
        const double sine = std::sin(angle.radians);
        const double cosine = std::cos(angle.radians);
        EXPECT_EQ(matrix.at<double>(0, 2), 100.0 - (cosine * 320.0 - sine * 240.0)) << angle.degrees;
        EXPECT_EQ(matrix.at<double>(1, 2), -50.0 - (sine * 320.0 + cosine * 240.0)) << angle.degrees;
    }
}

TEST(GetRotationMatrix, UsesNothingOfTheImageButItsSize) {
    const cv::Mat one = CVHelper::GetRotationMatrix(cv::Mat(33, 44, CV_8UC3, cv::Scalar::all(1)), {9, 8}, 77.0);
    const cv::Mat other = CVHelper::GetRotationMatrix(cv::Mat(33, 44, CV_32FC1, cv::Scalar(5)), {9, 8}, 77.0);
    EXPECT_EQ(cv::norm(one, other, cv::NORM_INF), 0.0);
}

TEST(GetRotationMatrix, TakesAnEmptyImage) {
    const cv::Mat matrix = CVHelper::GetRotationMatrix(cv::Mat(), {6, 7}, 0.0);
    EXPECT_EQ(matrix.at<double>(0, 2), 6.0);
    EXPECT_EQ(matrix.at<double>(1, 2), 7.0);
}

// ---- GetVectorProjectionOntoNormal

cv::Mat StillFlow(int width, int height) {
    return cv::Mat(height, width, CV_32FC2, cv::Scalar::all(0.0));
}

TEST(GetVectorProjectionOntoNormal, GivesOneValuePerPixelOfTheLine) {
    const cv::Mat flow = StillFlow(20, 10);
    const cv::LineIterator line(flow, {2, 3}, {12, 6});
    EXPECT_EQ(CVHelper::GetVectorProjectionOntoNormal(flow, {2, 3}, {12, 6}, line).size(), 11U);
}

TEST(GetVectorProjectionOntoNormal, IsZeroOnTheLine) {
    const cv::Mat flow = StillFlow(20, 10);
    const cv::LineIterator line(flow, {2, 3}, {12, 3});
    EXPECT_EQ(CVHelper::GetVectorProjectionOntoNormal(flow, {2, 3}, {12, 3}, line), std::vector<float>(11, 0.0F));
}

TEST(GetVectorProjectionOntoNormal, HasTheSignOfTheCrossProduct) {
    const auto expect = [](const cv::Scalar& motion, const cv::Point& from, const cv::Point& to, float expected) {
        const cv::Mat flow(10, 20, CV_32FC2, motion);
        const cv::LineIterator line(flow, {2, 3}, {12, 3});
        for (const float value :
             CVHelper::GetVectorProjectionOntoNormal(flow, cv::Point2f(from), cv::Point2f(to), line)) {
            EXPECT_NEAR(value, expected, 1e-4F) << motion << " from " << from;
        }
    };
    expect({0.0, 3.0}, {2, 3}, {12, 3}, 3.0F);
    expect({0.0, -3.0}, {2, 3}, {12, 3}, -3.0F);
    expect({0.0, 3.0}, {12, 3}, {2, 3}, -3.0F);
    expect({2.0, 0.0}, {2, 3}, {12, 3}, 0.0F);
}

TEST(GetVectorProjectionOntoNormal, ReadsTheFlowAtEveryPixelInTheOrderOfTheLine) {
    cv::Mat flow = StillFlow(20, 10);
    for (int x = 0; x < 20; ++x) flow.at<cv::Vec2f>(4, x) = {0.0F, static_cast<float>(x + 1)};
    const cv::LineIterator line(flow, {15, 4}, {5, 4});
    const auto values = CVHelper::GetVectorProjectionOntoNormal(flow, {5, 4}, {15, 4}, line);
    ASSERT_EQ(values.size(), 11U);
    for (std::size_t i = 0; i < values.size(); ++i) {
        EXPECT_NEAR(values[i], 16.0F - static_cast<float>(i), 1e-3F) << "pixel " << i;
    }
}

TEST(GetVectorProjectionOntoNormal, IsEmptyForALineOutsideTheFlow) {
    const cv::Mat flow = StillFlow(20, 10);
    cv::LineIterator line(flow, {-9, -9}, {-2, -3});
    ASSERT_EQ(line.count, 0);
    EXPECT_TRUE(CVHelper::GetVectorProjectionOntoNormal(flow, {0, 0}, {5, 5}, line).empty());
    line.count = -1;
    EXPECT_TRUE(CVHelper::GetVectorProjectionOntoNormal(flow, {0, 0}, {5, 5}, line).empty());
}

TEST(GetVectorProjectionOntoNormal, LeavesTheCallersIteratorWhereItIs) {
    const cv::Mat flow = StillFlow(20, 10);
    const cv::LineIterator line(flow, {2, 3}, {12, 3});
    CVHelper::GetVectorProjectionOntoNormal(flow, {2, 3}, {12, 3}, line);
    EXPECT_EQ(line.pos(), cv::Point(2, 3));
}

TEST(GetVectorProjectionOntoNormal, BeginsWhereTheCallersIteratorIs) {
    const cv::Mat flow(10, 20, CV_32FC2, cv::Scalar(0.0, 1.0));
    cv::LineIterator line(flow, {2, 3}, {12, 3});
    ++line;
    ++line;
    line.count -= 2;
    EXPECT_EQ(CVHelper::GetVectorProjectionOntoNormal(flow, {2, 3}, {12, 3}, line).size(), 9U);
}

TEST(GetVectorProjectionOntoNormal, IsNotFiniteBetweenEqualPoints) {
    const cv::Mat flow(10, 20, CV_32FC2, cv::Scalar(1.5, 0.25));
    const cv::LineIterator line(flow, {2, 3}, {12, 6});
    const auto values = CVHelper::GetVectorProjectionOntoNormal(flow, {4, 5}, {4, 5}, line);
    ASSERT_EQ(values.size(), 11U);
    for (const float value : values) EXPECT_FALSE(std::isfinite(value));
}

TEST(GetVectorProjectionOntoNormal, ReadsPartOfALargerField) {
    cv::Mat field(30, 40, CV_32FC2, cv::Scalar(0.0, -100.0));
    cv::Mat flow = field(cv::Rect(10, 5, 20, 10));
    flow.setTo(cv::Scalar(0.0, 3.0));
    const cv::LineIterator line(flow, {2, 3}, {12, 3});
    for (const float value : CVHelper::GetVectorProjectionOntoNormal(flow, {2, 3}, {12, 3}, line)) {
        EXPECT_NEAR(value, 3.0F, 1e-4F);
    }
}

struct SinglePoint {
    Single x;
    Single y;
};

SinglePoint Widened(const cv::Point2f& point) {
    return {Single(static_cast<double>(point.x)), Single(static_cast<double>(point.y))};
}

Single Between(SinglePoint from, SinglePoint to) {
    const Single dx = to.x - from.x;
    const Single dy = to.y - from.y;
    return Root(dx * dx + dy * dy);
}

/// The signed height of the triangle (start, end, point) over its first side.
float ExpectedDistance(SinglePoint point, SinglePoint start, SinglePoint end) {
    const Single toStart = Between(start, point);
    const Single toEnd = Between(end, point);
    const Single base = Between(start, end);
    const Single half = (toStart + toEnd + base) / Single(2.0);
    const Single product = (half - toStart) * half * (half - toEnd) * (half - base);
    const Single height(2.0 * std::sqrt(product.value) / base.value);
    const Single left = (end.x - start.x) * (point.y - start.y);
    const Single right = (end.y - start.y) * (point.x - start.x);
    return (left - right).value < 0.0 ? -height.Get() : height.Get();
}

/// A random field, a line in it and the two ends, for a seed.
struct Trial {
    explicit Trial(unsigned seed) : flow(24, 32, CV_32FC2) {
        std::mt19937 random(seed);
        std::normal_distribution<float> motion(0.0F, 4.0F);
        for (int y = 0; y < flow.rows; ++y) {
            for (int x = 0; x < flow.cols; ++x) flow.at<cv::Vec2f>(y, x) = {motion(random), motion(random)};
        }
        std::uniform_int_distribution<int> column(-8, 39);
        std::uniform_int_distribution<int> row(-8, 31);
        from = {column(random), row(random)};
        to = {column(random), row(random)};
    }
    cv::Mat flow;
    cv::Point from;
    cv::Point to;
};

TEST(GetVectorProjectionOntoNormal, AgreesWithScalarArithmeticForRandomFields) {
    std::size_t compared = 0;
    for (unsigned seed = 0; seed < 2000; ++seed) {
        const Trial trial(seed);
        const cv::LineIterator line(trial.flow, trial.from, trial.to, seed % 2 == 0 ? 8 : 4);
        const cv::Point2f start(trial.from);
        const cv::Point2f end(trial.to);
        const auto values = CVHelper::GetVectorProjectionOntoNormal(trial.flow, start, end, line);
        cv::LineIterator walk = line;
        for (std::size_t i = 0; i < values.size(); ++i, ++walk, ++compared) {
            const cv::Point pixel = walk.pos();
            const auto motion = trial.flow.at<cv::Vec2f>(pixel);
            const SinglePoint moved{Single(pixel.x) + Single(static_cast<double>(motion[0])),
                                    Single(pixel.y) + Single(static_cast<double>(motion[1]))};
            ASSERT_TRUE(SameBits(values[i], ExpectedDistance(moved, Widened(start), Widened(end))))
                << "seed " << seed << ", pixel " << i;
        }
    }
    EXPECT_GT(compared, 10'000U);
}

TEST(GetVectorProjectionOntoNormal, IsTheDistanceFromTheLine) {
    for (unsigned seed = 0; seed < 500; ++seed) {
        const Trial trial(seed);
        const cv::Point direction = trial.to - trial.from;
        const double length = std::hypot(direction.x, direction.y);
        if (length < 8.0) continue;  // single precision says little about the height of a flat triangle
        const cv::LineIterator line(trial.flow, trial.from, trial.to);
        const auto values =
            CVHelper::GetVectorProjectionOntoNormal(trial.flow, cv::Point2f(trial.from), cv::Point2f(trial.to), line);
        cv::LineIterator walk = line;
        for (std::size_t i = 0; i < values.size(); ++i, ++walk) {
            const cv::Point2d moved =
                cv::Point2d(walk.pos() - trial.from) + cv::Point2d(cv::Point2f(trial.flow.at<cv::Vec2f>(walk.pos())));
            const double distance = (direction.x * moved.y - direction.y * moved.x) / length;
            if (std::isnan(values[i])) {
                ASSERT_LT(std::abs(distance), 0.1) << "seed " << seed << ", pixel " << i;
            } else {
                ASSERT_NEAR(static_cast<double>(values[i]), distance, 0.1) << "seed " << seed << ", pixel " << i;
            }
        }
    }
}

TEST(GetVectorProjectionOntoNormal, ThrowsBadAllocWhenMemoryEnds) {
    const cv::Mat flow = StillFlow(20, 10);
    const cv::LineIterator line(flow, {2, 3}, {12, 3});
    const quarry::test::FailingAllocation failing(0);
    EXPECT_THROW(CVHelper::GetVectorProjectionOntoNormal(flow, {2, 3}, {12, 3}, line), std::bad_alloc);
}

TEST(CVHelper, HoldsNoState) {
    EXPECT_TRUE(std::is_empty_v<CVHelper>);
}

}  // namespace
