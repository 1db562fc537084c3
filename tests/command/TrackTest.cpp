#include <cmath>

#include "host/CommandFixture.h"

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
        cv::VideoWriter writer((folder / "clip.avi").string(), cv::VideoWriter::fourcc('M', 'J', 'P', 'G'), 10, kSize);
        ASSERT_TRUE(writer.isOpened());
        for (int i = 0; i < kFrames; ++i) writer.write(Drawn(i, i >= hiddenFrom));
    }

    std::vector<json> Track(const Arguments& more = {}) const {
        Arguments arguments = {"track", "clip.avi", "--rect", kRect, "--json"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        EXPECT_EQ(outcome.err, "");
        return JsonLines(outcome.out);
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
            EXPECT_EQ(line.at("frame"), i);
            EXPECT_EQ(line.at("timestamp"), (i + 1) * 1'000'000);
            EXPECT_TRUE(line.at("found").get<bool>()) << line;
            const int width = line.at("width").get<int>();
            const int height = line.at("height").get<int>();
            EXPECT_GE(width, kTarget.width);
            EXPECT_LE(width, kTarget.width + 4);
            EXPECT_NEAR(line.at("x").get<int>() + width / 2.0, PlaceOf(i).x + kTarget.width / 2.0, 3) << line;
            EXPECT_NEAR(line.at("y").get<int>() + height / 2.0, PlaceOf(i).y + kTarget.height / 2.0, 3) << line;
            EXPECT_GT(line.at("milliseconds").get<double>(), 0);
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

TEST_F(TrackCommand, WritesAnAnnotatedVideoAndNothingElse) {
    constexpr int kHidden = 25;
    WriteTarget(kHidden);
    const std::vector<json> lines = Track({"--out", "tracked.avi"});
    EXPECT_EQ(FilesIn(folder), (std::set<std::string>{"clip.avi", "tracked.avi"}));
    const std::vector<cv::Mat> frames = FramesOf(folder / "tracked.avi");
    ASSERT_EQ(frames.size(), static_cast<std::size_t>(kFrames));
    EXPECT_EQ(frames[0].cols, kSize.width);
    EXPECT_GT(frames[0].rows, kSize.height) << "the caption stands below the frame";
    const auto onTheLeftSide = [&](std::size_t i) {
        const cv::Point middle(lines[i].at("x"), lines[i].at("y").get<int>() + lines[i].at("height").get<int>() / 2);
        return frames[i].at<cv::Vec3b>(middle);
    };
    const cv::Vec3b found = onTheLeftSide(kHidden - 1);
    EXPECT_GT(found[1], found[2] + 60) << "green";
    const cv::Vec3b lost = onTheLeftSide(kFrames - 1);
    EXPECT_GT(lost[2], lost[1] + 60) << "red";
}

TEST_F(TrackCommand, TableHasALinePerFrameAndASummary) {
    WriteTarget();
    const Outcome outcome = Run({"track", "clip.avi", "--rect", kRect});
    const std::vector<std::string> lines = Lines(outcome.out);
    ASSERT_EQ(lines.size(), kFrames + 2U);
    EXPECT_NE(lines[0].find("found"), std::string::npos);
    EXPECT_NE(lines[1].find("yes"), std::string::npos);
    EXPECT_EQ(lines.back().rfind("40 frames, target found in 40", 0), 0U) << lines.back();
}

TEST_F(TrackCommand, ShowsItsProgressOnATerminal) {
    WriteTarget();
    const Outcome shown = RunOnTerminal({"track", "clip.avi", "--rect", kRect}, false);
    EXPECT_EQ(shown.exitCode, 0);
    EXPECT_NE(shown.err.find("/40"), std::string::npos) << shown.err;
    EXPECT_EQ(shown.err.substr(shown.err.size() - 4), "\r\x1B[K") << "the bar is gone at the end";
}

TEST_F(TrackCommand, RefusesWrongUsage) {
    WriteTarget();
    const std::string before = ContentsOf(folder / "clip.avi");
    ExpectOneLineError({"track", "--rect", kRect}, 2, "VIDEO");
    ExpectOneLineError({"track", "clip.avi"}, 2, "--rect");
    for (const char* const rect : {"", "1,2,3", "1,2,3,4,5", "1,2,3,x", "1,2,3.5,9", "1,2,3,", "1 2 30 40", "1,2,1,9",
                                   "1,2,9,1", "1,2,9,-9", "40000,2,9,9", "1,2,32768,9"}) {
        ExpectOneLineError({"track", "clip.avi", "--rect", rect}, 2, "--rect");
    }
    // What only the frame's size can tell.
    for (const char* const rect : {"240,0,20,20", "0,180,20,20", "0,0,241,20", "0,0,20,181"}) {
        ExpectOneLineError({"track", "clip.avi", "--out", "t.avi", "--rect", rect}, 2, "--rect");
    }
    ExpectOneLineError({"track", "clip.avi", "--out", "t.avi", "--rect=-20,0,20,20"}, 2, "--rect");
    for (const char* const mode : {"2", "-1", "fast", "0.5"}) {
        ExpectOneLineError({"track", "clip.avi", "--rect", kRect, "--mode", mode}, 2, "--mode");
    }
    ExpectOneLineError({"track", "clip.avi", "--rect", kRect, "--out", "t.mp4"}, 2, "--out");
    ExpectOneLineError({"track", "clip.avi", "--rect", kRect, "--out", "clip.avi"}, 2, "--out");
    EXPECT_EQ(FilesIn(folder), (std::set<std::string>{"clip.avi"}));
    EXPECT_EQ(ContentsOf(folder / "clip.avi"), before);
}

TEST_F(TrackCommand, AVideoThatFailsLeavesNothingBehind) {
    WriteText("text.avi", "not a video");
    WriteVideo("none.avi", 0);
    const std::set<std::string> before = FilesIn(folder);
    for (const char* const name : {"missing.avi", "text.avi", "none.avi"}) {
        ExpectOneLineError({"track", name, "--rect", kRect, "--out", "t.avi"}, 1, name);
        EXPECT_EQ(FilesIn(folder), before) << name;
    }
}

}  // namespace
