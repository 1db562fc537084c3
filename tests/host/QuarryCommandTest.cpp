#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <opencv2/videoio.hpp>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "support/Footage.h"
#include "support/Scenes.h"

namespace {

using Arguments = std::vector<std::string>;
using nlohmann::json;
namespace fs = std::filesystem;

struct Outcome {
    int exitCode;  ///< -1: it did not exit by itself
    std::string out;
    std::string err;
};

std::string ContentsOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream contents;
    contents << file.rdbuf();
    return contents.str();
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

std::vector<json> JsonLines(const std::string& text) {
    std::vector<json> objects;
    for (const std::string& line : Lines(text)) objects.push_back(json::parse(line));
    return objects;
}

[[noreturn]] void Execute(const Arguments& arguments) {
    std::vector<char*> argv = {const_cast<char*>(QUARRY_COMMAND)};
    for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    execv(QUARRY_COMMAND, argv.data());
    _exit(127);
}

int ExitCodeOf(pid_t child) {
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

float VarianceOfLaplacian(const cv::Mat& picture) {
    cv::Mat grey;
    cv::Mat laplacian;
    cv::cvtColor(picture, grey, cv::COLOR_BGR2GRAY);
    cv::Laplacian(grey, laplacian, CV_64F, 1);
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::meanStdDev(laplacian, mean, deviation);
    const auto single = static_cast<float>(deviation[0]);
    return single * single;
}

/// A temporary folder, in which the command runs and the test draws what it reads.
class QuarryCommand : public testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "quarry-command-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder = pattern;
    }
    void TearDown() override { fs::remove_all(folder); }

    /// Starts the command in the folder, with stdout and stderr going to files.
    pid_t Start(const Arguments& arguments, const std::string& out, const std::string& err) const {
        const pid_t child = fork();
        if (child != 0) return child;
        if (chdir(folder.c_str()) != 0) _exit(126);
        dup2(open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
        dup2(open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
        Execute(arguments);
    }

    Outcome Run(const Arguments& arguments) const {
        // Elsewhere, so that the folder holds what the command left and nothing else.
        const std::string out = folder.string() + ".out";
        const std::string err = folder.string() + ".err";
        const int exitCode = ExitCodeOf(Start(arguments, out, err));
        Outcome outcome = {exitCode, ContentsOf(out), ContentsOf(err)};
        fs::remove(out);
        fs::remove(err);
        return outcome;
    }

    /// Runs the command with stderr, and stdout where wanted, on a terminal; gives what the terminal got.
    Outcome RunOnTerminal(const Arguments& arguments, bool stdoutToo) const {
        int terminal = -1;
        const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
        if (child == 0) {
            if (chdir(folder.c_str()) != 0) _exit(126);
            if (!stdoutToo) dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
            Execute(arguments);
        }
        std::string shown;
        char buffer[4096];
        for (ssize_t count; (count = read(terminal, buffer, sizeof buffer)) > 0;) {
            shown.append(buffer, static_cast<std::size_t>(count));
        }
        close(terminal);
        return {ExitCodeOf(child), "", shown};
    }

    void ExpectOneLineError(const Arguments& arguments, int exitCode, const std::string& named) const {
        const Outcome outcome = Run(arguments);
        const std::string call = testing::PrintToString(arguments);
        EXPECT_EQ(outcome.exitCode, exitCode) << call << outcome.err;
        const std::vector<std::string> lines = Lines(outcome.err);
        ASSERT_EQ(lines.size(), 1U) << call << outcome.err;
        EXPECT_EQ(outcome.err.back(), '\n') << call;
        EXPECT_EQ(lines[0].rfind("quarry: ", 0), 0U) << call << lines[0];
        EXPECT_NE(lines[0].find(named), std::string::npos) << call << lines[0];
    }

    cv::Mat WritePicture(const std::string& name, uint64_t seed, double sigma) const {
        cv::Mat picture = quarry::test::RandomFrame(61, 43, seed);
        if (sigma > 0) cv::GaussianBlur(picture, picture, {}, sigma);
        cv::imwrite((folder / name).string(), picture);
        return picture;
    }

    void WriteVideo(const std::string& name, int frames, cv::Size size = {96, 64}, double rate = 10) const {
        cv::VideoWriter writer((folder / name).string(), cv::VideoWriter::fourcc('M', 'J', 'P', 'G'), rate, size);
        ASSERT_TRUE(writer.isOpened());
        for (int i = 0; i < frames; ++i) writer.write(quarry::test::MovingSquare(size.width, size.height, i));
    }

    void WriteText(const std::string& name, const std::string& text) const { std::ofstream(folder / name) << text; }

    std::set<std::string> FilesIn(const fs::path& place) const {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(place)) names.insert(entry.path().filename().string());
        return names;
    }

    fs::path folder;
};

std::vector<cv::Mat> FramesOf(const fs::path& path) {
    std::vector<cv::Mat> frames;
    cv::VideoCapture video(path.string());
    for (cv::Mat frame; video.read(frame);) frames.push_back(frame.clone());
    return frames;
}

// ---- help, version, wrong usage

TEST_F(QuarryCommand, TellsItsVersion) {
    const Outcome outcome = Run({"--version"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, "quarry " QUARRY_COMMAND_VERSION "\n");
    EXPECT_EQ(outcome.err, "");
}

TEST_F(QuarryCommand, HelpNamesTheVerbsAndTheirOptions) {
    const Outcome outcome = Run({"--help"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
    for (const char* const verb : {"sharpness", "background", "demo"}) {
        EXPECT_NE(outcome.out.find(verb), std::string::npos) << verb;
        EXPECT_EQ(Run({verb, "--help"}).exitCode, 0) << verb;
    }
    const std::string background = Run({"background", "--help"}).out;
    for (const char* const option : {"--out", "--json", "--sensitivity", "--history", "--adaptation", "--speedup"}) {
        EXPECT_NE(background.find(option), std::string::npos) << option;
    }
}

TEST_F(QuarryCommand, WrongUsageEndsWithTwoAndNamesTheArgument) {
    WriteVideo("clip.avi", 2);
    ExpectOneLineError({}, 2, "verb");
    ExpectOneLineError({"paint"}, 2, "paint");
    ExpectOneLineError({"--paint"}, 2, "--paint");
    ExpectOneLineError({"sharpness"}, 2, "IMAGE");
    ExpectOneLineError({"sharpness", "a.png", "--colour"}, 2, "--colour");
    ExpectOneLineError({"background"}, 2, "VIDEO");
    ExpectOneLineError({"background", "clip.avi", "other.avi"}, 2, "other.avi");
    ExpectOneLineError({"background", "clip.avi", "--out"}, 2, "--out");
    ExpectOneLineError({"demo", "more"}, 2, "more");
}

TEST_F(QuarryCommand, NumbersOutOfRangeAreWrongUsage) {
    WriteVideo("clip.avi", 2);
    const std::vector<std::pair<std::string, Arguments>> refused = {
        {"--sensitivity", {"-0.1", "1.1", "nan", "much", ""}},
        {"--history", {"0", "-5", "1.5", "99999999999"}},
        {"--adaptation", {"0", "-1", "inf", "nan"}},
        {"--speedup", {"-1", "inf", "nan", "fast"}},
    };
    for (const auto& [option, values] : refused) {
        for (const std::string& value : values)
            ExpectOneLineError({"background", "clip.avi", option, value}, 2, option);
    }
}

TEST_F(QuarryCommand, OutMustBeAnAviAndNotTheVideoItself) {
    WriteVideo("clip.avi", 2);
    const std::string before = ContentsOf(folder / "clip.avi");
    ExpectOneLineError({"background", "clip.avi", "--out", "marked.mp4"}, 2, "--out");
    ExpectOneLineError({"background", "clip.avi", "--out", "marked"}, 2, "--out");
    ExpectOneLineError({"background", "clip.avi", "--out", "./clip.avi"}, 2, "--out");
    EXPECT_EQ(ContentsOf(folder / "clip.avi"), before);
}

// ---- sharpness

TEST_F(QuarryCommand, SharpnessIsTheVarianceOfTheLaplacian) {
    const std::vector<cv::Mat> pictures = {WritePicture("sharp.png", 1, 0), WritePicture("soft.png", 2, 1.5)};
    const Outcome outcome = Run({"sharpness", "--json", "sharp.png", "soft.png"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
    const std::vector<json> lines = JsonLines(outcome.out);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0].at("file"), "sharp.png");
    EXPECT_EQ(lines[1].at("file"), "soft.png");
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(lines[i].at("width"), 61);
        EXPECT_EQ(lines[i].at("height"), 43);
        EXPECT_EQ(lines[i].at("variance").get<float>(), VarianceOfLaplacian(pictures[i])) << i;
    }
}

TEST_F(QuarryCommand, SharpnessReadsGreyAndTransparentPicturesAsColour) {
    cv::Mat grey(20, 30, CV_8UC1);
    cv::randu(grey, 0, 256);
    cv::imwrite((folder / "grey.png").string(), grey);
    cv::Mat transparent(20, 30, CV_8UC4);
    cv::randu(transparent, 0, 256);
    cv::imwrite((folder / "transparent.png").string(), transparent);
    const std::vector<json> lines = JsonLines(Run({"sharpness", "--json", "grey.png", "transparent.png"}).out);
    ASSERT_EQ(lines.size(), 2U);
    for (const json& line : lines) {
        const cv::Mat colour = cv::imread((folder / line.at("file").get<std::string>()).string(), cv::IMREAD_COLOR);
        EXPECT_EQ(line.at("variance").get<float>(), VarianceOfLaplacian(colour)) << line;
    }
}

TEST_F(QuarryCommand, SharpnessTableHasALinePerPicture) {
    const cv::Mat picture = WritePicture("one.png", 3, 1);
    WritePicture("two.png", 4, 1);
    const std::vector<std::string> lines = Lines(Run({"sharpness", "one.png", "two.png"}).out);
    ASSERT_EQ(lines.size(), 3U);
    std::istringstream row(lines[1]);
    std::string file;
    int width = 0;
    int height = 0;
    double variance = 0;
    row >> file >> width >> height >> variance;
    EXPECT_EQ(file, "one.png");
    EXPECT_EQ(width, 61);
    EXPECT_EQ(height, 43);
    EXPECT_NEAR(variance, static_cast<double>(VarianceOfLaplacian(picture)), 0.006);
}

TEST_F(QuarryCommand, SharpnessGoesOnAfterAPictureThatFails) {
    WritePicture("first.png", 5, 0);
    WritePicture("last.png", 6, 0);
    WriteText("text.png", "not a picture");
    WriteText("empty.jpg", "");
    fs::create_directory(folder / "folder.png");
    const Outcome outcome =
        Run({"sharpness", "--json", "first.png", "missing.png", "text.png", "empty.jpg", "folder.png", "last.png"});
    EXPECT_EQ(outcome.exitCode, 1);
    const std::vector<json> lines = JsonLines(outcome.out);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0].at("file"), "first.png");
    EXPECT_EQ(lines[1].at("file"), "last.png");
    const std::vector<std::string> errors = Lines(outcome.err);
    const std::vector<std::string> failing = {"missing.png", "text.png", "empty.jpg", "folder.png"};
    ASSERT_EQ(errors.size(), failing.size()) << outcome.err;
    for (std::size_t i = 0; i < failing.size(); ++i) EXPECT_EQ(errors[i].rfind("quarry: " + failing[i] + ":", 0), 0U);
}

TEST_F(QuarryCommand, DecodersAddNoLinesOfTheirOwn) {
    WritePicture("whole.jpg", 7, 2);
    WritePicture("whole.png", 7, 2);
    for (const char* const kind : {".jpg", ".png"}) {
        const std::string whole = ContentsOf(folder / (std::string("whole") + kind));
        WriteText(std::string("half") + kind, whole.substr(0, whole.size() / 2));
    }
    // Whether half a file still is a picture is the decoder's to say; it is at most one line each.
    for (const char* const name : {"half.jpg", "half.png"}) {
        const Outcome outcome = Run({"sharpness", name});
        EXPECT_EQ(Lines(outcome.err).size(), outcome.exitCode == 0 ? 0U : 1U) << outcome.err;
    }
}

TEST_F(QuarryCommand, FileNamesThatAreNotUtf8OrHoldALineEndStayOnOneLine) {
    WritePicture("plain.png", 8, 0);
    fs::copy(folder / "plain.png", folder / "caf\xE9.png");
    const Outcome outcome = Run({"sharpness", "--json", "caf\xE9.png"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(JsonLines(outcome.out).size(), 1U);
    ExpectOneLineError({"sharpness", "two\nlines.png"}, 1, "two lines.png");
}

TEST_F(QuarryCommand, AFullStandardOutputIsAFailure) {
    WritePicture("plain.png", 9, 0);
    const std::string err = folder.string() + ".err";
    EXPECT_EQ(ExitCodeOf(Start({"sharpness", "plain.png"}, "/dev/full", err)), 1);
    EXPECT_EQ(ContentsOf(err), "quarry: standard output: cannot be written\n");
    fs::remove(err);
}

// ---- background

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

// ---- progress

TEST_F(QuarryCommand, ProgressShowsOnATerminalOnly) {
    WriteVideo("clip.avi", 60);
    const Outcome shown = RunOnTerminal({"background", "clip.avi"}, false);
    EXPECT_EQ(shown.exitCode, 0);
    EXPECT_NE(shown.err.find("/60"), std::string::npos) << shown.err;
    EXPECT_NE(shown.err.find("frames/s"), std::string::npos) << shown.err;
    EXPECT_NE(shown.err.find("left"), std::string::npos) << shown.err;
    EXPECT_EQ(shown.err.find('\n'), std::string::npos) << "the bar stays on its line";
    EXPECT_EQ(shown.err.substr(shown.err.size() - 4), "\r\x1B[K") << "the bar is gone at the end";
    EXPECT_EQ(Run({"background", "clip.avi"}).err, "");
}

TEST_F(QuarryCommand, ProgressMakesWayForTheTable) {
    WriteVideo("clip.avi", 30);
    const Outcome shown = RunOnTerminal({"background", "clip.avi"}, true);
    EXPECT_EQ(shown.exitCode, 0);
    const std::vector<std::string> lines = Lines(shown.err);
    ASSERT_EQ(lines.size(), 32U);
    for (std::size_t i = 1; i <= 30; ++i) {
        const std::size_t cleared = lines[i].rfind("\r\x1B[K");
        const std::string left = cleared == std::string::npos ? lines[i] : lines[i].substr(cleared + 4);
        EXPECT_EQ(left.find("frames/s"), std::string::npos) << lines[i];
        EXPECT_EQ(std::stoul(left), i - 1) << lines[i];
    }
}

// ---- demo

void ExpectSelfContainedPage(const std::string& page) {
    EXPECT_EQ(page.rfind("<!DOCTYPE html>", 0), 0U);
    EXPECT_NE(page.find("</html>"), std::string::npos);
    for (const char* const outside : {"http:", "https:", "<script", "<link", "@import", "url(", "src=\"/", "src=\"."}) {
        EXPECT_EQ(page.find(outside), std::string::npos) << outside;
    }
    for (std::size_t at = page.find("src=\""); at != std::string::npos; at = page.find("src=\"", at + 1)) {
        EXPECT_EQ(page.compare(at + 5, 11, "data:image/"), 0) << page.substr(at, 40);
    }
    for (const char* const part : {"id=\"operations\"", "id=\"background\"", "id=\"sharpness\"", "<svg", "learning",
                                   "time, s", "foreground mask", "prefers-color-scheme", "Time per frame"}) {
        EXPECT_NE(page.find(part), std::string::npos) << part;
    }
    const std::set<std::string> paired = {"section", "figure", "div", "svg", "table", "tr",
                                          "td",      "h2",     "h3",  "p",   "span"};
    for (const std::string& tag : paired) {
        const auto count = [&](const std::string& text) {
            std::size_t found = 0;
            for (std::size_t at = page.find(text); at != std::string::npos; at = page.find(text, at + 1)) ++found;
            return found;
        };
        EXPECT_EQ(count("<" + tag + ">") + count("<" + tag + " "), count("</" + tag + ">")) << tag;
    }
}

/// Every embedded picture decodes.
void ExpectPicturesDecode(const std::string& page, std::size_t atLeast) {
    const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::size_t pictures = 0;
    for (std::size_t at = page.find(";base64,"); at != std::string::npos; at = page.find(";base64,", at + 1)) {
        const std::size_t begin = at + 8;
        const std::size_t end = page.find('"', begin);
        std::vector<uint8_t> bytes;
        uint32_t bits = 0;
        int count = 0;
        for (std::size_t i = begin; i < end && page[i] != '='; ++i) {
            const std::size_t digit = alphabet.find(page[i]);
            ASSERT_NE(digit, std::string::npos);
            bits = bits << 6 | static_cast<uint32_t>(digit);
            count += 6;
            if (count >= 8) bytes.push_back(static_cast<uint8_t>(bits >> (count -= 8) & 255));
        }
        EXPECT_FALSE(cv::imdecode(bytes, cv::IMREAD_COLOR).empty()) << "picture " << pictures;
        ++pictures;
    }
    EXPECT_GE(pictures, atLeast);
}

TEST_F(QuarryCommand, DemoWithoutFootageDrawsItsOwnAndSaysSo) {
    const Outcome outcome = Run({"demo", "--media", "missing", "--out", "page/here"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, "page/here/report.html\n");
    const std::vector<std::string> lines = Lines(outcome.err);
    ASSERT_EQ(lines.size(), 1U) << outcome.err;
    EXPECT_EQ(lines[0].rfind("quarry: missing:", 0), 0U) << lines[0];
    EXPECT_EQ(FilesIn(folder / "page/here"), (std::set<std::string>{"report.html"}));
    const std::string page = ContentsOf(folder / "page/here/report.html");
    ExpectSelfContainedPage(page);
    ExpectPicturesDecode(page, 20);
    EXPECT_NE(page.find("No real footage"), std::string::npos);
}

TEST_F(QuarryCommand, DemoShowsTheFolderItIsGiven) {
    fs::create_directory(folder / "media");
    WriteVideo("media/vtest.avi", 50, {160, 120});
    WritePicture("media/a<b>&.png", 10, 0);
    WritePicture("media/soft.jpg", 11, 2);
    WriteText("media/broken.jpg", "not a picture");
    const Outcome outcome = Run({"demo"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, "demo/report.html\n");
    const std::string page = ContentsOf(folder / "demo/report.html");
    ExpectSelfContainedPage(page);
    EXPECT_EQ(page.find("No real footage"), std::string::npos);
    EXPECT_NE(page.find("a&lt;b&gt;&amp;.png"), std::string::npos);
    EXPECT_NE(page.find("vtest.avi, 50 frames"), std::string::npos);
}

TEST_F(QuarryCommand, DemoManagesOneFrameAndOnePicture) {
    fs::create_directory(folder / "media");
    WriteVideo("media/vtest.avi", 1);
    WritePicture("media/only.png", 12, 0);
    const Outcome outcome = Run({"demo"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    const std::string page = ContentsOf(folder / "demo/report.html");
    ExpectSelfContainedPage(page);
    EXPECT_EQ(page.find("nan"), std::string::npos);
}

TEST_F(QuarryCommand, DemoNamesAnOutputThatCannotBeWritten) {
    WriteText("file", "");
    fs::create_directories(folder / "taken/report.html");
    ExpectOneLineError({"demo", "--out", "file"}, 1, "file");
    ExpectOneLineError({"demo", "--out", "taken"}, 1, "taken/report.html");
    EXPECT_EQ(FilesIn(folder / "taken"), (std::set<std::string>{"report.html"}));
}

TEST_F(QuarryCommand, DemoRunsOnRealFootage) {
    const fs::path media = quarry::test::MediaDirectory();
    if (!fs::exists(media / "vtest.avi")) GTEST_SKIP() << "no footage";
    const Outcome outcome = Run({"demo", "--media", media.string()});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    const std::string page = ContentsOf(folder / "demo/report.html");
    ExpectSelfContainedPage(page);
    ExpectPicturesDecode(page, 20);
    EXPECT_NE(page.find("first 300 of 795"), std::string::npos) << "the page says that it shows a part";
}

}  // namespace
