/// @file
/// Runs the command as its users do: as a process, in a folder of its own.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <opencv2/videoio.hpp>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "support/Scenes.h"

namespace quarry::test {

using Arguments = std::vector<std::string>;
using nlohmann::json;
namespace fs = std::filesystem;

struct Outcome {
    int exitCode;  ///< -1: it did not exit by itself
    std::string out;
    std::string err;
};

/// A model of faces, which Debian's package opencv-data has.
constexpr const char* kModel = "/usr/share/opencv4/haarcascades/haarcascade_frontalface_alt.xml";

inline Arguments operator+(Arguments first, const Arguments& more) {
    first.insert(first.end(), more.begin(), more.end());
    return first;
}

inline std::string ContentsOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream contents;
    contents << file.rdbuf();
    return contents.str();
}

inline std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

inline std::vector<json> JsonLines(const std::string& text) {
    std::vector<json> objects;
    for (const std::string& line : Lines(text)) objects.push_back(json::parse(line));
    return objects;
}

inline std::string Noise(std::size_t count) {
    std::mt19937 random(1);
    std::string bytes(count, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    return bytes;
}

/// What another program writes to its standard output.
inline std::string OutputOf(const std::string& shellCommand) {
    FILE* const pipe = popen(shellCommand.c_str(), "r");
    std::string out;
    char buffer[4096];
    for (std::size_t count; (count = fread(buffer, 1, sizeof buffer, pipe)) > 0;) out.append(buffer, count);
    EXPECT_EQ(pclose(pipe), 0) << shellCommand;
    return out;
}

/// Waits until the condition holds, for 20 seconds at most.
template <typename Condition>
void WaitUntil(const Condition& holds) {
    for (int wait = 0; wait < 4000 && !holds(); ++wait) std::this_thread::sleep_for(std::chrono::milliseconds(5));
}

[[noreturn]] inline void Execute(const Arguments& arguments) {
    std::vector<char*> argv = {const_cast<char*>(QUARRY_COMMAND)};
    for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    execv(QUARRY_COMMAND, argv.data());
    _exit(127);
}

inline int ExitCodeOf(pid_t child) {
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
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

    /// Runs a verb that must succeed, with --json; gives its lines.
    std::vector<json> RunJson(const Arguments& arguments) const {
        const Outcome outcome = Run(arguments + Arguments{"--json"});
        EXPECT_EQ(outcome.exitCode, 0) << testing::PrintToString(arguments) << outcome.err;
        EXPECT_EQ(outcome.err, "") << testing::PrintToString(arguments);
        return JsonLines(outcome.out);
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
        SCOPED_TRACE(testing::PrintToString(arguments));
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.exitCode, exitCode) << outcome.err;
        ASSERT_EQ(Lines(outcome.err).size(), 1U) << outcome.err;
        EXPECT_EQ(outcome.err.back(), '\n');
        EXPECT_EQ(outcome.err.rfind("quarry: ", 0), 0U) << outcome.err;
        EXPECT_NE(outcome.err.find(named), std::string::npos) << outcome.err;
    }

    /// The same of a call that must leave the files of the folder as they are.
    void ExpectRefusal(const Arguments& arguments, int exitCode, const std::string& named) const {
        const std::set<std::string> before = FilesIn(folder);
        ExpectOneLineError(arguments, exitCode, named);
        EXPECT_EQ(FilesIn(folder), before) << testing::PrintToString(arguments);
    }

    cv::Mat WritePicture(const std::string& name, uint64_t seed, double sigma) const {
        cv::Mat picture = RandomFrame(61, 43, seed);
        if (sigma > 0) cv::GaussianBlur(picture, picture, {}, sigma);
        cv::imwrite((folder / name).string(), picture);
        return picture;
    }

    cv::Mat ReadPicture(const std::string& name) const {
        return cv::imread((folder / name).string(), cv::IMREAD_UNCHANGED);
    }

    /// @param draw  gives the frame of an index
    template <typename Draw>
    void WriteVideo(const std::string& name, int frames, const Draw& draw, cv::Size size, double rate) const {
        cv::VideoWriter writer((folder / name).string(), cv::VideoWriter::fourcc('M', 'J', 'P', 'G'), rate, size);
        ASSERT_TRUE(writer.isOpened());
        for (int i = 0; i < frames; ++i) writer.write(draw(i));
    }

    void WriteVideo(const std::string& name, int frames, cv::Size size = {96, 64}, double rate = 10) const {
        WriteVideo(
            name, frames, [&](int i) { return MovingSquare(size.width, size.height, i); }, size, rate);
    }

    void WriteText(const std::string& name, const std::string& text) const { std::ofstream(folder / name) << text; }

    std::set<std::string> FilesIn(const fs::path& place) const {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(place)) names.insert(entry.path().filename().string());
        return names;
    }

    fs::path folder;
};

inline std::vector<cv::Mat> FramesOf(const fs::path& path) {
    std::vector<cv::Mat> frames;
    cv::VideoCapture video(path.string());
    for (cv::Mat frame; video.read(frame);) frames.push_back(frame.clone());
    return frames;
}

}  // namespace quarry::test
