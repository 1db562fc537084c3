#include <cmath>
#include <opencv2/video/tracking.hpp>

#include "command/CommandFixture.h"

using namespace quarry::test;

namespace {

constexpr int kFrames = 8;

cv::Mat Grey(const cv::Mat& frame) {
    cv::Mat grey;
    cv::cvtColor(frame, grey, cv::COLOR_BGR2GRAY);
    return grey;
}

/// What the command finds when nothing is set.
std::vector<cv::Mat> UsualFlow(const std::vector<cv::Mat>& frames) {
    std::vector<cv::Mat> flow = {cv::Mat(frames.at(0).size(), CV_32FC2, cv::Scalar::all(0))};
    for (std::size_t i = 1; i < frames.size(); ++i) {
        cv::Mat motion;
        cv::calcOpticalFlowFarneback(Grey(frames[i - 1]), Grey(frames[i]), motion, 0.4F, 5, 18, 3, 3, 1.1, 0);
        flow.push_back(motion);
    }
    return flow;
}

cv::Mat SpeedOf(const cv::Mat& motion) {
    std::vector<cv::Mat> parts;
    cv::split(motion, parts);
    cv::Mat speed;
    cv::magnitude(parts[0], parts[1], speed);
    return speed;
}

/// What stands in for the Python package that draws plots: it keeps what it was given.
constexpr const char* kKeepingPlot =
    "import sys\nif __name__ == '__main__': open(sys.argv[1], 'w').write(sys.stdin.read())\n";

class FlowCommand : public QuarryCommand {
protected:
    void SetUp() override {
        QuarryCommand::SetUp();
        WriteVideo("clip.avi", kFrames);
        packages = folder.string() + ".python";
        PlotWith(kKeepingPlot);
    }
    void TearDown() override {
        unsetenv("PYTHONPATH");
        fs::remove_all(packages);
        QuarryCommand::TearDown();
    }

    void PlotWith(const std::string& module) const {
        fs::create_directories(packages / "quarry");
        std::ofstream(packages / "quarry/plot.py") << module;
        setenv("PYTHONPATH", packages.c_str(), 1);
    }

    fs::path packages;  ///< of Python

    std::vector<json> Flow(const Arguments& more = {}) const { return RunJson(Arguments{"flow", "clip.avi"} + more); }
};

TEST_F(FlowCommand, IsTheDenseFlowOfTheGreyFrames) {
    const std::vector<cv::Mat> expected = UsualFlow(FramesOf(folder / "clip.avi"));
    const std::vector<json> lines = Flow();
    ASSERT_EQ(lines.size(), static_cast<std::size_t>(kFrames));
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const cv::Mat speed = SpeedOf(expected[i]);
        EXPECT_NEAR(lines[i].at("mean").get<double>(), cv::mean(speed)[0], 1e-5) << i;
        EXPECT_NEAR(lines[i].at("maximum").get<double>(), cv::norm(speed, cv::NORM_INF), 1e-4) << i;
        EXPECT_FALSE(lines[i].contains("line"));
    }
    EXPECT_GT(lines.back().at("maximum").get<double>(), 1) << "the square moves";
}

/// On a level line the motion across it is the motion downwards, up to what rounding leaves of it.
TEST_F(FlowCommand, MotionAcrossALevelLineIsTheVerticalMotion) {
    const std::vector<cv::Mat> expected = UsualFlow(FramesOf(folder / "clip.avi"));
    const std::vector<json> lines = Flow({"--line", "0.25,0.5,0.75,0.5", "--values", "49"});
    ASSERT_EQ(lines.size(), static_cast<std::size_t>(kFrames));
    int compared = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const json& values = lines[i].at("line");
        ASSERT_EQ(values.size(), 49U) << "from column 24 to 72";
        for (int k = 0; k < 49; ++k) {
            const json& value = values[static_cast<std::size_t>(k)];
            const auto& motion = expected[i].at<cv::Vec2f>(32, 24 + k);
            if (value.is_null() || std::abs(motion[1]) < 0.2F) continue;
            EXPECT_NEAR(value.get<float>(), motion[1], 0.05) << "frame " << i << " value " << k;
            ++compared;
        }
    }
    EXPECT_GT(compared, 10);
}

TEST_F(FlowCommand, GivesAsManyValuesAsAreAskedFor) {
    for (const char* const count : {"1", "7", "200"}) {
        for (const json& line : Flow({"--line", "0.1,0.9,0.9,0.1", "--values", count})) {
            EXPECT_EQ(std::to_string(line.at("line").size()), count);
        }
    }
    EXPECT_EQ(Flow({"--line", "0,0,1,1"}).at(0).at("line").size(), 32U);
}

TEST_F(FlowCommand, DetailAndQualityReachTheCalculator) {
    const std::vector<cv::Mat> frames = FramesOf(folder / "clip.avi");
    cv::Mat motion;
    // Detail 0.6: 27 - 20 x 0.6 = 15 pixels; quality 0.8: eight levels and iterations, Gaussian window.
    cv::calcOpticalFlowFarneback(Grey(frames[0]), Grey(frames[1]), motion, 0.4F, 8, 15, 8, 3, 1.1,
                                 cv::OPTFLOW_FARNEBACK_GAUSSIAN);
    const std::vector<json> lines = Flow({"--detail", "0.6", "--quality", "0.8"});
    EXPECT_NEAR(lines.at(1).at("mean").get<double>(), cv::mean(SpeedOf(motion))[0], 1e-5);
}

TEST_F(FlowCommand, GivesWhatIsToBeDrawnToThePythonPackage) {
    WriteText("quarry.py", "raise ImportError('what lies in the folder is not the package')");
    const std::vector<json> lines = Flow({"--line", "0.2,0.2,0.8,0.8", "--plot", "plot.svg"});
    EXPECT_EQ(FilesIn(folder), (std::set<std::string>{"clip.avi", "plot.svg", "quarry.py"}));
    const json drawn = json::parse(ContentsOf(folder / "plot.svg"));
    EXPECT_EQ(drawn.at("unit"), "px");
    ASSERT_EQ(drawn.at("x").size(), lines.size());
    ASSERT_EQ(drawn.at("columns").size(), lines.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        EXPECT_NEAR(drawn.at("x")[i].get<double>(), static_cast<double>(i) / 10, 1e-9);
        EXPECT_EQ(drawn.at("columns")[i], lines[i].at("line")) << i;
    }
}

TEST_F(FlowCommand, DrawsThePlotWithThePythonPackage) {
#ifndef QUARRY_PYTHON_PACKAGES
    GTEST_SKIP() << "this build has no Python package";
#else
    setenv("PYTHONPATH", QUARRY_PYTHON_PACKAGES, 1);
    if (std::system("/usr/bin/python3 -c 'import quarry.plot' 2>/dev/null") != 0) GTEST_SKIP() << "no Matplotlib";
    Flow({"--line", "0.2,0.2,0.8,0.8", "--plot", "plot.svg"});
    const std::string plot = ContentsOf(folder / "plot.svg");
    EXPECT_EQ(plot.rfind("<svg", 0), 0U);
    for (const char* const part : {"time, s", "place on the line, %", "mean, px", "</svg>"}) {
        EXPECT_NE(plot.find(part), std::string::npos) << part;
    }
#endif
}

TEST_F(FlowCommand, SaysWhyItCannotPlotAndLeavesNothingBehind) {
    const std::set<std::string> before = FilesIn(folder);
    const Arguments arguments = {"flow", "clip.avi", "--line", "0,0,1,1", "--plot", "p.svg"};
    PlotWith("raise ImportError('no Matplotlib')\n");
    ExpectOneLineError(arguments, 1,
                       "--plot needs the packages python3-quarry and python3-matplotlib: ImportError: no Matplotlib");
    PlotWith("import sys\nif __name__ == '__main__': sys.exit('half a figure')\n");
    ExpectOneLineError(arguments, 1, "p.svg: cannot be drawn: half a figure");
    EXPECT_EQ(FilesIn(folder), before);
}

TEST_F(FlowCommand, WritesAVideoAndNothingElse) {
    Flow({"--out", "flow.avi", "--line", "0.2,0.2,0.8,0.8"});
    EXPECT_EQ(FilesIn(folder), (std::set<std::string>{"clip.avi", "flow.avi"}));
    const std::vector<cv::Mat> frames = FramesOf(folder / "flow.avi");
    ASSERT_EQ(frames.size(), static_cast<std::size_t>(kFrames));
    // The square moves to the right: around its edges is red, the colour of that direction.
    cv::Mat hsv;
    cv::cvtColor(frames.back()(cv::Rect(0, 0, 60, 64)), hsv, cv::COLOR_BGR2HSV);
    cv::Mat red;
    cv::Mat cyan;
    cv::inRange(hsv, cv::Scalar(0, 120, 80), cv::Scalar(12, 255, 255), red);
    cv::inRange(hsv, cv::Scalar(80, 120, 80), cv::Scalar(100, 255, 255), cyan);
    EXPECT_GT(cv::countNonZero(red), 100);
    EXPECT_LT(cv::countNonZero(cyan), cv::countNonZero(red) / 4);
}

TEST_F(FlowCommand, TableTellsTheMotionAcrossALine) {
    const std::vector<std::string> lines = Lines(Run({"flow", "clip.avi", "--line", "0,0,1,1"}).out);
    EXPECT_NE(lines.at(0).find("across px"), std::string::npos);
}

TEST_F(FlowCommand, MeasuresAndPlotsOnlyAcrossALine) {
    ExpectRefusal({"flow", "clip.avi", "--values", "8"}, 2, "--line");
    ExpectRefusal({"flow", "clip.avi", "--plot", "plot.svg"}, 2, "--line");
}

TEST_F(FlowCommand, ThatFailsLeavesNeitherVideoNorPlotBehind) {
    const Arguments line = {"--line", "0,0,1,1"};
    ExpectRefusal(Arguments{"flow", "missing.avi", "--out", "f.avi", "--plot", "p.svg"} + line, 1, "missing.avi");
    ExpectRefusal(Arguments{"flow", "clip.avi", "--plot", "nowhere/p.svg"} + line, 1, "nowhere/p.svg");
    ExpectRefusal(Arguments{"flow", "clip.avi", "--out", "nowhere/f.avi", "--plot", "p.svg"} + line, 1,
                  "nowhere/f.avi");
}

TEST_F(FlowCommand, InterruptedLeavesNothingBehind) {
    WriteVideo("long.avi", 200, {320, 240});
    const std::set<std::string> before = FilesIn(folder);
    const pid_t child =
        Start({"flow", "long.avi", "--out", "f.avi", "--line", "0,0,1,1", "--plot", "p.svg"}, "/dev/null", "/dev/null");
    const auto unfinished = [&] { return FilesIn(folder).size() == before.size() + 2; };
    WaitUntil(unfinished);
    EXPECT_TRUE(unfinished()) << "video and plot grow under temporary names";
    kill(child, SIGTERM);
    EXPECT_EQ(ExitCodeOf(child), -1);
    EXPECT_EQ(FilesIn(folder), before);
}

}  // namespace
