#include <algorithm>
#include <csignal>

#include "command/CommandFixture.h"

using namespace quarry::test;

namespace {

/// Learning takes --adaptation / --speedup seconds, counted whole from the second frame on.
TEST_F(QuarryCommand, BackgroundOptionsReachTheModel) {
    WriteVideo("clip.avi", 40);
    const auto firstReady = [&](const Arguments& options) {
        const std::vector<json> lines = RunJson(Arguments{"background", "clip.avi"} + options);
        const auto ready =
            std::find_if(lines.begin(), lines.end(), [](const json& line) { return line.at("state") == "Ready"; });
        for (auto line = lines.begin(); line != ready; ++line) EXPECT_EQ((*line).at("state"), "Accumulating");
        return ready - lines.begin();
    };
    EXPECT_EQ(firstReady({}), 30) << "10 s / 4 are up after 3 whole seconds";
    EXPECT_EQ(firstReady({"--adaptation", "4"}), 10);
    EXPECT_EQ(firstReady({"--adaptation", "4", "--speedup", "2"}), 20);
    EXPECT_EQ(firstReady({"--adaptation", "2", "--speedup", "0"}), 20);
    EXPECT_EQ(firstReady({"--adaptation", "100"}), 40) << "never";

    const auto foreground = [&](const char* sensitivity) {
        const std::vector<json> lines =
            RunJson({"background", "clip.avi", "--history", "50", "--sensitivity", sensitivity});
        for (const json& line : lines) {
            EXPECT_GE(line.at("foreground").get<double>(), 0);
            EXPECT_LE(line.at("foreground").get<double>(), 1);
        }
        return lines.back().at("foreground").get<double>();
    };
    EXPECT_GT(foreground("1"), 0.01) << "the square moves";
    EXPECT_GT(foreground("1"), foreground("0"));
}

TEST_F(QuarryCommand, BackgroundMarksTheForegroundAndNamesTheState) {
    WriteVideo("clip.avi", 25);
    const Outcome outcome = Run({"background", "clip.avi", "--out", "marked.avi"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_NE(Lines(outcome.out).at(1).find("Accumulating"), std::string::npos);
    EXPECT_NEAR(cv::VideoCapture((folder / "marked.avi").string()).get(cv::CAP_PROP_FPS), 10, 0.01);
    // The white square is tinted: what was nearly grey has a colour now.
    const cv::Mat last = FramesOf(folder / "clip.avi").back();
    cv::Mat difference;
    cv::absdiff(FramesOf(folder / "marked.avi").back()(cv::Rect(0, 0, 96, 64)), last, difference);
    EXPECT_GT(cv::norm(difference, cv::NORM_INF), 60);
}

TEST_F(QuarryCommand, AnInterruptedRunLeavesNothingBehind) {
    WriteVideo("clip.avi", 400, {640, 480});
    const pid_t child = Start({"background", "clip.avi", "--out", "marked.avi"}, "/dev/null", "/dev/null");
    const auto unfinished = [&] { return FilesIn(folder).size() == 2; };
    WaitUntil(unfinished);
    EXPECT_TRUE(unfinished()) << "the video grows under a temporary name";
    kill(child, SIGTERM);
    EXPECT_EQ(ExitCodeOf(child), -1);
    EXPECT_EQ(FilesIn(folder), (std::set<std::string>{"clip.avi"}));
}

}  // namespace
