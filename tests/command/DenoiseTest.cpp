#include <cmath>
#include <opencv2/photo.hpp>

#include "command/CommandFixture.h"

using namespace quarry::test;

namespace {

/// Shapes under noise.
cv::Mat NoisyPicture(cv::Size size) {
    cv::Mat picture(size, CV_8UC3, cv::Scalar(90, 120, 140));
    cv::circle(picture, {size.width / 2, size.height / 2}, size.height / 3, {200, 90, 60}, cv::FILLED);
    cv::Mat noise(size, CV_16SC3);
    cv::RNG random(1);
    random.fill(noise, cv::RNG::NORMAL, 0, 12);
    cv::add(picture, noise, picture, cv::noArray(), CV_8U);
    return picture;
}

class DenoiseCommand : public QuarryCommand {
protected:
    void SetUp() override {
        QuarryCommand::SetUp();
        noisy = NoisyPicture({80, 60});
        cv::imwrite((folder / "noisy.png").string(), noisy);
    }

    cv::Mat noisy;
};

TEST_F(DenoiseCommand, WritesTheDenoisedPictureExactly) {
    const std::vector<json> lines = RunJson({"denoise", "noisy.png", "--out", "clean.png"});
    ASSERT_EQ(lines.size(), 1U);
    cv::Mat expected;
    cv::fastNlMeansDenoisingColored(noisy, expected, 10, 10);
    const cv::Mat clean = ReadPicture("clean.png");
    ASSERT_EQ(clean.type(), CV_8UC3);
    ASSERT_EQ(clean.size(), noisy.size());
    EXPECT_EQ(cv::norm(clean, expected, cv::NORM_INF), 0);
    EXPECT_EQ(lines[0].at("width"), 80);
    EXPECT_EQ(lines[0].at("height"), 60);
    EXPECT_NEAR(lines[0].at("mean").get<double>(), cv::norm(noisy, expected, cv::NORM_L1) / (80 * 60 * 3), 1e-9);
    EXPECT_NEAR(lines[0].at("psnr").get<double>(), cv::PSNR(noisy, expected), 1e-6);
}

TEST_F(DenoiseCommand, ABlackPictureStaysAsItIs) {
    cv::imwrite((folder / "black.png").string(), cv::Mat(30, 40, CV_8UC3, cv::Scalar::all(0)));
    const json line = RunJson({"denoise", "black.png", "--out", "clean.png"}).at(0);
    EXPECT_EQ(line.at("mean"), 0);
    EXPECT_TRUE(line.at("psnr").is_null()) << "infinite";
}

TEST_F(DenoiseCommand, ShowsThatItWorksOnATerminal) {
    const Outcome shown = RunOnTerminal({"denoise", "noisy.png", "--out", "clean.png"}, false);
    EXPECT_NE(shown.err.find("denoising 80 x 60"), std::string::npos) << shown.err;
}

}  // namespace
