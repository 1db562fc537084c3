#include "command/CommandFixture.h"

using namespace quarry::test;

namespace {

const cv::Size kSize(120, 90);
const cv::Scalar kFlame(60, 200, 255);  // B, G, R
const cv::Scalar kDark(50, 40, 30);

/// By how much a region grows.
cv::Mat Grown(const cv::Mat& region) {
    cv::Mat grown;
    cv::dilate(region, grown, cv::getStructuringElement(cv::MORPH_ELLIPSE, {11, 11}), {-1, -1}, 2);
    return grown;
}

class FireCommand : public QuarryCommand {
protected:
    void SetUp() override {
        QuarryCommand::SetUp();
        // A flame with a hole, a smaller flame, and something red.
        picture = cv::Mat(kSize, CV_8UC3, kDark);
        cv::rectangle(picture, kFire, kFlame, cv::FILLED);
        cv::rectangle(picture, cv::Rect(42, 42, 6, 6), kDark, cv::FILLED);
        cv::rectangle(picture, cv::Rect(90, 20, 12, 12), kFlame, cv::FILLED);
        cv::rectangle(picture, cv::Rect(85, 60, 20, 20), {30, 20, 200}, cv::FILLED);
        cv::imwrite((folder / "fire.png").string(), picture);
        cv::imwrite((folder / "dark.png").string(), cv::Mat(kSize, CV_8UC3, kDark));

        mask = cv::Mat(kSize, CV_8UC1, cv::Scalar(0));
        cv::rectangle(mask, kFire, 255, cv::FILLED);
        mask = Grown(mask);
    }

    const cv::Rect kFire{30, 35, 25, 20};
    cv::Mat picture;
    cv::Mat mask;
};

TEST_F(FireCommand, FindsTheLargestRegionOfFlameColours) {
    const std::vector<json> lines = RunJson({"fire", "fire.png", "dark.png"});
    ASSERT_EQ(lines.size(), 2U);
    const cv::Rect bounds = cv::boundingRect(mask);
    EXPECT_EQ(lines[0].at("file"), "fire.png");
    EXPECT_EQ(lines[0].at("width"), kSize.width);
    EXPECT_EQ(lines[0].at("height"), kSize.height);
    EXPECT_NEAR(lines[0].at("flame").get<double>(), cv::countNonZero(mask) / static_cast<double>(kSize.area()), 1e-12);
    EXPECT_EQ(lines[0].at("rectangle"),
              (json{{"x", bounds.x}, {"y", bounds.y}, {"width", bounds.width}, {"height", bounds.height}}));
    EXPECT_EQ(lines[1].at("flame"), 0);
    EXPECT_TRUE(lines[1].at("rectangle").is_null());
}

TEST_F(FireCommand, TableHasALinePerPicture) {
    const std::vector<std::string> lines = Lines(Run({"fire", "fire.png", "dark.png"}).out);
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_NE(lines[0].find("flame %"), std::string::npos);
    std::istringstream row(lines[1]);
    std::string file, rectangle;
    int width = 0;
    int height = 0;
    double percent = 0;
    double milliseconds = 0;
    row >> file >> width >> height >> percent >> milliseconds >> rectangle;
    EXPECT_NEAR(percent, 100.0 * cv::countNonZero(mask) / kSize.area(), 0.0006);
    EXPECT_EQ(rectangle, "20,25,45,40");
    EXPECT_EQ(lines[2].find(','), std::string::npos) << lines[2];
}

TEST_F(FireCommand, OutlinesTheRegion) {
    EXPECT_EQ(Run({"fire", "fire.png", "--out", "outlined.png"}).exitCode, 0);
    const cv::Mat outlined = ReadPicture("outlined.png");
    ASSERT_EQ(outlined.size(), kSize);
    const auto edge = outlined.at<cv::Vec3b>(45, 20);
    EXPECT_GT(edge[1], edge[2] + 60) << "green";
    EXPECT_EQ(cv::norm(outlined(kFire), picture(kFire), cv::NORM_INF), 0) << "the flame stays as it is";
    EXPECT_EQ(Run({"fire", "dark.png", "--out", "same.png"}).exitCode, 0);
    EXPECT_EQ(cv::norm(ReadPicture("same.png"), ReadPicture("dark.png"), cv::NORM_INF), 0);
}

TEST_F(FireCommand, OutlinesOnePictureOnly) {
    ExpectRefusal({"fire", "fire.png", "dark.png", "--out", "outlined.png"}, 2, "--out: goes with one picture");
}

}  // namespace
