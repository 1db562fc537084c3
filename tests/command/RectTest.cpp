#include <cmath>

#include "command/CommandFixture.h"

using namespace quarry::test;

namespace {

/// The cut, computed pixel by pixel from the middle of both rectangles.
cv::Mat CutOf(const cv::Mat& picture, cv::Point centre, cv::Size size, double degrees, int interpolation) {
    const double angle = degrees * CV_PI / 180;
    const double s = std::sin(angle);
    const double c = std::cos(angle);
    const int middleX = size.width / 2;
    const int middleY = size.height / 2;
    const cv::Matx23d matrix(c, -s, centre.x - (c * middleX - s * middleY), s, c,
                             centre.y - (s * middleX + c * middleY));
    cv::Mat cut;
    cv::warpAffine(picture, cut, matrix, size, cv::WARP_INVERSE_MAP | interpolation);
    return cut;
}

class RectCommand : public QuarryCommand {
protected:
    void SetUp() override {
        QuarryCommand::SetUp();
        picture = WritePicture("picture.png", 1, 1.5);
    }

    cv::Mat Written() const { return ReadPicture("cut.png"); }

    cv::Mat picture;
};

TEST_F(RectCommand, WithoutAnAngleCopiesThePixels) {
    const Outcome outcome = Run({"rect", "picture.png", "--center", "30,20", "--size", "20x10", "--out", "cut.png"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out.rfind("cut.png\n20 x 10 pixels", 0), 0U) << outcome.out;
    const cv::Mat cut = Written();
    ASSERT_EQ(cut.type(), CV_8UC3);
    ASSERT_EQ(cut.size(), cv::Size(20, 10));
    EXPECT_EQ(cv::norm(cut, picture(cv::Rect(20, 15, 20, 10)), cv::NORM_INF), 0);
}

TEST_F(RectCommand, TurnsClockwise) {
    const std::vector<json> lines =
        RunJson({"rect", "picture.png", "--center", "31,20", "--size", "25x15", "--angle", "33.5", "--out", "cut.png"});
    const cv::Mat expected = CutOf(picture, {31, 20}, {25, 15}, 33.5, cv::INTER_LINEAR);
    EXPECT_LE(cv::norm(Written(), expected, cv::NORM_INF), 1);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].at("width"), 25);
    EXPECT_EQ(lines[0].at("height"), 15);
}

TEST_F(RectCommand, NearestBringsNoNewColours) {
    cv::Mat checkers(40, 60, CV_8UC3, cv::Scalar::all(0));
    checkers.colRange(0, 30).setTo(cv::Scalar::all(200));
    cv::imwrite((folder / "two.png").string(), checkers);
    const auto colours = [&](const Arguments& more) {
        RunJson(
            Arguments{"rect", "two.png", "--center", "30,20", "--size", "20x20", "--angle", "20", "--out", "cut.png"} +
            more);
        const cv::Mat cut = Written();
        std::set<int> values;
        for (int row = 0; row < cut.rows; ++row)
            for (int column = 0; column < cut.cols; ++column) values.insert(cut.at<cv::Vec3b>(row, column)[0]);
        return values;
    };
    EXPECT_EQ(colours({"--nearest"}), (std::set<int>{0, 200}));
    EXPECT_GT(colours({}).size(), 2U);
}

TEST_F(RectCommand, IsBlackBeyondThePicture) {
    EXPECT_EQ(Run({"rect", "picture.png", "--center=-5,20", "--size", "20x10", "--out", "cut.png"}).exitCode, 0);
    const cv::Mat cut = Written();
    EXPECT_EQ(cv::norm(cut.colRange(0, 15), cv::NORM_INF), 0);
    EXPECT_EQ(cv::norm(cut.colRange(15, 20), picture(cv::Rect(0, 15, 5, 10)), cv::NORM_INF), 0);
}

TEST_F(RectCommand, RefusesPicturesWithTooLongASide) {
    cv::imwrite((folder / "long.png").string(), cv::Mat(1, 32767, CV_8UC3, cv::Scalar::all(9)));
    ExpectRefusal({"rect", "long.png", "--center", "3,2", "--size", "2x1", "--out", "cut.png"}, 1,
                  "long.png: is 32767 x 1 pixels; sides of at most 32766");
}

}  // namespace
