#include <cmath>

#include "command/CommandFixture.h"

using namespace quarry::test;

namespace {

constexpr int kFrames = 40;
const cv::Size kSize(240, 180);
const cv::Size kTarget(64, 64);

/// Where the target's upper left corner is.
cv::Point PlaceOf(int frame) {
    return {20 + 2 * frame, 40 + static_cast<int>(std::lround(10 * std::sin(frame * 0.2)))};
}

/// A textured square that moves over a duller texture.
cv::Mat Drawn(int frame, bool hidden) {
    cv::Mat picture = RandomFrame(kSize.width, kSize.height, 1);
    cv::blur(picture, picture, {7, 7});
    cv::Mat target = RandomFrame(kTarget.width, kTarget.height, 2);
    cv::GaussianBlur(target, target, {}, 4);
    cv::normalize(target, target, 0, 255, cv::NORM_MINMAX);
    if (!hidden) target.copyTo(picture(cv::Rect(PlaceOf(frame), kTarget)));
    return picture;
}

class TrackCommand : public QuarryCommand {
protected:
    /// @param hiddenFrom  the frame from which on only noise is shown
    void WriteTarget(int hiddenFrom = kFrames) const {
        WriteVideo(
            "clip.avi", kFrames, [&](int i) { return Drawn(i, i >= hiddenFrom); }, kSize, 10);
    }

    std::vector<json> Track(const Arguments& more = {}) const {
        return RunJson(Arguments{"track", "clip.avi", "--rect", kRect} + more);
    }

    static constexpr const char* kRect = "20,40,64,64";
};

TEST_F(TrackCommand, TheRectangleFollowsTheTarget) {
    WriteTarget();
    for (const char* const mode : {"0", "1"}) {
        const std::vector<json> lines = Track({"--mode", mode});
        ASSERT_EQ(lines.size(), static_cast<std::size_t>(kFrames));
        for (int i = 0; i < kFrames; ++i) {
            const json& line = lines[static_cast<std::size_t>(i)];
            EXPECT_TRUE(line.at("found").get<bool>()) << line;
            const int width = line.at("width").get<int>();
            const int height = line.at("height").get<int>();
            EXPECT_GE(width, kTarget.width);
            EXPECT_LE(width, kTarget.width + 4);
            EXPECT_NEAR(line.at("x").get<int>() + width / 2.0, PlaceOf(i).x + kTarget.width / 2.0, 3) << line;
            EXPECT_NEAR(line.at("y").get<int>() + height / 2.0, PlaceOf(i).y + kTarget.height / 2.0, 3) << line;
        }
    }
}

TEST_F(TrackCommand, TheRectangleStaysWhereTheTargetWasLost) {
    constexpr int kHidden = 25;
    WriteTarget(kHidden);
    const std::vector<json> lines = Track();
    ASSERT_EQ(lines.size(), static_cast<std::size_t>(kFrames));
    EXPECT_TRUE(lines[kHidden - 1].at("found").get<bool>());
    for (std::size_t i = kHidden; i < lines.size(); ++i) {
        EXPECT_FALSE(lines[i].at("found").get<bool>()) << lines[i];
        EXPECT_EQ(lines[i].at("x"), lines[kHidden - 1].at("x")) << lines[i];
        EXPECT_EQ(lines[i].at("y"), lines[kHidden - 1].at("y")) << lines[i];
    }
}

TEST_F(TrackCommand, DrawsTheRectangleInGreenOrRed) {
    constexpr int kHidden = 25;
    WriteTarget(kHidden);
    const std::vector<json> lines = Track({"--out", "tracked.avi"});
    const std::vector<cv::Mat> frames = FramesOf(folder / "tracked.avi");
    ASSERT_EQ(frames.size(), static_cast<std::size_t>(kFrames));
    const auto onTheLeftSide = [&](std::size_t i) {
        const cv::Point middle(lines[i].at("x"), lines[i].at("y").get<int>() + lines[i].at("height").get<int>() / 2);
        return frames[i].at<cv::Vec3b>(middle);
    };
    const cv::Vec3b found = onTheLeftSide(kHidden - 1);
    EXPECT_GT(found[1], found[2] + 60) << "green";
    const cv::Vec3b lost = onTheLeftSide(kFrames - 1);
    EXPECT_GT(lost[2], lost[1] + 60) << "red";
}

TEST_F(TrackCommand, TableTellsWhereTheTargetWasFound) {
    WriteTarget();
    const std::vector<std::string> lines = Lines(Run({"track", "clip.avi", "--rect", kRect}).out);
    EXPECT_NE(lines.at(0).find("found"), std::string::npos);
    EXPECT_NE(lines.at(1).find("yes"), std::string::npos);
    EXPECT_EQ(lines.back().rfind("40 frames, target found in 40", 0), 0U) << lines.back();
}

}  // namespace
