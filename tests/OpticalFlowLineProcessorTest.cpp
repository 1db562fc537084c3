#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <opencv2/imgproc.hpp>
#include <opencv2/video/tracking.hpp>
#include <stdexcept>
#include <vector>

#include "Quarry.OpenCV/OpticalFlowLineProcessor.h"
#include "plain/OpticalFlowLineProcessor.h"
#include "plain/Steps.h"
#include "support/Calls.h"
#include "support/Footage.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::test;
using Values = std::vector<float>;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

/// A motion field as a host holds it.
class Field {
public:
    Field(int width, int height)
        : motions(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)),
          matrix{width, height, motions.data()} {}

    AbsVector& At(int x, int y) {
        return motions[static_cast<std::size_t>(y) * static_cast<std::size_t>(matrix.width) +
                       static_cast<std::size_t>(x)];
    }
    void Fill(const AbsVector& motion) { std::fill(motions.begin(), motions.end(), motion); }

    std::vector<AbsVector> motions;
    AbsVectorMatrix matrix;
};

Field RandomField(int width, int height, uint64_t seed, double reach = 20.0) {
    Field field(width, height);
    cv::RNG random(seed + 1);  // a generator seeded with 0 gives 0 for ever
    for (AbsVector& motion : field.motions) {
        motion.Dx = static_cast<float>(random.uniform(-reach, reach));
        motion.Dy = static_cast<float>(random.uniform(-reach, reach));
    }
    return field;
}

/// Ends of a line, relative to the field.
struct Line {
    float startX, startY, endX, endY;
};

std::ostream& operator<<(std::ostream& out, const Line& line) {
    return out << "(" << line.startX << ", " << line.startY << ") to (" << line.endX << ", " << line.endY << ")";
}

Line RandomLine(cv::RNG& random) {
    const auto place = [&] { return static_cast<float>(random.uniform(-0.4, 1.4)); };
    return {place(), place(), place(), place()};
}

class OpticalFlowLine : public ProcessorTest<operations::OpticalFlowLine> {
protected:
    Values Measure(AbsVectorMatrix* matrix, const Line& line, int count) {
        auto result = Call({0, {}, matrix, line.startX, line.startY, line.endX, line.endY, count, 0});
        EXPECT_EQ(result->ValuesCount, count);
        return {result->Values, result->Values + count};
    }
    Values Measure(Field& field, const Line& line, int count) { return Measure(&field.matrix, line, count); }
};

Values PlainProfile(Field& field, const cv::Point& start, const cv::Point& end) {
    return quarry::plain::Profile(cv::Mat(field.matrix.height, field.matrix.width, CV_32FC2, field.motions.data()),
                                  start, end);
}

/// The profile at another number of places, in whole numbers: exact wherever a float would not round. Zeros where there
/// is none.
Values PlainResample(const Values& profile, int count) {
    const auto length = static_cast<int>(profile.size());
    if (length == 0) return Values(static_cast<std::size_t>(count), 0.0F);
    Values out;
    if (count > length) {
        const int times = (2 * count + length) / (2 * length);
        for (const float value : profile) out.insert(out.end(), static_cast<std::size_t>(times), value);
        out.resize(static_cast<std::size_t>(count), profile.back());
    } else {
        for (int i = 0; i < count; ++i) {
            out.push_back(profile[static_cast<std::size_t>((2 * i * length + count) / (2 * count))]);
        }
    }
    return out;
}

Values Reference(Field& field, const cv::Point& start, const cv::Point& end, int count) {
    return PlainResample(PlainProfile(field, start, end), count);
}

cv::Point Pixel(float x, float y, const Field& field) {
    return {quarry::plain::TruncatedProduct(x, field.matrix.width),
            quarry::plain::TruncatedProduct(y, field.matrix.height)};
}

Values Reference(Field& field, const Line& line, int count) {
    return Reference(field, Pixel(line.startX, line.startY, field), Pixel(line.endX, line.endY, field), count);
}

bool SameBits(const Values& a, const Values& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), quarry::plain::SameBits<float>);
}

TEST_F(OpticalFlowLine, EqualsThePlainStepsOnFieldsOfAnySize) {
    const cv::Size sizes[] = {{1, 1}, {1, 9}, {9, 1}, {2, 2}, {3, 3}, {17, 13}, {64, 48}, {333, 251}};
    for (const cv::Size& size : sizes) {
        int nonZero = 0;
        for (uint64_t seed = 0; seed < 200; ++seed) {
            Field field = RandomField(size.width, size.height, seed);
            cv::RNG random(seed + 1);
            const Line line = RandomLine(random);
            const int count = random.uniform(0, 2 * (size.width + size.height));
            const Values values = Measure(field, line, count);
            EXPECT_TRUE(SameBits(values, Reference(field, line, count)))
                << size << ", seed " << seed << ", " << line << ", " << count << " values";
            nonZero += static_cast<int>(std::count_if(values.begin(), values.end(), [](float v) { return v != 0.0F; }));
        }
        EXPECT_GT(nonZero, 0) << "no line of " << size << " says anything";
    }
}

TEST_F(OpticalFlowLine, EqualsThePlainStepsForAnyNumberOfValues) {
    Field field = RandomField(90, 70, 11);
    field.At(45, 35) = {kNan, kInfinity};
    const Line lines[] = {{0.0F, 0.5F, 1.0F, 0.5F}, {0.5F, 1.0F, 0.5F, 0.0F},   {1.0F, 1.0F, 0.0F, 0.0F},
                          {0.1F, 0.9F, 0.8F, 0.2F}, {-0.5F, -0.2F, 1.5F, 1.3F}, {0.5F, 0.5F, 0.5F, 0.5F}};
    for (const Line& line : lines) {
        for (int count = 0; count <= 130; ++count) {
            ASSERT_TRUE(SameBits(Measure(field, line, count), Reference(field, line, count)))
                << line << ", " << count << " values";
        }
    }
}

TEST_F(OpticalFlowLine, EqualsThePlainStepsOnTheFlowOfRealFrames) {
    const std::vector<cv::Mat> frames = PedestrianFrames(8);
    if (frames.empty()) GTEST_SKIP() << "no footage in " << MediaDirectory();
    cv::RNG random(5);
    for (std::size_t i = 1; i < frames.size(); ++i) {
        cv::Mat previous;
        cv::Mat current;
        cv::cvtColor(frames[i - 1], previous, cv::COLOR_RGB2GRAY);
        cv::cvtColor(frames[i], current, cv::COLOR_RGB2GRAY);
        Field field(frames[i].cols, frames[i].rows);
        cv::Mat flow(frames[i].size(), CV_32FC2, field.motions.data());
        cv::calcOpticalFlowFarneback(previous, current, flow, 0.5, 2, 15, 2, 5, 1.1, 0);
        for (int n = 0; n < 50; ++n) {
            const Line line = RandomLine(random);
            EXPECT_TRUE(SameBits(Measure(field, line, 100), Reference(field, line, 100)))
                << "frame " << i << ", " << line;
        }
    }
}

TEST_F(OpticalFlowLine, TakesTheMatrixOfTheDenseFlow) {
    auto options = FramedOptions<OFCOptions>();
    options->Detail = 0.5F;
    options->Quality = 0.3F;
    void* calculator = nullptr;
    CreateCVDenseOpticalFlowCalculator(&calculator, options.record());
    const cv::Mat frames[] = {MovingSquare(80, 60, 0), MovingSquare(80, 60, 1)};
    for (const cv::Mat& frame : frames) {
        auto input = FramedInput<OFCData>();
        input->Image = ImageOf(frame);
        Update(calculator, input.as<UpdateData>());
    }
    auto result = FramedResult<OFCResult>();
    GetUpdateResult(calculator, result.as<UpdateResult>());
    Field copy(80, 60);
    std::copy_n(result->FlowMatrix->data, copy.motions.size(), copy.motions.begin());
    const Line line{0.1F, 0.1F, 0.4F, 0.9F};
    EXPECT_TRUE(SameBits(Measure(result->FlowMatrix, line, 60), Reference(copy, line, 60)));
    Dispose(calculator);
}

TEST_F(OpticalFlowLine, IsTheDistanceOfEachMovedPixelFromTheLine) {
    for (uint64_t seed = 0; seed < 50; ++seed) {
        Field field = RandomField(64, 64, seed);
        // From (8, 6) to (53, 57): 52 pixels, one per row.
        const Values values = Measure(field, {8.5F / 64, 6.5F / 64, 53.5F / 64, 57.5F / 64}, 52);
        for (int i = 0; i < 52; ++i) {
            const int y = 6 + i;
            const int x = static_cast<int>(std::lround(8 + i * 45.0 / 51.0));
            const AbsVector motion = field.At(x, y);
            const double cross =
                45.0 * (y + static_cast<double>(motion.Dy) - 6) - 51.0 * (x + static_cast<double>(motion.Dx) - 8);
            const double distance = cross / std::sqrt(45.0 * 45.0 + 51.0 * 51.0);
            // The area of a very flat triangle keeps half of a float's digits.
            EXPECT_NEAR(values[static_cast<std::size_t>(i)], distance, 0.05) << "seed " << seed << ", value " << i;
        }
    }
}

TEST_F(OpticalFlowLine, IsPositiveWhereTheCrossProductIs) {
    Field field(32, 24);
    const Line rightward{0.0F, 0.5F, 0.9F, 0.5F};
    const Line leftward{0.9F, 0.5F, 0.0F, 0.5F};
    field.Fill({0.0F, 3.0F});
    for (const float value : Measure(field, rightward, 20)) EXPECT_NEAR(value, 3.0F, 1e-3);
    for (const float value : Measure(field, leftward, 20)) EXPECT_NEAR(value, -3.0F, 1e-3);
    field.Fill({0.0F, -3.0F});
    for (const float value : Measure(field, rightward, 20)) EXPECT_NEAR(value, -3.0F, 1e-3);
    for (const float value : Measure(field, leftward, 20)) EXPECT_NEAR(value, 3.0F, 1e-3);
}

TEST_F(OpticalFlowLine, OfMotionAlongTheLineIsZero) {
    Field field(32, 24);
    field.Fill({5.0F, 0.0F});
    for (const float value : Measure(field, {0.0F, 0.5F, 0.9F, 0.5F}, 20)) EXPECT_EQ(value, 0.0F);
}

TEST_F(OpticalFlowLine, FollowsTheLineFromItsStart) {
    Field field(10, 3);
    for (int x = 0; x < 10; ++x) field.At(x, 1) = {0.0F, static_cast<float>(x)};
    const Values rightward = Measure(field, {0.0F, 0.5F, 0.9F, 0.5F}, 10);
    const Values leftward = Measure(field, {0.9F, 0.5F, 0.0F, 0.5F}, 10);
    for (int x = 0; x < 10; ++x) {
        const auto i = static_cast<std::size_t>(x);
        EXPECT_NEAR(rightward[i], static_cast<float>(x), 1e-3) << "value " << x;
        EXPECT_NEAR(leftward[i], static_cast<float>(x - 9), 1e-3) << "value " << x;
    }
}

TEST_F(OpticalFlowLine, TruncatesItsEndsTowardZero) {
    Field field = RandomField(10, 10, 3);
    EXPECT_TRUE(SameBits(Measure(field, {0.19F, 0.29F, 0.79F, 0.89F}, 9), Reference(field, {1, 2}, {7, 8}, 9)));
    EXPECT_TRUE(SameBits(Measure(field, {-0.09F, -0.05F, 0.79F, 0.89F}, 9), Reference(field, {0, 0}, {7, 8}, 9)));
    EXPECT_TRUE(SameBits(Measure(field, {-0.19F, 0.5F, 0.79F, 0.89F}, 9), Reference(field, {-1, 5}, {7, 8}, 9)));
}

TEST_F(OpticalFlowLine, TakesItsEndsFromProductsInSinglePrecision) {
    // 0.7F x 10 is 7 as a float; before it is rounded it is just below.
    ASSERT_LT(static_cast<double>(0.7F) * 10, 7.0);
    Field field = RandomField(10, 10, 4);
    EXPECT_TRUE(SameBits(Measure(field, {0.7F, 0.0F, 0.0F, 0.7F}, 9), Reference(field, {7, 0}, {0, 7}, 9)));
}

TEST_F(OpticalFlowLine, ClipsAnEndAtOne) {
    Field field = RandomField(10, 10, 5);
    // The end is pixel (10, 10), which the distances are from; the pixels are those up to (9, 9).
    const Values profile = PlainProfile(field, {0, 0}, {10, 10});
    ASSERT_EQ(profile.size(), 10U);
    EXPECT_TRUE(SameBits(Measure(field, {0.0F, 0.0F, 1.0F, 1.0F}, 10), profile));
}

TEST_F(OpticalFlowLine, OfASegmentOutsideIsZeros) {
    Field field = RandomField(10, 8, 5);
    const Line outside[] = {{1.0F, 0.0F, 1.0F, 1.0F},     {0.0F, 1.0F, 1.0F, 1.0F},   {-0.5F, -0.5F, -0.1F, -0.2F},
                            {2.0F, 0.5F, 3.0F, 0.5F},     {0.5F, -3.0F, 0.6F, -0.2F}, {-0.9F, 0.5F, 0.5F, -0.9F},
                            {-1e30F, 0.5F, -1e29F, 0.5F}, {1.5F, 0.9F, 0.9F, 1.5F}};
    for (const Line& line : outside) EXPECT_EQ(Measure(field, line, 7), Values(7, 0.0F)) << line;
}

TEST_F(OpticalFlowLine, OfASinglePointIsNotANumber) {
    Field field = RandomField(10, 8, 6);
    for (const Line& line : {Line{0.5F, 0.5F, 0.5F, 0.5F}, Line{0.51F, 0.51F, 0.58F, 0.6F}}) {
        const Values values = Measure(field, line, 5);
        for (const float value : values) EXPECT_FALSE(std::isfinite(value)) << line;
        EXPECT_TRUE(SameBits(values, Reference(field, line, 5))) << line;
    }
}

TEST_F(OpticalFlowLine, CarriesMotionThatIsNotANumberToItsOwnPlace) {
    Field field = RandomField(10, 8, 6);
    field.At(4, 4) = {kNan, 0.0F};
    field.At(6, 4) = {0.0F, kInfinity};
    const Values values = Measure(field, {0.0F, 0.5F, 0.9F, 0.5F}, 10);
    for (std::size_t i = 0; i < values.size(); ++i) {
        EXPECT_EQ(std::isfinite(values[i]), i != 4 && i != 6) << "value " << i;
    }
}

TEST_F(OpticalFlowLine, TakesEndsThatNoPixelHasForTheLowestOne) {
    const int lowest = std::numeric_limits<int>::min();
    Field field = RandomField(10, 10, 7);
    for (const float place : {kNan, kInfinity, -kInfinity, 1e30F, -1e30F, 4e8F}) {
        EXPECT_TRUE(SameBits(Measure(field, {place, 0.5F, 0.5F, 0.5F}, 8), Reference(field, {lowest, 5}, {5, 5}, 8)))
            << place;
        EXPECT_TRUE(SameBits(Measure(field, {0.5F, 0.0F, 0.5F, place}, 8), Reference(field, {5, 0}, {5, lowest}, 8)))
            << place;
        EXPECT_TRUE(SameBits(Measure(field, {place, place, place, place}, 8), Values(8, 0.0F))) << place;
    }
}

TEST_F(OpticalFlowLine, StaysInsideTheFieldForAnyEnds) {
    const float places[] = {kNan,  kInfinity, -kInfinity, 2e8F, -2e8F,  1e5F,   -1e5F, 1e7F,
                            -1e7F, 0.0F,      -0.0F,      0.5F, 0.999F, 1.001F, -3.0F, 1e-40F};
    Field field = RandomField(10, 9, 8);
    cv::RNG random(9);
    const auto place = [&] { return places[random.uniform(0, static_cast<int>(std::size(places)))]; };
    for (int i = 0; i < 3000; ++i) {
        const Line line{place(), place(), place(), place()};
        EXPECT_EQ(Measure(field, line, 6).size(), 6U) << line;  // a sanitizer watches the field
    }
}

TEST_F(OpticalFlowLine, OfAFieldWithoutMotionsIsZeros) {
    const Line line{0.0F, 0.0F, 1.0F, 1.0F};
    AbsVector motion{3.0F, 4.0F};
    AbsVectorMatrix empty[] = {{4, 4, nullptr}, {0, 4, &motion}, {4, 0, &motion}, {0, 0, &motion}, {0, 0, nullptr}};
    EXPECT_EQ(Measure(nullptr, line, 7), Values(7, 0.0F));
    for (AbsVectorMatrix& matrix : empty) {
        EXPECT_EQ(Measure(&matrix, line, 7), Values(7, 0.0F)) << matrix.width << " x " << matrix.height;
    }
}

TEST_F(OpticalFlowLine, OfAFieldOfNegativeSizeIsZeros) {
    AbsVector motion{3.0F, 4.0F};
    for (const cv::Size& size : {cv::Size(-5, 5), cv::Size(5, -5), cv::Size(-5, -5)}) {
        AbsVectorMatrix matrix{size.width, size.height, &motion};
        EXPECT_EQ(Measure(&matrix, {0.0F, 0.0F, 0.0F, 0.0F}, 7), Values(7, 0.0F)) << size;
        EXPECT_EQ(Measure(&matrix, {0.0F, 0.0F, 0.9F, 0.9F}, 7), Values(7, 0.0F)) << size;
    }
}

TEST_F(OpticalFlowLine, OfNoValuesIsAnEmptyArray) {
    Field field = RandomField(10, 8, 6);
    EXPECT_TRUE(Measure(field, {0.0F, 0.0F, 1.0F, 1.0F}, 0).empty());
}

TEST_F(OpticalFlowLine, RefusesANegativeNumberOfValues) {
    Field field = RandomField(10, 8, 6);
    for (const int count : {-1, std::numeric_limits<int>::min()}) {
        ExpectRefusal<std::invalid_argument>(
            {0, {}, &field.matrix, 0.0F, 0.0F, 1.0F, 1.0F, count, 0},
            "OFLineData.ValuesCount is " + std::to_string(count) + "; 0 or more is allowed");
    }
}

/// What `count` places get of a buffer that holds its own indices.
std::vector<int> Picked(int length, int count) {
    Values buffer;
    for (int i = 0; i < length; ++i) buffer.push_back(static_cast<float>(i));
    Values out(static_cast<std::size_t>(count), -1.0F);
    OpticalFlowLineProcessor::CopyBufferToResult(buffer, out.data(), count);
    return {out.begin(), out.end()};
}

TEST(OpticalFlowLineResampling, RepeatsEachOfFiveValuesTwiceForTwelve) {
    EXPECT_EQ(Picked(5, 12), (std::vector<int>{0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 4, 4}));
}

TEST(OpticalFlowLineResampling, RepeatsEachOfThreeValuesThriceForTen) {
    EXPECT_EQ(Picked(3, 10), (std::vector<int>{0, 0, 0, 1, 1, 1, 2, 2, 2, 2}));
}

TEST(OpticalFlowLineResampling, NeverReachesTheLastValuesWhenRepeatsAreRoundedUp) {
    EXPECT_EQ(Picked(4, 6), (std::vector<int>{0, 0, 1, 1, 2, 2}));
}

TEST(OpticalFlowLineResampling, PicksFourOfTenValuesRoundingHalvesUp) {
    EXPECT_EQ(Picked(10, 4), (std::vector<int>{0, 3, 5, 8}));
}

TEST(OpticalFlowLineResampling, CopiesAsManyValuesAsThereAre) {
    EXPECT_EQ(Picked(5, 5), (std::vector<int>{0, 1, 2, 3, 4}));
}

TEST(OpticalFlowLineResampling, GivesThePlaceRoundedHalfUpForAllSmallLengthsAndCounts) {
    for (int length = 1; length <= 120; ++length) {
        Values buffer;
        for (int i = 0; i < length; ++i) buffer.push_back(static_cast<float>(i));
        for (int count = 1; count <= 250; ++count) {
            Values out(static_cast<std::size_t>(count), -1.0F);
            OpticalFlowLineProcessor::CopyBufferToResult(buffer, out.data(), count);
            ASSERT_EQ(out, PlainResample(buffer, count)) << length << " values to " << count;
        }
    }
}

TEST(OpticalFlowLineResampling, PicksByPlacesInSinglePrecision) {
    struct Case {
        int length, count;
    };
    int placesThatTellTheProduct = 0;
    int placesThatTellTheQuotient = 0;
    for (const Case& c : {Case{8192, 8191}, Case{20011, 9973}, Case{65537, 32768}}) {
        const std::vector<int> picked = Picked(c.length, c.count);
        for (int i = 0; i < c.count; ++i) {
            const double exactProduct = static_cast<double>(i) * c.length;
            const double exactPlace = exactProduct / c.count;
            volatile float product = static_cast<float>(i) * static_cast<float>(c.length);
            volatile float place = product / static_cast<float>(c.count);
            volatile auto placeOfExactProduct = static_cast<float>(exactPlace);
            const auto rounded = [](double value) { return static_cast<int>(std::floor(value + 0.5)); };
            const int expected = rounded(static_cast<double>(place));
            ASSERT_EQ(picked[static_cast<std::size_t>(i)], expected)
                << c.length << " to " << c.count << ", value " << i;
            placesThatTellTheProduct += expected != rounded(static_cast<double>(placeOfExactProduct)) ? 1 : 0;
            placesThatTellTheQuotient += expected != rounded(exactPlace) ? 1 : 0;
        }
    }
    EXPECT_GT(placesThatTellTheProduct, 0) << "no place tells a product in single from one in higher precision";
    EXPECT_GT(placesThatTellTheQuotient, 0) << "no place tells a quotient in single from one in higher precision";
}

TEST(OpticalFlowLineResampling, RepeatsByAQuotientInSinglePrecision) {
    // The quotient is just below 1.5, which a float cannot say: each value is written twice.
    const int length = (1 << 23) + 1;
    const int count = (3 * length - 1) / 2;
    Values buffer(static_cast<std::size_t>(length), 0.0F);
    buffer[1] = 1.0F;
    Values out(static_cast<std::size_t>(count), -1.0F);
    OpticalFlowLineProcessor::CopyBufferToResult(buffer, out.data(), count);
    EXPECT_EQ(Values(out.begin(), out.begin() + 5), (Values{0.0F, 0.0F, 1.0F, 1.0F, 0.0F}));
}

TEST(OpticalFlowLineResampling, WritesNothingForNoValues) {
    const Values buffer(3, 1.0F);
    for (const int count : {0, -1, std::numeric_limits<int>::min()}) {
        float out = -7.0F;
        OpticalFlowLineProcessor::CopyBufferToResult(buffer, &out, count);
        EXPECT_EQ(out, -7.0F) << count << " values";
    }
}

}  // namespace
