#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "Quarry.OpenCV/PixelwiseFire.h"
#include "plain/FlameColor.h"

namespace {

using namespace quarry::plain;

using Fire = PixelwiseFireProcessor;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

double Above(double value) {
    return std::nextafter(value, kInfinity);
}
double Below(double value) {
    return std::nextafter(value, -kInfinity);
}

TEST(FlameColor, FollowsTheRulesForEveryColor) {
    int differing = 0;
    int flames = 0;
    for (int color = 0; color < 1 << 24; ++color) {
        const int red = color >> 16;
        const int green = color >> 8 & 0xFF;
        const int blue = color & 0xFF;
        const auto [L, a, b] = Fire::RGB2Lab(red, green, blue);
        const bool expected = PlainIsFlame(PlainLab(red, green, blue));
        if (expected) ++flames;
        if (Fire::ColorIsFlame(L, a, b) != expected && ++differing <= 5) {
            ADD_FAILURE() << "red " << red << ", green " << green << ", blue " << blue;
        }
    }
    EXPECT_EQ(differing, 0);
    EXPECT_GT(flames, 0);
    RecordProperty("differing", differing);
    RecordProperty("flames", flames);
}

/// How near the closest of the comparisons that decide about a color is to going the other way.
double Margin(const Color& color) {
    const auto& [L, a, b] = color;
    double margin = kInfinity;
    const auto compare = [&](double value, double bound) { margin = std::min(margin, std::abs(value - bound)); };
    for (const double bound : {-23.0, 51.0, 17.9, 5.0, 4.0}) compare(a, bound);
    for (const double bound : {59.0, -0.54 * a + 92.5, -0.95 * b + 92}) compare(L, bound);
    for (const double bound : {1.1 * a - 12, 0.13 * ((a - 6) * (a - 6)) - 8}) compare(b, bound);
    const double lower = 4200 - (a + 42) * (a + 42);
    const double upper = 1600 - (a + 7) * (a + 7);
    if (lower > 0) compare(L, 34 + std::sqrt(lower));
    if (upper > 0) compare(L, 59.5 + std::sqrt(upper));
    return margin;
}

TEST(FlameColor, IsDecidedFarFromWhatMathematicsLibrariesDifferBy) {
    double least = kInfinity;
    for (int color = 0; color < 1 << 24; ++color) {
        least = std::min(least, Margin(PlainLab(color >> 16, color >> 8 & 0xFF, color & 0xFF)));
    }
    EXPECT_GT(least, 1e-8);
}

TEST(FlameColor, IsConvertedBitForBit) {
    for (int red = 0; red < 256; red += 5) {
        for (int green = 0; green < 256; green += 3) {
            for (int blue = 0; blue < 256; blue += 5) {
                const auto [L, a, b] = Fire::RGB2Lab(red, green, blue);
                const Color expected = PlainLab(red, green, blue);
                ASSERT_TRUE(L == expected.L && a == expected.a && b == expected.b)
                    << red << ", " << green << ", " << blue;
            }
        }
    }
}

TEST(FlameColor, OfGreyIsAmongTheLightOnesButNotWhite) {
    for (int grey = 0; grey < 256; ++grey) {
        const auto [L, a, b] = Fire::RGB2Lab(grey, grey, grey);
        EXPECT_EQ(Fire::ColorIsFlame(L, a, b), L > 92 && L < 98.88) << grey << ", L " << L;
    }
    EXPECT_FALSE(Fire::ColorIsFlame(100, 0, 0));
    EXPECT_TRUE(Fire::ColorLabLIsFlame(83.37, 0));
    EXPECT_FALSE(Fire::ColorLabLIsFlame(83.35, 0));
}

TEST(FlameColor, LightnessIsJudgedBetweenTwoBoundsOfA) {
    EXPECT_FALSE(Fire::ColorLabLIsFlame(96.05, -23));
    EXPECT_TRUE(Fire::ColorLabLIsFlame(96.05, Above(-23)));
    EXPECT_TRUE(Fire::ColorLabLIsFlame(60, Below(51)));
    EXPECT_FALSE(Fire::ColorLabLIsFlame(60, 51));
    for (const double L : {0.0, 59.5, 60.0, 90.0, 100.0}) EXPECT_FALSE(Fire::ColorLabLIsFlame(L, 60)) << L;
}

TEST(FlameColor, LightnessMustBeAboveItsLowerBound) {
    EXPECT_FALSE(Fire::ColorLabLIsFlame(59, 18));
    EXPECT_TRUE(Fire::ColorLabLIsFlame(Above(59), 18));
    const double bound = 34 + std::sqrt(4200.0 - 42 * 42);
    EXPECT_FALSE(Fire::ColorLabLIsFlame(bound, 0));
    EXPECT_TRUE(Fire::ColorLabLIsFlame(Above(bound), 0));
    // At 17.9 the curve still holds, which is lower there.
    EXPECT_TRUE(Fire::ColorLabLIsFlame(58.9, 17.9));
    EXPECT_FALSE(Fire::ColorLabLIsFlame(58.9, Above(17.9)));
}

TEST(FlameColor, LightnessMustBeBelowItsUpperBound) {
    const double straight = -0.54 * 20 + 92.5;
    EXPECT_FALSE(Fire::ColorLabLIsFlame(straight, 20));
    EXPECT_TRUE(Fire::ColorLabLIsFlame(Below(straight), 20));
    const double curved = std::sqrt(1600.0 - 7 * 7) + 59.5;
    EXPECT_FALSE(Fire::ColorLabLIsFlame(curved, 0));
    EXPECT_TRUE(Fire::ColorLabLIsFlame(Below(curved), 0));
    // At 5 the curve still holds, which is higher there.
    EXPECT_TRUE(Fire::ColorLabLIsFlame(95, 5));
    EXPECT_FALSE(Fire::ColorLabLIsFlame(95, Above(5)));
}

TEST(FlameColor, YellowMustBeAboveItsBound) {
    const double straight = 1.1 * 10 - 12;
    EXPECT_FALSE(Fire::ColorLabBIsFlame(10, straight));
    EXPECT_TRUE(Fire::ColorLabBIsFlame(10, Above(straight)));
    const double curved = 0.13 * 36 - 8;
    EXPECT_FALSE(Fire::ColorLabBIsFlame(0, curved));
    EXPECT_TRUE(Fire::ColorLabBIsFlame(0, Above(curved)));
    // At 4 the curve still holds, which is higher there.
    EXPECT_FALSE(Fire::ColorLabBIsFlame(4, -7.5));
    EXPECT_TRUE(Fire::ColorLabBIsFlame(Above(4), -7.5));
}

TEST(FlameColor, MustBeLightForItsYellow) {
    EXPECT_FALSE(Fire::ColorIsFlame(92, 0, 0));
    EXPECT_TRUE(Fire::ColorIsFlame(Above(92), 0, 0));
    const double bound = -0.95 * 20 + 92;
    EXPECT_FALSE(Fire::ColorIsFlame(bound, 20, 20));
    EXPECT_TRUE(Fire::ColorIsFlame(Above(bound), 20, 20));
}

TEST(FlameColor, NeedsEachOfItsRules) {
    ASSERT_TRUE(Fire::ColorIsFlame(80, 10, 60));
    EXPECT_FALSE(Fire::ColorIsFlame(50, 10, 60));    // too dark for the first
    EXPECT_FALSE(Fire::ColorIsFlame(70, 30, 20.9));  // not yellow enough for the second
    EXPECT_TRUE(Fire::ColorIsFlame(73, 30, 21.1));
    EXPECT_FALSE(Fire::ColorIsFlame(80, 10, 10));  // too dark for the third
}

TEST(FlameColor, IsNeverNotANumber) {
    EXPECT_FALSE(Fire::ColorLabLIsFlame(kNan, 10));
    EXPECT_FALSE(Fire::ColorLabLIsFlame(kNan, 30));
    EXPECT_FALSE(Fire::ColorLabLIsFlame(80, kNan));
    EXPECT_FALSE(Fire::ColorLabBIsFlame(kNan, 60));
    EXPECT_FALSE(Fire::ColorLabBIsFlame(10, kNan));
    EXPECT_FALSE(Fire::ColorLabBIsFlame(0, kNan));
    EXPECT_FALSE(Fire::ColorIsFlame(kNan, 10, 60));
    EXPECT_FALSE(Fire::ColorIsFlame(80, kNan, 60));
    EXPECT_FALSE(Fire::ColorIsFlame(80, 10, kNan));
}

}  // namespace
