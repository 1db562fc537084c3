#include <cmath>

#include "command/CommandFixture.h"

using namespace quarry::test;

namespace {

/// The picture turned on a canvas with room for its corners, squeezed into its own size.
cv::Mat Turned(const cv::Mat& picture, double degrees, double scale) {
    const double angle = degrees * CV_PI / 180;
    const double c = std::abs(std::cos(angle));
    const double s = std::abs(std::sin(angle));
    const double width = picture.cols * c + picture.rows * s;
    const double height = picture.cols * s + picture.rows * c;
    cv::Mat matrix = cv::getRotationMatrix2D(
        {static_cast<float>((picture.cols - 1) * 0.5), static_cast<float>((picture.rows - 1) * 0.5)}, degrees, scale);
    matrix.at<double>(0, 2) += (width - picture.cols) / 2;
    matrix.at<double>(1, 2) += (height - picture.rows) / 2;
    cv::Mat canvas;
    cv::warpAffine(picture, canvas, matrix, {cvRound(width), cvRound(height)});
    cv::resize(canvas, canvas, picture.size());
    return canvas;
}

class RotateCommand : public QuarryCommand {
protected:
    void SetUp() override {
        QuarryCommand::SetUp();
        picture = WritePicture("picture.png", 1, 1.5);
    }

    cv::Mat Written() const { return ReadPicture("turned.png"); }

    cv::Mat picture;
};

TEST_F(RotateCommand, ByNothingChangesNothing) {
    const Outcome outcome = Run({"rotate", "picture.png", "--angle", "0", "--out", "turned.png"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out.rfind("turned.png\n61 x 43 pixels", 0), 0U) << outcome.out;
    ASSERT_EQ(Written().type(), CV_8UC3);
    EXPECT_EQ(cv::norm(Written(), picture, cv::NORM_INF), 0);
}

TEST_F(RotateCommand, TurnsCounterClockwiseIntoTheSameSize) {
    const std::vector<std::pair<std::string, std::string>> turns = {
        {"30", "1"}, {"90", "1"}, {"-45.5", "0.5"}, {"0", "0.5"}, {"10", "2"}};
    for (const auto& [angle, scale] : turns) {
        const json line =
            RunJson({"rotate", "picture.png", "--angle=" + angle, "--scale", scale, "--out", "turned.png"}).at(0);
        const cv::Mat expected = Turned(picture, std::stod(angle), std::stod(scale));
        ASSERT_EQ(Written().size(), expected.size());
        EXPECT_LT(cv::norm(Written(), expected, cv::NORM_L1) / static_cast<double>(expected.total() * 3), 0.5) << angle;
        EXPECT_EQ(line.at("width"), 61);
        EXPECT_EQ(line.at("height"), 43);
    }
}

TEST_F(RotateCommand, ByAQuarterBringsTheRightSideToTheTop) {
    cv::Mat halves(40, 40, CV_8UC3, cv::Scalar::all(0));
    halves.colRange(20, 40).setTo(cv::Scalar(0, 0, 255));
    cv::imwrite((folder / "halves.png").string(), halves);
    EXPECT_EQ(Run({"rotate", "halves.png", "--angle", "90", "--out", "turned.png"}).exitCode, 0);
    EXPECT_EQ(Written().at<cv::Vec3b>(5, 20), cv::Vec3b(0, 0, 255));
    EXPECT_EQ(Written().at<cv::Vec3b>(34, 20), cv::Vec3b(0, 0, 0));
}

}  // namespace
