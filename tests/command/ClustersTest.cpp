#include <cmath>

#include "command/CommandFixture.h"

using namespace quarry::test;

namespace {

const cv::Size kSize(100, 80);

/// Things of several sizes on black: a ring, a box, a few pixels and a line.
cv::Mat Things() {
    cv::Mat picture(kSize, CV_8UC3, cv::Scalar::all(0));
    cv::rectangle(picture, cv::Rect(7, 11, 33, 22), {200, 180, 90}, cv::FILLED);
    cv::circle(picture, {70, 50}, 20, {0, 0, 40}, 4);
    cv::rectangle(picture, cv::Rect(5, 70, 4, 4), {255, 255, 255}, cv::FILLED);
    cv::line(picture, {60, 5}, {90, 5}, {255, 255, 255});
    return picture;
}

std::vector<std::vector<cv::Point>> ContoursOf(const cv::Mat& picture, int method, double minArea) {
    cv::Mat grey;
    cv::cvtColor(picture, grey, cv::COLOR_BGR2GRAY);
    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(grey, contours, cv::RETR_EXTERNAL, method);
    std::vector<std::vector<cv::Point>> large;
    for (const auto& contour : contours) {
        if (cv::contourArea(contour) >= std::floor(kSize.area() * minArea)) large.push_back(contour);
    }
    return large;
}

void ExpectIs(const json& cluster, const std::vector<cv::Point>& contour) {
    const double area = cv::contourArea(contour);
    EXPECT_NEAR(cluster.at("area").get<double>(), area / kSize.area(), 1e-6);
    EXPECT_NEAR(cluster.at("perimeter").get<double>(), cv::arcLength(contour, true) / kSize.width, 1e-5);
    ASSERT_EQ(cluster.at("points").size(), contour.size());
    for (std::size_t i = 0; i < contour.size(); ++i) {
        EXPECT_NEAR(cluster.at("points").at(i).at(0).get<double>(), contour[i].x / 100.0, 1e-6);
        EXPECT_NEAR(cluster.at("points").at(i).at(1).get<double>(), contour[i].y / 80.0, 1e-6);
    }
    if (area == 0) {
        EXPECT_TRUE(cluster.at("centre").is_null());
        return;
    }
    const cv::Moments moments = cv::moments(contour);
    EXPECT_NEAR(cluster.at("centre").at(0).get<double>(), std::floor(moments.m10 / moments.m00) / 100, 1e-6);
    EXPECT_NEAR(cluster.at("centre").at(1).get<double>(), std::floor(moments.m01 / moments.m00) / 80, 1e-6);
}

class ClustersCommand : public QuarryCommand {
protected:
    void WriteThings() const { cv::imwrite((folder / "things.png").string(), Things()); }

    json Clusters(const Arguments& more = {}) const {
        return RunJson(Arguments{"clusters", "things.png"} + more).at(0).at("clusters");
    }

    void ExpectClusters(const Arguments& more, int method, double minArea, std::size_t count) const {
        const json clusters = Clusters(more);
        const auto contours = ContoursOf(Things(), method, minArea);
        ASSERT_EQ(contours.size(), count);
        ASSERT_EQ(clusters.size(), count);
        for (std::size_t i = 0; i < count; ++i) ExpectIs(clusters.at(i), contours[i]);
    }
};

TEST_F(ClustersCommand, OfAPictureAreTheThingsInIt) {
    WriteThings();
    ExpectClusters({}, cv::CHAIN_APPROX_TC89_KCOS, 0.001, 3);
    ExpectClusters({"--every-pixel"}, cv::CHAIN_APPROX_NONE, 0.001, 3);
    ExpectClusters({"--min-area", "0.02"}, cv::CHAIN_APPROX_TC89_KCOS, 0.02, 2);
    ExpectClusters({"--min-area", "1"}, cv::CHAIN_APPROX_TC89_KCOS, 1, 0);
}

TEST_F(ClustersCommand, ALineHasNoCentre) {
    WriteThings();
    ExpectClusters({"--min-area", "0", "--every-pixel"}, cv::CHAIN_APPROX_NONE, 0, 4);
    EXPECT_EQ(Run({"clusters", "things.png", "--min-area", "0", "--out", "drawn.png"}).exitCode, 0);
}

TEST_F(ClustersCommand, TellTheSameInWordsAndAreDrawn) {
    WriteThings();
    const Outcome outcome = Run({"clusters", "things.png", "--out", "drawn.png"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    const std::vector<std::string> lines = Lines(outcome.out);
    ASSERT_EQ(lines.size(), 2U) << outcome.out;
    EXPECT_EQ(std::stoi(lines[1]), 3);
    const cv::Mat drawn = ReadPicture("drawn.png");
    EXPECT_EQ(drawn.at<cv::Vec3b>(22, 23), cv::Vec3b(255, 255, 255)) << "the centre of the box";
    const auto& border = drawn.at<cv::Vec3b>(20, 7);
    EXPECT_GT(border[2], border[0] + 60) << "orange";
}

TEST_F(ClustersCommand, OfAVideoAreTheThingsThatMove) {
    WriteVideo("clip.avi", 40);
    EXPECT_FALSE(RunJson({"clusters", "clip.avi"}).back().at("clusters").empty()) << "the square moves";
}

}  // namespace
