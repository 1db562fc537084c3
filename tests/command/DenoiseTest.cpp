#include <cmath>
#include <opencv2/photo.hpp>

#include "host/CommandFixture.h"

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
    const Outcome outcome = Run({"denoise", "noisy.png", "--out", "clean.png", "--json"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(FilesIn(folder), (std::set<std::string>{"noisy.png", "clean.png"}));
    cv::Mat expected;
    cv::fastNlMeansDenoisingColored(noisy, expected, 10, 10);
    const cv::Mat clean = cv::imread((folder / "clean.png").string(), cv::IMREAD_UNCHANGED);
    ASSERT_EQ(clean.type(), CV_8UC3);
    ASSERT_EQ(clean.size(), noisy.size());
    EXPECT_EQ(cv::norm(clean, expected, cv::NORM_INF), 0);

    const std::vector<json> lines = JsonLines(outcome.out);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].at("file"), "noisy.png");
    EXPECT_EQ(lines[0].at("out"), "clean.png");
    EXPECT_EQ(lines[0].at("width"), 80);
    EXPECT_EQ(lines[0].at("height"), 60);
    EXPECT_NEAR(lines[0].at("mean").get<double>(), cv::norm(noisy, expected, cv::NORM_L1) / (80 * 60 * 3), 1e-9);
    EXPECT_NEAR(lines[0].at("psnr").get<double>(), cv::PSNR(noisy, expected), 1e-6);
    EXPECT_GT(lines[0].at("milliseconds").get<double>(), 0);
}

TEST_F(DenoiseCommand, WritesAJpegToo) {
    EXPECT_EQ(Run({"denoise", "noisy.png", "--out", "clean.jpg"}).exitCode, 0);
    EXPECT_EQ(ContentsOf(folder / "clean.jpg").substr(0, 2), "\xFF\xD8");
    EXPECT_EQ(cv::imread((folder / "clean.jpg").string()).size(), noisy.size());
}

TEST_F(DenoiseCommand, ABlackPictureStaysAsItIs) {
    cv::imwrite((folder / "black.png").string(), cv::Mat(30, 40, CV_8UC3, cv::Scalar::all(0)));
    const json line = JsonLines(Run({"denoise", "black.png", "--out", "clean.png", "--json"}).out).at(0);
    EXPECT_EQ(line.at("mean"), 0);
    EXPECT_TRUE(line.at("psnr").is_null()) << "infinite";
}

TEST_F(DenoiseCommand, ShowsThatItWorksOnATerminalOnly) {
    const Outcome shown = RunOnTerminal({"denoise", "noisy.png", "--out", "clean.png"}, false);
    EXPECT_EQ(shown.exitCode, 0);
    EXPECT_NE(shown.err.find("denoising 80 x 60"), std::string::npos) << shown.err;
    EXPECT_EQ(shown.err.substr(shown.err.size() - 4), "\r\x1B[K");
    EXPECT_EQ(shown.err.find('\n'), std::string::npos);
}

TEST_F(DenoiseCommand, ThatFailsNamesTheFileAndLeavesNothingBehind) {
    WriteText("text.png", "not a picture");
    WriteText("older.png", "older");
    fs::create_directory(folder / "folder.png");
    const std::set<std::string> before = FilesIn(folder);
    ExpectOneLineError({"denoise", "missing.png", "--out", "clean.png"}, 1, "missing.png: no such file");
    ExpectOneLineError({"denoise", "text.png", "--out", "older.png"}, 1, "text.png");
    ExpectOneLineError({"denoise", "noisy.png", "--out", "nowhere/clean.png"}, 1, "nowhere/clean.png");
    ExpectOneLineError({"denoise", "noisy.png", "--out", "folder.png"}, 1, "folder.png");
    EXPECT_EQ(FilesIn(folder), before);
    EXPECT_EQ(ContentsOf(folder / "older.png"), "older");
}

TEST_F(DenoiseCommand, RefusesWrongUsage) {
    ExpectOneLineError({"denoise"}, 2, "IMAGE");
    ExpectOneLineError({"denoise", "noisy.png"}, 2, "--out");
    ExpectOneLineError({"denoise", "noisy.png", "--out", "clean.tiff"}, 2, "--out");
    ExpectOneLineError({"denoise", "noisy.png", "--out", "noisy.png"}, 2, "--out");
}

}  // namespace
