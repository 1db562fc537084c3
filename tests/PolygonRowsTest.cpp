#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "Quarry.OpenCV/PolygonRows.h"

namespace {

using Points = std::vector<cv::Point2f>;

constexpr float kHuge = std::numeric_limits<float>::max();
constexpr float kTiny = std::numeric_limits<float>::denorm_min();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

void ExpectOpenCvsSides(const Points& polygon, const Points& asked) {
    const quarry::PolygonRows rows(polygon);
    for (const cv::Point2f& point : asked) {
        ASSERT_EQ(rows.SideOf(point), static_cast<int>(cv::pointPolygonTest(polygon, point, false)))
            << std::hexfloat << point.x << ", " << point.y << " in " << polygon;
    }
}

/// Random corners, some of them equal to earlier ones in a coordinate or in both.
Points RandomCorners(cv::RNG& random, int count, double reach, bool whole) {
    Points points;
    for (int i = 0; i < count; ++i) {
        const double x = random.uniform(-reach, reach);
        const double y = random.uniform(-reach, reach);
        points.emplace_back(static_cast<float>(whole ? std::floor(x) : x),
                            static_cast<float>(whole ? std::floor(y) : y));
        const cv::Point2f& earlier = points[static_cast<std::size_t>(random.uniform(0, i + 1))];
        if (random.uniform(0, 8) == 0) points.back().y = earlier.y;
        if (random.uniform(0, 8) == 0) points.back().x = earlier.x;
    }
    return points;
}

/// Points as close to the sides as single precision gets, corners among them.
Points NextToSides(const Points& polygon, cv::RNG& random) {
    Points points = polygon;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const cv::Point2f& from = polygon[i];
        const cv::Point2f& to = polygon[(i + 1) % polygon.size()];
        const auto share = static_cast<float>(random.uniform(0, 9)) / 8.0F;
        const cv::Point2f on = from + (to - from) * share;
        for (const float beside : {-kInfinity, kInfinity}) {
            points.insert(points.end(),
                          {on, {std::nextafter(on.x, beside), on.y}, {on.x, std::nextafter(on.y, beside)}});
        }
    }
    return points;
}

/// A star of many thin rays, whose sides all cross the same rows.
Points Star(int rays, float radius) {
    Points points;
    for (int i = 0; i < 2 * rays; ++i) {
        const double angle = CV_PI * i / rays;
        const float reach = i % 2 == 0 ? radius : radius / 9;
        points.emplace_back(reach * static_cast<float>(std::cos(angle)), reach * static_cast<float>(std::sin(angle)));
    }
    return points;
}

TEST(PolygonRows, AnswerAsOpenCvDoesOnAWholeGrid) {
    Points grid;
    for (int y = -10; y <= 10; ++y) {
        for (int x = -10; x <= 10; ++x) grid.emplace_back(static_cast<float>(x) / 2, static_cast<float>(y) / 2);
    }
    cv::RNG random(1);
    for (int i = 0; i < 3000; ++i) {
        ExpectOpenCvsSides(RandomCorners(random, random.uniform(1, 12), 4.5, true), grid);
        if (HasFatalFailure()) return;
    }
}

TEST(PolygonRows, AnswerAsOpenCvDoesNextToSides) {
    cv::RNG random(2);
    for (int i = 0; i < 3000; ++i) {
        const double reach = std::pow(10.0, random.uniform(-38, 30));
        const Points polygon = RandomCorners(random, random.uniform(1, 30), reach, i % 3 == 0);
        ExpectOpenCvsSides(polygon, NextToSides(polygon, random));
        if (HasFatalFailure()) return;
    }
}

TEST(PolygonRows, AnswerAsOpenCvDoesForManySides) {
    cv::RNG random(3);
    for (const int count : {50, 200, 1000}) {
        for (const double reach : {1.0, 640.0}) {
            const Points polygon = RandomCorners(random, count, reach, reach > 1.0);
            ExpectOpenCvsSides(polygon, RandomCorners(random, 2000, 1.1 * reach, reach > 1.0));
            ExpectOpenCvsSides(polygon, NextToSides(polygon, random));
        }
        ExpectOpenCvsSides(Star(count, 100), RandomCorners(random, 2000, 110, false));
    }
}

TEST(PolygonRows, AnswerAsOpenCvDoesForOutlinesInPixels) {
    cv::RNG random(4);
    for (const float scale : {1.0F, 1 / 640.0F}) {
        for (const int radius : {3, 20, 90}) {
            cv::Mat mask = cv::Mat::zeros(240, 240, CV_8UC1);
            cv::ellipse(mask, {120, 120}, {radius, radius / 2 + 1}, 30, 0, 360, cv::Scalar(255), cv::FILLED);
            std::vector<std::vector<cv::Point>> outlines;
            cv::findContours(mask, outlines, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_NONE);
            Points polygon;
            for (const cv::Point& point : outlines.at(0)) polygon.push_back(cv::Point2f(point) * scale);
            Points pixels;
            for (int i = 0; i < 240 * 240; ++i) pixels.push_back(cv::Point2f(cv::Point(i % 240, i / 240)) * scale);
            ExpectOpenCvsSides(polygon, pixels);
        }
    }
}

TEST(PolygonRows, AnswerAsOpenCvDoesForWhatIsNoOrdinaryNumber) {
    const float odd[] = {kNan, kInfinity, -kInfinity, kHuge, -kHuge, kTiny, -kTiny, 0.0F, -0.0F, 5.0F};
    const Points square = {{0, 0}, {0, 10}, {10, 10}, {10, 0}};
    Points asked = {{5, 5}, {15, 5}, {10, 5}};
    for (const float x : odd) {
        for (const float y : odd) asked.emplace_back(x, y);
    }
    ExpectOpenCvsSides(square, asked);
    for (const cv::Point2f& corner : Points(asked)) {
        for (std::size_t i = 0; i < square.size(); ++i) {
            Points polygon = square;
            polygon[i] = corner;
            ExpectOpenCvsSides(polygon, asked);
            polygon[(i + 1) % square.size()] = {-corner.x, corner.y};
            ExpectOpenCvsSides(polygon, asked);
            polygon[(i + 2) % square.size()] = {-corner.x, -corner.y};
            ExpectOpenCvsSides(polygon, asked);
        }
    }
}

TEST(PolygonRows, AnswerAsOpenCvDoesForPolygonsWithoutHeightOrWidth) {
    const Points asked = {{3, 4}, {4, 4}, {5, 4}, {9, 4}, {4, 3}, {4, 5}, {4, 9}, {kTiny, 4}, {4, kTiny}};
    for (const Points& polygon : {Points{{4, 4}}, Points{{3, 4}, {5, 4}, {4, 4}}, Points{{4, 3}, {4, 5}, {4, 4}},
                                  Points{{4, 4}, {4, 4}}, Points{{0, 0}, {kTiny, kTiny}, {0, kTiny}}}) {
        ExpectOpenCvsSides(polygon, asked);
    }
}

TEST(PolygonRows, DoWithAPolygonWithoutCornersWhatOpenCvDoes) {
    const Points none;
    const quarry::PolygonRows rows(none);
    try {
        const double side = cv::pointPolygonTest(none, cv::Point2f(5, 5), false);
        EXPECT_EQ(rows.SideOf({5, 5}), static_cast<int>(side));
    } catch (const cv::Exception&) {
        EXPECT_THROW(rows.SideOf({5, 5}), cv::Exception);
    }
}

}  // namespace
