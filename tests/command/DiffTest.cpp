#include "command/CommandFixture.h"

using namespace quarry::test;

namespace {

/// Two pictures that differ in a patch.
void WritePair(const fs::path& folder) {
    const cv::Mat first = RandomFrame(50, 40, 1);
    cv::Mat second = first.clone();
    RandomFrame(20, 10, 2).copyTo(second(cv::Rect(5, 6, 20, 10)));
    cv::imwrite((folder / "first.png").string(), first);
    cv::imwrite((folder / "second.png").string(), second);
}

cv::Mat DifferenceIn(const fs::path& folder) {
    cv::Mat difference;
    cv::absdiff(cv::imread((folder / "first.png").string()), cv::imread((folder / "second.png").string()), difference);
    return difference;
}

TEST_F(QuarryCommand, DiffIsTheAbsoluteDifference) {
    WritePair(folder);
    const cv::Mat expected = DifferenceIn(folder);
    const std::vector<json> lines = RunJson({"diff", "first.png", "second.png", "--out", "difference.png"});
    ASSERT_EQ(lines.size(), 1U);
    const cv::Mat written = ReadPicture("difference.png");
    ASSERT_EQ(written.type(), CV_8UC3);
    ASSERT_EQ(written.size(), expected.size());
    EXPECT_EQ(cv::norm(written, expected, cv::NORM_INF), 0);

    double sum = 0;
    int changed = 0;
    int maximum = 0;
    for (int row = 0; row < expected.rows; ++row) {
        for (int column = 0; column < expected.cols; ++column) {
            const auto& pixel = expected.at<cv::Vec3b>(row, column);
            sum += pixel[0] + pixel[1] + pixel[2];
            changed += pixel == cv::Vec3b() ? 0 : 1;
            maximum = std::max({maximum, int{pixel[0]}, int{pixel[1]}, int{pixel[2]}});
        }
    }
    EXPECT_EQ(lines[0].at("second"), "second.png");
    EXPECT_EQ(lines[0].at("width"), 50);
    EXPECT_EQ(lines[0].at("height"), 40);
    EXPECT_NEAR(lines[0].at("mean").get<double>(), sum / (50 * 40 * 3), 1e-9);
    EXPECT_NEAR(lines[0].at("changed").get<double>(), changed / (50.0 * 40.0), 1e-12);
    EXPECT_EQ(lines[0].at("maximum"), maximum);
}

TEST_F(QuarryCommand, DiffOfAPictureWithItselfIsNothing) {
    WritePair(folder);
    const json line = RunJson({"diff", "first.png", "first.png"}).at(0);
    EXPECT_EQ(line.at("mean"), 0);
    EXPECT_EQ(line.at("changed"), 0);
    EXPECT_EQ(line.at("maximum"), 0);
}

TEST_F(QuarryCommand, DiffWithoutJsonTellsTheSameInWords) {
    WritePair(folder);
    const Outcome outcome = Run({"diff", "first.png", "second.png"});
    EXPECT_EQ(outcome.exitCode, 0);
    const std::vector<std::string> lines = Lines(outcome.out);
    ASSERT_EQ(lines.size(), 3U) << outcome.out;
    double mean = 0;
    std::istringstream(lines[0].substr(4)) >> mean;
    EXPECT_EQ(lines[0].rfind("mean", 0), 0U);
    EXPECT_NEAR(mean, cv::norm(DifferenceIn(folder), cv::NORM_L1) / (50 * 40 * 3), 6e-5);
    EXPECT_EQ(lines[1].rfind("changed", 0), 0U);
    EXPECT_EQ(lines[2].rfind("maximum", 0), 0U);
}

TEST_F(QuarryCommand, DiffRefusesPicturesOfDifferentSizes) {
    WritePair(folder);
    cv::imwrite((folder / "wide.png").string(), RandomFrame(51, 40, 3));
    ExpectRefusal({"diff", "first.png", "wide.png", "--out", "d.png"}, 1, "wide.png: is 51 x 40 pixels");
}

}  // namespace
