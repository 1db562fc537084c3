#include <algorithm>
#include <chrono>
#include <csignal>
#include <thread>

#include "host/CommandFixture.h"

using namespace quarry::test;

namespace {

TEST_F(QuarryCommand, BackgroundGivesOneJsonLinePerFrame) {
    WriteVideo("clip.avi", 40);
    const Outcome outcome = Run({"background", "clip.avi", "--json"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
    const std::vector<json> lines = JsonLines(outcome.out);
    ASSERT_EQ(lines.size(), 40U);
    uint64_t last = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        EXPECT_EQ(lines[i].at("frame"), i);
        EXPECT_EQ(lines[i].at("timestamp").get<uint64_t>(), last + 1'000'000)
            << "10 frames/s are 1,000,000 ticks apart";
        last = lines[i].at("timestamp").get<uint64_t>();
        EXPECT_GE(lines[i].at("foreground").get<double>(), 0);
        EXPECT_LE(lines[i].at("foreground").get<double>(), 1);
        EXPECT_GT(lines[i].at("milliseconds").get<double>(), 0);
    }
    EXPECT_GT(lines.back().at("foreground").get<double>(), 0.01) << "the square moves";
}

/// Learning takes --adaptation / --speedup seconds, counted whole from the second frame on.
TEST_F(QuarryCommand, BackgroundOptionsReachTheModel) {
    WriteVideo("clip.avi", 40);
    const auto firstReady = [&](const Arguments& options) {
        Arguments arguments = {"background", "clip.avi", "--json"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const std::vector<json> lines = JsonLines(Run(arguments).out);
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
        const Outcome outcome =
            Run({"background", "clip.avi", "--json", "--history", "50", "--sensitivity", sensitivity});
        return JsonLines(outcome.out).back().at("foreground").get<double>();
    };
    EXPECT_GT(foreground("1"), foreground("0"));
}

TEST_F(QuarryCommand, BackgroundTableHasALinePerFrameAndASummary) {
    WriteVideo("clip.avi", 5);
    const Outcome outcome = Run({"background", "clip.avi"});
    EXPECT_EQ(outcome.exitCode, 0);
    const std::vector<std::string> lines = Lines(outcome.out);
    ASSERT_EQ(lines.size(), 7U);
    EXPECT_NE(lines[1].find("Accumulating"), std::string::npos);
    EXPECT_EQ(lines[6].rfind("5 frames", 0), 0U);
}

TEST_F(QuarryCommand, BackgroundWritesAnAnnotatedVideoAndNothingElse) {
    WriteVideo("clip.avi", 25);
    const Outcome outcome = Run({"background", "clip.avi", "--out", "marked.avi"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(FilesIn(folder), (std::set<std::string>{"clip.avi", "marked.avi"}));
    const std::vector<cv::Mat> marked = FramesOf(folder / "marked.avi");
    ASSERT_EQ(marked.size(), 25U);
    EXPECT_EQ(marked[0].cols, 96);
    EXPECT_GT(marked[0].rows, 64) << "the caption stands below the frame";
    EXPECT_NEAR(cv::VideoCapture((folder / "marked.avi").string()).get(cv::CAP_PROP_FPS), 10, 0.01);
    // The white square is tinted: what was nearly grey has a colour now.
    const cv::Mat last = FramesOf(folder / "clip.avi").back();
    cv::Mat difference;
    cv::absdiff(marked.back()(cv::Rect(0, 0, 96, 64)), last, difference);
    EXPECT_GT(cv::norm(difference, cv::NORM_INF), 60);
}

TEST_F(QuarryCommand, BackgroundPutsItsVideoInPlaceOfAnOlderOne) {
    WriteVideo("clip.avi", 8);
    WriteText("marked.avi", "older");
    EXPECT_EQ(Run({"background", "clip.avi", "--out", "marked.avi", "--json"}).exitCode, 0);
    EXPECT_EQ(FramesOf(folder / "marked.avi").size(), 8U);
}

TEST_F(QuarryCommand, AVideoThatFailsLeavesNothingBehind) {
    WriteText("text.avi", "not a video");
    WriteText("empty.avi", "");
    WriteVideo("none.avi", 0);
    fs::create_directory(folder / "folder.avi");
    const std::set<std::string> before = FilesIn(folder);
    for (const char* const name : {"missing.avi", "text.avi", "empty.avi", "none.avi", "folder.avi"}) {
        ExpectOneLineError({"background", name}, 1, name);
        ExpectOneLineError({"background", name, "--json", "--out", "marked.avi"}, 1, name);
        EXPECT_EQ(FilesIn(folder), before) << name;
    }
}

TEST_F(QuarryCommand, AnOutputThatCannotBeWrittenIsNamed) {
    WriteVideo("clip.avi", 3);
    fs::create_directory(folder / "folder.avi");
    WriteText("file", "");
    const std::set<std::string> before = FilesIn(folder);
    ExpectOneLineError({"background", "clip.avi", "--out", "nowhere/marked.avi"}, 1, "nowhere/marked.avi");
    ExpectOneLineError({"background", "clip.avi", "--out", "file/marked.avi"}, 1, "file/marked.avi");
    ExpectOneLineError({"background", "clip.avi", "--out", "folder.avi"}, 1, "folder.avi");
    EXPECT_EQ(FilesIn(folder), before);
}

TEST_F(QuarryCommand, AnInterruptedRunLeavesNothingBehind) {
    WriteVideo("clip.avi", 400, {640, 480});
    const pid_t child = Start({"background", "clip.avi", "--out", "marked.avi"}, "/dev/null", "/dev/null");
    const auto unfinished = [&] { return FilesIn(folder).size() == 2; };
    for (int wait = 0; wait < 500 && !unfinished(); ++wait) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_TRUE(unfinished()) << "the video grows under a temporary name";
    kill(child, SIGTERM);
    EXPECT_EQ(ExitCodeOf(child), -1);
    EXPECT_EQ(FilesIn(folder), (std::set<std::string>{"clip.avi"}));
}

}  // namespace
