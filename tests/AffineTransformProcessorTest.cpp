#include <gtest/gtest.h>

#include <algorithm>
#include <complex>
#include <cstddef>
#include <cstring>
#include <limits>
#include <new>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "Quarry.OpenCV/AffineTransformProcessor.h"
#include "support/Calls.h"
#include "support/Footage.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::test;
using Points = std::vector<FloatPoint>;

constexpr int kLargest = std::numeric_limits<int32_t>::max();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

const Points kFace{{38.3F, 51.7F}, {73.5F, 51.5F}, {56.0F, 71.7F}, {41.5F, 92.4F}, {70.7F, 92.2F}};

/// Every point as (a X + b Y + c, d X + e Y + f).
Points Carried(const Points& points, float a, float b, float c, float d, float e, float f) {
    Points out;
    for (const FloatPoint& p : points) out.push_back({a * p.X + b * p.Y + c, d * p.X + e * p.Y + f});
    return out;
}

Points RandomPoints(cv::RNG& random) {
    Points points(5);
    for (FloatPoint& point : points) point = {random.uniform(-50.0F, 250.0F), random.uniform(-50.0F, 250.0F)};
    return points;
}

cv::Mat MatrixOf(const Points& points) {
    cv::Mat matrix(static_cast<int>(points.size()), 2, CV_32F);
    std::memcpy(matrix.data, points.data(), points.size() * sizeof(FloatPoint));
    return matrix;
}

cv::Mat Fit(const Points& src, const Points& dst) {
    return AffineTransformProcessor::similarTransform(MatrixOf(src), MatrixOf(dst));
}

/// z -> turn * z + shift in the complex plane: a rotation, one scale and a translation.
struct Similarity {
    std::complex<double> turn, shift;
};

/// The one of least squared error, in closed form and in double precision.
Similarity LeastSquares(const Points& src, const Points& dst) {
    const auto at = [](const FloatPoint& point) { return std::complex<double>(point.X, point.Y); };
    const auto n = static_cast<double>(src.size());
    std::complex<double> srcMean;
    std::complex<double> dstMean;
    for (const FloatPoint& point : src) srcMean += at(point) / n;
    for (const FloatPoint& point : dst) dstMean += at(point) / n;
    std::complex<double> product;
    double squares = 0;
    for (std::size_t i = 0; i < src.size(); ++i) {
        product += std::conj(at(src[i]) - srcMean) * (at(dst[i]) - dstMean);
        squares += std::norm(at(src[i]) - srcMean);
    }
    const std::complex<double> turn = product / squares;
    return {turn, dstMean - turn * srcMean};
}

void ExpectIs(const cv::Mat& matrix, const Similarity& expected) {
    ASSERT_EQ(matrix.size(), cv::Size(3, 3));
    ASSERT_EQ(matrix.type(), CV_32F);
    const std::complex<double> turn = expected.turn;
    const cv::Matx33d wanted(turn.real(), -turn.imag(), expected.shift.real(),  //
                             turn.imag(), turn.real(), expected.shift.imag(), 0, 0, 1);
    const double tolerance = 1e-4 * std::max(1.0, std::abs(turn));
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            EXPECT_NEAR(matrix.at<float>(row, column), wanted(row, column),
                        row == 2 ? 0.0 : tolerance * (column == 2 ? 200 : 1))
                << "(" << row << ", " << column << ")";
        }
    }
}

bool Same(const cv::Mat& a, const cv::Mat& b) {
    return a.size() == b.size() && a.type() == b.type() && cv::norm(a, b, cv::NORM_INF) == 0;
}

PointArray ArrayOf(const Points& points) {
    PointArray array;
    array.PointsCount = static_cast<int32_t>(points.size());
    array.Points = const_cast<FloatPoint*>(points.data());  // the library only reads them
    return array;
}

class AffineTransform : public ProcessorTest<operations::SimilarityTransform> {
protected:
    /// An aligned frame, given back at its end.
    Called<operations::SimilarityTransform> Aligned(const cv::Size& size, const Image& frame, const Points& src,
                                                    const Points& dst) {
        Create({0, 0, size.width, size.height});
        return Call({0, frame, ArrayOf(dst), ArrayOf(src)});
    }

    cv::Mat Pixels(const cv::Size& size, const Image& frame, const Points& src, const Points& dst) {
        return PixelsOf(*Aligned(size, frame, src, dst)->ResultImage).clone();
    }

    template <class Exception>
    void ExpectRefusal(const cv::Size& size, const Image& frame, const PointArray& src, const PointArray& dst,
                       const std::string& message = {}) {
        SCOPED_TRACE(testing::Message() << size << " from " << frame.width << " x " << frame.height);
        Create({0, 0, size.width, size.height});
        ProcessorTest::ExpectRefusal<Exception>({0, frame, dst, src}, message);
    }

    template <class Exception>
    void ExpectRefusal(const cv::Size& size, const Image& frame, const std::string& message = {}) {
        ExpectRefusal<Exception>(size, frame, ArrayOf(kFace), ArrayOf(kFace), message);
    }
};

cv::Mat Reference(const cv::Mat& frame, const cv::Size& size, const Points& src, const Points& dst) {
    cv::Mat out;
    cv::warpAffine(frame, out, Fit(src, dst)(cv::Rect(0, 0, 3, 2)), size, cv::INTER_LINEAR, cv::BORDER_CONSTANT,
                   cv::Scalar(0, 0, 0, 0));
    return out;
}

TEST(SimilaritySteps, MeanIsThatOfEachColumn) {
    const cv::Mat mean = AffineTransformProcessor::meanAxis0((cv::Mat_<float>(3, 2) << 1, -4, 3, 0, 8, 5.5));
    EXPECT_TRUE(Same(mean, (cv::Mat_<float>(1, 2) << 4, 0.5)));
    const cv::Mat wide = AffineTransformProcessor::meanAxis0((cv::Mat_<float>(1, 3) << 1, 2, 3));
    EXPECT_TRUE(Same(wide, (cv::Mat_<float>(1, 3) << 1, 2, 3)));
}

TEST(SimilaritySteps, MinusTakesTheRowFromEveryRow) {
    const cv::Mat matrix = (cv::Mat_<float>(3, 2) << 1, -4, 3, 0, 8, 5.5);
    const cv::Mat less = AffineTransformProcessor::elementwiseMinus(matrix, (cv::Mat_<float>(1, 2) << 1, 0.5));
    EXPECT_TRUE(Same(less, (cv::Mat_<float>(3, 2) << 0, -4.5, 2, -0.5, 7, 5)));
}

TEST(SimilaritySteps, VarianceIsDividedByTheNumberOfRows) {
    const cv::Mat variance = AffineTransformProcessor::varAxis0((cv::Mat_<float>(4, 2) << 1, 7, 3, 7, 5, 7, 7, 7));
    EXPECT_TRUE(Same(variance, (cv::Mat_<float>(1, 2) << 5, 0)));
}

TEST(SimilaritySteps, RankCountsTheSingularValuesThatAreNotNegligible) {
    const auto rank = [](double a, double b) {
        return AffineTransformProcessor::MatrixRank((cv::Mat_<float>(2, 2) << a, 0, 0, b));
    };
    EXPECT_EQ(rank(3, -2), 2);
    EXPECT_EQ(rank(3, 0.00011), 2);
    EXPECT_EQ(rank(3, 0.00009), 1);
    EXPECT_EQ(rank(0, -3), 1);
    EXPECT_EQ(rank(0.00009, 0.00009), 0);
    EXPECT_EQ(rank(0, 0), 0);
    EXPECT_EQ(AffineTransformProcessor::MatrixRank((cv::Mat_<float>(2, 2) << 1, 2, 2, 4)), 1);
}

TEST(Similarity, FindsTheOneThatCarriedThePoints) {
    ExpectIs(Fit(kFace, kFace), {{1, 0}, {0, 0}});
    ExpectIs(Fit(kFace, Carried(kFace, 1, 0, 10, 0, 1, -5)), {{1, 0}, {10, -5}});
    ExpectIs(Fit(kFace, Carried(kFace, 2, 0, 0, 0, 2, 0)), {{2, 0}, {0, 0}});
    ExpectIs(Fit(kFace, Carried(kFace, 0, -1, 0, 1, 0, 0)), {{0, 1}, {0, 0}});
    ExpectIs(Fit(kFace, Carried(kFace, -1, 0, 7, 0, -1, 8)), {{-1, 0}, {7, 8}});
}

TEST(Similarity, HasTheLeastSquaredError) {
    for (uint64_t seed = 0; seed < 500; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        cv::RNG random(seed + 1);
        const Points src = RandomPoints(random);
        const Points dst = RandomPoints(random);
        ExpectIs(Fit(src, dst), LeastSquares(src, dst));
    }
}

TEST(Similarity, OfMirroredPointsIsTheBestProperRotation) {
    for (uint64_t seed = 0; seed < 100; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        cv::RNG random(seed + 1);
        const Points src = RandomPoints(random);
        const Points mirrored = Carried(src, -1, 0, 0, 0, 1, 0);
        const cv::Mat fit = Fit(src, mirrored);
        ExpectIs(fit, LeastSquares(src, mirrored));
        EXPECT_GE(cv::determinant(fit(cv::Rect(0, 0, 2, 2))), 0.0);
    }
}

TEST(Similarity, OfPointsOnALineIsAProperRotation) {
    const Points line{{0, 0}, {10, 10}, {20, 20}, {30, 30}, {50, 50}};
    const auto expectFit = [&](const Points& src, const Points& dst) {
        ExpectIs(Fit(src, dst), LeastSquares(src, dst));
    };
    expectFit(line, Carried(line, 1, 0, 3, 0, -2, 0));
    expectFit(line, Carried(line, -1, 0, 0, 0, 0, 7));
    expectFit(line, Carried(line, 0.5F, 0, 0, 0, 0.5F, 0));
    expectFit(line, kFace);
    expectFit(kFace, line);
}

TEST(Similarity, OfPointsAlmostOnALineAndMirroredIsAProperRotation) {
    const Points src{{0, 0}, {10, 0.002F}, {20, -0.002F}, {30, 0.001F}, {50, 0}};
    const Points mirrored = Carried(src, 1, 0, 0, 0, -1, 0);
    ExpectIs(Fit(src, mirrored), {{1, 0}, {0, 0}});
}

TEST(Similarity, OfPointsThatAllButCoincideDoesNotTurn) {
    // The products of their distances are negligible, though the scale is not.
    const Points src = Carried(kFace, 1e-4F, 0, 0, 0, 1e-4F, 0);
    const Points turned = Carried(src, 0, -1, 0, 1, 0, 0);
    const cv::Mat fit = Fit(src, turned);
    EXPECT_NEAR(fit.at<float>(0, 0), 1.0, 1e-4);
    EXPECT_EQ(fit.at<float>(0, 1), 0.0F);
    EXPECT_EQ(fit.at<float>(1, 0), 0.0F);
    EXPECT_NEAR(fit.at<float>(1, 1), 1.0, 1e-4);
}

TEST(Similarity, OntoASinglePointHasNoScale) {
    ExpectIs(Fit(kFace, Points(5, {30, 20})), {{0, 0}, {30, 20}});
}

TEST_F(AffineTransform, EqualsThePlainWarpOnFramesOfAnySize) {
    const cv::Size sizes[] = {{1, 1}, {1, 7}, {7, 1}, {17, 13}, {112, 112}, {333, 251}};
    for (const cv::Size& frameSize : sizes) {
        for (const cv::Size& size : sizes) {
            for (uint64_t seed = 0; seed < 5; ++seed) {
                const cv::Mat frame = RandomFrame(frameSize.width, frameSize.height, seed);
                cv::RNG random(seed + 1);
                const Points src = RandomPoints(random);
                const Points dst = RandomPoints(random);
                EXPECT_TRUE(Same(Pixels(size, ImageOf(frame), src, dst), Reference(frame, size, src, dst)))
                    << size << " from " << frameSize << ", seed " << seed;
            }
        }
    }
}

TEST_F(AffineTransform, EqualsThePlainWarpOnRealFrames) {
    const std::vector<cv::Mat> frames = PedestrianFrames(8);
    if (frames.empty()) GTEST_SKIP() << "no footage in " << MediaDirectory();
    const cv::Size size(112, 112);
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const auto step = static_cast<float>(i);
        const Points src = Carried(kFace, 3, 0, step, 1, 2, 0);
        EXPECT_TRUE(Same(Pixels(size, ImageOf(frames[i]), src, kFace), Reference(frames[i], size, src, kFace)))
            << "frame " << i;
    }
}

TEST_F(AffineTransform, OfEqualPointsIsTheFramesTopLeftPart) {
    const cv::Mat frame = RandomFrame(130, 120, 1);
    auto smaller = Aligned({112, 100}, ImageOf(frame), kFace, kFace);
    EXPECT_TRUE(Same(PixelsOf(*smaller->ResultImage), frame(cv::Rect(0, 0, 112, 100))));
    auto larger = Aligned({150, 140}, ImageOf(frame), kFace, kFace);
    cv::Mat expected(140, 150, CV_8UC3, cv::Scalar::all(0));
    frame.copyTo(expected(cv::Rect(0, 0, 130, 120)));
    EXPECT_TRUE(Same(PixelsOf(*larger->ResultImage), expected));
}

TEST_F(AffineTransform, CarriesTheSourcePointsOntoTheDestination) {
    const cv::Mat frame = RandomFrame(130, 120, 2);
    const Points shifted = Carried(kFace, 1, 0, 10, 0, 1, -5);
    auto aligned = Aligned({130, 120}, ImageOf(frame), kFace, shifted);
    cv::Mat expected(120, 130, CV_8UC3, cv::Scalar::all(0));
    frame(cv::Rect(0, 5, 120, 115)).copyTo(expected(cv::Rect(10, 0, 120, 115)));
    EXPECT_TRUE(Same(PixelsOf(*aligned->ResultImage), expected));
}

TEST_F(AffineTransform, OntoASinglePointIsOfOneColour) {
    const cv::Mat frame = RandomFrame(130, 120, 3);
    auto aligned = Aligned({40, 30}, ImageOf(frame), kFace, Points(5, {30, 20}));
    const cv::Mat pixels = PixelsOf(*aligned->ResultImage);
    EXPECT_TRUE(Same(pixels, cv::Mat(30, 40, CV_8UC3, cv::Scalar(pixels.at<cv::Vec3b>(0, 0)))));
}

TEST_F(AffineTransform, WithoutAScaleHasItsSize) {
    const cv::Mat frame = RandomFrame(130, 120, 3);
    const Points single(5, {30, 20});
    Points broken = kFace;
    broken[2] = {kNan, std::numeric_limits<float>::infinity()};
    for (const Points& src : {single, broken}) {
        auto aligned = Aligned({40, 30}, ImageOf(frame, 5), src, kFace);
        EXPECT_EQ(aligned->ResultImage->width, 40);
        EXPECT_EQ(aligned->ResultImage->height, 30);
        EXPECT_EQ(aligned->ResultImage->timestamp, 5U);
    }
}

TEST_F(AffineTransform, GivesTheOptionsSizePackedRowsAndTheFramesTimestamp) {
    const cv::Mat frame = RandomFrame(17, 13, 1);
    auto aligned = Aligned({11, 5}, ImageOf(frame, 0x8123456789ABCDEF), kFace, kFace);
    EXPECT_EQ(aligned->Status, 0);
    EXPECT_EQ(aligned->ResultImage->width, 11);
    EXPECT_EQ(aligned->ResultImage->height, 5);
    EXPECT_EQ(aligned->ResultImage->stride, 33);
    EXPECT_EQ(aligned->ResultImage->timestamp, 0x8123456789ABCDEF);
}

TEST_F(AffineTransform, GivesAnImageWithoutPixelsForASizeWithoutArea) {
    const cv::Mat frame = RandomFrame(17, 13, 1);
    for (const cv::Size& size : {cv::Size(0, 0), cv::Size(0, 5), cv::Size(11, 0)}) {
        auto aligned = Aligned(size, ImageOf(frame), kFace, kFace);
        EXPECT_EQ(aligned->ResultImage->width, size.width) << size;
        EXPECT_EQ(aligned->ResultImage->height, size.height) << size;
        EXPECT_EQ(aligned->ResultImage->stride, size.width * 3) << size;
    }
}

TEST_F(AffineTransform, RefusesNullPoints) {
    const cv::Mat frame = RandomFrame(9, 7, 1);
    Points points = kFace;
    PointArray null = ArrayOf(points);
    null.Points = nullptr;
    ExpectRefusal<std::invalid_argument>({4, 4}, ImageOf(frame), null, ArrayOf(points),
                                         "AffineTransformData.SrcPoints.Points is null; 5 points are needed");
    ExpectRefusal<std::invalid_argument>({4, 4}, ImageOf(frame), ArrayOf(points), null,
                                         "AffineTransformData.DstPoints.Points is null; 5 points are needed");
}

TEST_F(AffineTransform, RefusesAFrameThatCannotBeWarped) {
    const cv::Mat wide(1, 32767, CV_8UC3, cv::Scalar::all(1));
    ExpectRefusal<cv::Exception>({4, 4}, {nullptr, 9, 7, 27, 0});
    ExpectRefusal<cv::Exception>({4, 4}, {nullptr, 0, 0, 0, 0});
    ExpectRefusal<cv::Exception>({4, 4}, {wide.data, 9, 0, 27, 0});
    ExpectRefusal<cv::Exception>({4, 4}, ImageOf(wide));
}

TEST_F(AffineTransform, RefusesANegativeSize) {
    const cv::Mat frame = RandomFrame(9, 7, 1);
    ExpectRefusal<std::invalid_argument>({-4, -4}, ImageOf(frame),
                                         "TransformOptions: -4 x -4 pixels; neither may be negative");
    ExpectRefusal<std::invalid_argument>({-4, 4}, ImageOf(frame));
    ExpectRefusal<std::invalid_argument>({4, std::numeric_limits<int>::min()}, ImageOf(frame));
    ExpectRefusal<std::invalid_argument>({4, 4}, {frame.data, -9, -7, -27, 0},
                                         "AffineTransformData.Frame: -9 x -7 pixels; neither may be negative");
}

TEST_F(AffineTransform, RefusesASizeWhoseBufferWouldWrapToASmallOne) {
    const cv::Mat frame = RandomFrame(9, 7, 1);
    ExpectRefusal<std::invalid_argument>(
        {65536, 65536}, ImageOf(frame),
        "TransformOptions: height 65536 x stride 196608; at most 2147483647 is allowed");
    ExpectRefusal<std::invalid_argument>(
        {kLargest, 1}, ImageOf(frame), "TransformOptions: height 1 x stride 6442450941; at most 2147483647 is allowed");
}

TEST_F(AffineTransform, FailsAsAnAllocationWhenTheBufferWrapsToANegativeSize) {
    const cv::Mat frame = RandomFrame(9, 7, 1);
    ExpectRefusal<std::bad_alloc>({30000, 30000}, ImageOf(frame));
}

/// Numbers of points that end the process, each tried in one of its own.
class AffineTransformDeath : public AffineTransform {
protected:
    AffineTransformDeath() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    /// Neither points nor pixels are there: the numbers are looked at before anything else.
    void ExpectDeath(int src, int dst, int line, const std::string& expression) {
        Create({0, 0, -4, -4});
        PointArray srcPoints{};
        PointArray dstPoints{};
        srcPoints.PointsCount = src;
        dstPoints.PointsCount = dst;
        EXPECT_DEATH(Call({0, {nullptr, -9, 7, 27, 0}, dstPoints, srcPoints}),
                     "Quarry\\.OpenCV/AffineTransformProcessor\\.cpp:" + std::to_string(line) +
                         ": virtual TransformResult AffineTransformProcessor::DoProcess\\(AffineTransformData\\): "
                         "Assertion `" +
                         expression + "' failed");
    }
};

TEST_F(AffineTransformDeath, EndsTheProcessForTwoNumbersOfPoints) {
    const std::pair<int, int> numbers[] = {{5, 4}, {4, 5}};
    for (const auto& [src, dst] : numbers) {
        ExpectDeath(src, dst, 10, R"(inputData\.SrcPoints\.PointsCount == inputData\.DstPoints\.PointsCount)");
    }
}

TEST_F(AffineTransformDeath, EndsTheProcessForAnyNumberOfPointsButFive) {
    for (const int count : {4, 6, 0, -5}) ExpectDeath(count, count, 11, R"(inputData\.SrcPoints\.PointsCount == 5)");
}

}  // namespace
