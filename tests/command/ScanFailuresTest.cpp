#include <sys/mount.h>
#include <sys/resource.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <random>
#include <thread>

#include "command/ArchiveFixture.h"

using namespace quarry::test;

namespace {

using Names = std::set<std::string>;

constexpr int kBad = 65;
constexpr int kBug = 70;
constexpr int kAgain = 75;

/// Videos that are bad, files that cannot be written, and commands that do not live to their end.
class ScanFailures : public Archive {
protected:
    void ExpectTrouble(const Outcome& outcome, int exitCode, const std::vector<std::string>& lines) const {
        EXPECT_EQ(outcome.exitCode, exitCode) << outcome.err;
        EXPECT_EQ(outcome.out, "");
        std::string expected;
        for (const std::string& line : lines) expected += "quarry: " + line + "\n";
        EXPECT_EQ(outcome.err, expected);
    }

    void WriteBadVideos() const {
        WriteVideos({"a.avi", "deep/z.avi"});
        const std::string good = ContentsOf(folder / "videos/a.avi");
        const std::string noise = Noise(3000);
        WriteText("videos/empty.avi", "");
        WriteText("videos/header.avi", good.substr(0, 200));
        WriteText("videos/headed.avi", good.substr(0, 40) + noise);
        WriteText("videos/noise.mp4", noise);
        WriteText("videos/text.mkv", "not a video\n");
    }

    /// Starts a scan of flow, which takes its time.
    pid_t StartFlow(const std::string& out) const {
        return Start(ScanArguments("flow", out, {"--line", "0,0,1,1"}), "/dev/null", "/dev/null");
    }

    /// What is there of outputs is whole, whatever happened.
    void ExpectFinishedOnly(const std::string& out, const std::string& undisturbed) const {
        for (const std::string& name : FilesBelow(out)) {
            if (fs::path(name).filename().string()[0] == '.') continue;
            EXPECT_EQ(ContentsOf(folder / out / name), ContentsOf(folder / undisturbed / name)) << name;
        }
    }
};

TEST_F(ScanFailures, BadVideosAreRecordedAndTheOthersGoOn) {
    WriteBadVideos();
    const std::string reason = ": not a video that can be read";
    const std::vector<std::string> bad = {"empty.avi" + reason, "headed.avi" + reason, "header.avi" + reason,
                                          "noise.mp4" + reason, "text.mkv" + reason};
    std::vector<std::string> expected = bad;
    expected.emplace_back("2 done, 0 skipped, 5 bad, 0 failed");
    ExpectTrouble(Scan("sharpness", "lines"), kBad, expected);
    for (const char* const name : {"empty.avi", "headed.avi", "header.avi", "noise.mp4", "text.mkv"}) {
        const std::vector<json> lines = LinesOf(std::string("lines/") + name + ".jsonl");
        ASSERT_EQ(lines.size(), 2U) << name;
        EXPECT_EQ(lines[0].at("video"), name);
        EXPECT_EQ(lines[1], (json{{"frames", 0}, {"error", "not a video that can be read"}}));
    }
    EXPECT_EQ(LinesOf("lines/deep/z.avi.jsonl").size(), 4U + 2U);
    expected.back() = "0 done, 2 skipped, 5 bad, 0 failed";
    ExpectTrouble(Scan("sharpness", "lines"), kBad, expected);
}

TEST_F(ScanFailures, ARecordOfABadVideoDoesNotDependOnThePlace) {
    WriteBadVideos();
    Scan("sharpness", "lines");
    fs::create_directory(folder / "moved");
    fs::rename(folder / "videos", folder / "moved/videos");
    EXPECT_EQ(Scan("sharpness", "others", {"--manifest", (folder / "moved/videos").string()}).exitCode, kBad);
    EXPECT_EQ(Merged("others"), Merged("lines"));
    EXPECT_EQ(Merged("lines").find(folder.string()), std::string::npos);
}

TEST_F(ScanFailures, WhatAnOperationRefusesIsBad) {
    WriteVideo("videos/large.avi", 4, {160, 120});
    WriteVideo("videos/small.avi", 4, {64, 48});
    const Outcome outcome = Scan("track", "lines", {"--rect", "100,60,40,40"});
    const std::string reason = "--rect: 100,60,40,40 is outside the frame of 64 x 48 pixels";
    ExpectTrouble(outcome, kBad, {"small.avi: " + reason, "1 done, 0 skipped, 1 bad, 0 failed"});
    EXPECT_EQ(LinesOf("lines/small.avi.jsonl").at(1), (json{{"frames", 0}, {"error", reason}}));
    for (const Arguments& more : {Arguments{"--grid", "100x30"}, Arguments{"--grid", "100x30", "--frames", "2:"}}) {
        EXPECT_EQ(Scan("occupancy", "cells", more).exitCode, kBad);
        EXPECT_EQ(LinesOf("cells/large.avi.jsonl").back().count("error"), 0U);
        EXPECT_EQ(LinesOf("cells/small.avi.jsonl").back().count("error"), 1U);
    }
}

TEST_F(ScanFailures, AVideoWithoutFramesInTheRangeIsBad) {
    WriteVideos({"a.avi", "b.avi"});
    const Outcome outcome = Scan("sharpness", "lines", {"--frames", "3:"});
    ExpectTrouble(outcome, kBad, {"a.avi: holds no frames there", "1 done, 0 skipped, 1 bad, 0 failed"});
    EXPECT_EQ(LinesOf("lines/a.avi.jsonl").at(1), (json{{"frames", 0}, {"error", "holds no frames there"}}));
}

TEST_F(ScanFailures, WhatCannotBeReadNowIsTriedAgain) {
    WriteVideos({"a.avi", "c.avi"});
    WriteText("videos/noise.avi", "noise");
    WriteText("videos/list.txt", "a.avi\nb.avi\nc.avi\ndeep\nnoise.avi\n");
    const Arguments list = {"--manifest", "videos/list.txt"};
    ExpectTrouble(Scan("sharpness", "lines", list), kAgain,
                  {"b.avi: cannot be read: No such file or directory", "deep: not a file",
                   "noise.avi: not a video that can be read", "2 done, 0 skipped, 1 bad, 2 failed"});
    EXPECT_EQ(FilesBelow("lines"), (Names{"a.avi.jsonl", "c.avi.jsonl", "noise.avi.jsonl"}));
    WriteVideo("videos/b.avi", 3);
    fs::remove_all(folder / "videos/deep");
    fs::copy_file(folder / "videos/a.avi", folder / "videos/deep");
    EXPECT_EQ(Scan("sharpness", "lines", list).exitCode, kBad);
    ExpectTrouble(Scan("sharpness", "lines", {"--manifest", "none.txt"}), kAgain,
                  {"none.txt: cannot be read: No such file or directory"});
}

TEST_F(ScanFailures, AVideoThatChangesMeanwhileIsTriedAgain) {
    WriteVideo("videos/long.avi", 60, {320, 240});
    const pid_t child = Start(ScanArguments("flow", "lines"), "/dev/null", (folder / "errors").string());
    WaitUntil([&] { return !FilesBelow("lines").empty(); });
    std::ofstream(folder / "videos/long.avi", std::ios::app) << "more";
    EXPECT_EQ(ExitCodeOf(child), kAgain);
    EXPECT_EQ(ContentsOf(folder / "errors"),
              "quarry: long.avi: was changed while it was read\nquarry: 0 done, 0 skipped, 0 bad, 1 failed\n");
    EXPECT_EQ(FilesBelow("lines"), Names());
    EXPECT_EQ(Scan("sharpness", "lines").exitCode, 0);
}

TEST_F(ScanFailures, APipeIsNotWaitedFor) {
    ASSERT_EQ(mkfifo((folder / "videos/pipe.avi").c_str(), 0600), 0);
    ExpectTrouble(Scan("sharpness", "lines"), kAgain, {"pipe.avi: not a file", "0 done, 0 skipped, 0 bad, 1 failed"});
}

TEST_F(ScanFailures, APipeInPlaceOfAnOutputIsReplaced) {
    WriteVideos({"a.avi"});
    fs::create_directory(folder / "lines");
    ASSERT_EQ(mkfifo((folder / "lines/a.avi.jsonl").c_str(), 0600), 0);
    ExpectOneLineError({"merge", "lines"}, 1, "lines/a.avi.jsonl: not the finished lines of a video");
    EXPECT_EQ(Scan("sharpness", "lines").exitCode, 0);
    EXPECT_EQ(LinesOf("lines/a.avi.jsonl").size(), 3U + 2U);
}

TEST_F(ScanFailures, ClosedStandardStreamsChangeNothing) {
    WriteVideo("videos/long.avi", 100, {320, 240});
    ASSERT_EQ(Scan("sharpness", "whole").exitCode, 0);
    const std::vector<std::vector<int>> choices = {{0}, {1}, {2}, {0, 1}, {0, 2}, {1, 2}, {0, 1, 2}};
    for (const std::vector<int>& closed : choices) {
        const std::string out = "lines" + testing::PrintToString(closed);
        const pid_t child = fork();
        if (child == 0) {
            if (chdir(folder.c_str()) != 0) _exit(126);
            for (const int stream : closed) close(stream);
            Execute(ScanArguments("sharpness", out));
        }
        EXPECT_EQ(ExitCodeOf(child), 0) << out;
        EXPECT_EQ(Merged(out), Merged("whole")) << out;
    }
}

TEST_F(ScanFailures, AnOutputThatCannotBeWrittenIsTriedAgain) {
    WriteVideos({"a.avi", "deep/b.avi"});
    WriteText("file", "in the way");
    const Outcome nowhere = Scan("sharpness", "file/lines");
    EXPECT_EQ(nowhere.exitCode, kAgain);
    EXPECT_EQ(Lines(nowhere.err).back(), "quarry: 0 done, 0 skipped, 0 bad, 2 failed");
    fs::create_directories(folder / "lines/a.avi.jsonl");
    const Outcome folderInTheWay = Scan("sharpness", "lines");
    EXPECT_EQ(folderInTheWay.exitCode, kAgain);
    EXPECT_EQ(Lines(folderInTheWay.err).back(), "quarry: 1 done, 0 skipped, 0 bad, 1 failed");
    EXPECT_EQ(FilesBelow("lines"), Names{"deep/b.avi.jsonl"});
    EXPECT_EQ(ContentsOf(folder / "file"), "in the way");
}

TEST_F(ScanFailures, AFullDiskIsTriedAgain) {
    WriteVideo("videos/long.avi", 300);
    WriteVideo("videos/short.avi", 2);
    Scan("sharpness", "whole");
    fs::create_directory(folder / "disk");
    const std::string disk = (folder / "disk").string();
    if (mount("none", disk.c_str(), "tmpfs", 0, "size=8192") != 0) GTEST_SKIP() << "cannot mount: " << strerror(errno);
    ExpectTrouble(Scan("sharpness", "disk"), kAgain,
                  {"long.avi: disk/long.avi.jsonl: cannot be written in full", "1 done, 0 skipped, 0 bad, 1 failed"});
    EXPECT_EQ(FilesBelow("disk"), Names{"short.avi.jsonl"});
    ASSERT_EQ(mount("none", disk.c_str(), "tmpfs", MS_REMOUNT, "size=1048576"), 0);
    EXPECT_EQ(Scan("sharpness", "disk").exitCode, 0);
    EXPECT_EQ(Merged("disk"), Merged("whole"));
    umount(disk.c_str());
}

TEST_F(ScanFailures, FilesThatMayNotGrowAreTriedAgain) {
    WriteVideo("videos/long.avi", 300);
    rlimit usual{};
    getrlimit(RLIMIT_FSIZE, &usual);
    const rlimit small = {4096, usual.rlim_max};
    std::signal(SIGXFSZ, SIG_IGN);  // the command inherits it: its writes fail then
    setrlimit(RLIMIT_FSIZE, &small);
    const Outcome outcome = Scan("sharpness", "lines");
    setrlimit(RLIMIT_FSIZE, &usual);
    std::signal(SIGXFSZ, SIG_DFL);
    EXPECT_EQ(outcome.exitCode, kAgain) << outcome.err;
    EXPECT_EQ(FilesBelow("lines"), Names());
}

#if !defined(__SANITIZE_ADDRESS__)  // which must be the first library itself
TEST_F(ScanFailures, ALackOfMemoryIsTriedAgainAndWhatNobodyExpectsIsABug) {
    WriteVideos({"a.avi", "b.avi"});
    setenv("LD_PRELOAD", QUARRY_BROKEN_DIGEST, 1);
    setenv("QUARRY_NO_MEMORY", "1", 1);
    const Outcome lack = Scan("sharpness", "lines");
    unsetenv("QUARRY_NO_MEMORY");
    const Outcome bug = Scan("sharpness", "lines");
    unsetenv("LD_PRELOAD");
    ExpectTrouble(lack, kAgain,
                  {"a.avi: not enough memory", "b.avi: not enough memory", "0 done, 0 skipped, 0 bad, 2 failed"});
    ExpectTrouble(bug, kBug,
                  {"a.avi: SHA-256 cannot be computed", "b.avi: SHA-256 cannot be computed",
                   "0 done, 0 skipped, 0 bad, 2 failed"});
    EXPECT_EQ(FilesBelow("lines"), Names());
}
#endif

// ---- of commands that end early

TEST_F(ScanFailures, KilledAndStartedAgainItComesToTheSame) {
    WriteVideos({"a.avi", "b.avi", "c.avi", "deep/d.avi", "deep/e.avi"}, {160, 120});
    const auto began = std::chrono::steady_clock::now();
    ASSERT_EQ(ExitCodeOf(StartFlow("whole")), 0);
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - began;
    std::mt19937 random(1);
    std::uniform_real_distribution<double> share(0, 0.9);
    for (int round = 0; round < 3; ++round) {
        const std::string out = "lines" + std::to_string(round);
        for (int kills = 0; kills < 4; ++kills) {
            const pid_t child = StartFlow(out);
            std::this_thread::sleep_for(time * share(random));
            kill(child, SIGKILL);
            ExitCodeOf(child);
            ExpectFinishedOnly(out, "whole");
        }
        EXPECT_EQ(ExitCodeOf(StartFlow(out)), 0);
        EXPECT_EQ(Merged(out), Merged("whole")) << round;
    }
}

TEST_F(ScanFailures, SignalsLeaveWhatIsFinishedAndNothingElse) {
    WriteVideos({"a.avi", "b.avi"}, {160, 120});
    WriteVideo("videos/c.avi", 400, {320, 240});
    for (const int signal : {SIGINT, SIGTERM}) {
        const std::string out = "lines" + std::to_string(signal);
        const pid_t child = StartFlow(out);
        WaitUntil([&] { return FilesBelow(out).size() >= 3; });
        kill(child, signal);
        EXPECT_EQ(ExitCodeOf(child), 128 + signal);
        EXPECT_EQ(FilesBelow(out), (Names{"a.avi.jsonl", "b.avi.jsonl"}));
        EXPECT_EQ(LinesOf(out + "/b.avi.jsonl").back(), (json{{"frames", 4}}));
    }
}

TEST_F(ScanFailures, TwoOnTheSameVideosDoNoHarm) {
    WriteVideos({"a.avi", "b.avi", "c.avi", "deep/d.avi"}, {160, 120});
    ASSERT_EQ(ExitCodeOf(StartFlow("whole")), 0);
    for (int round = 0; round < 3; ++round) {
        const std::string out = "lines" + std::to_string(round);
        const pid_t first = StartFlow(out);
        const pid_t second = StartFlow(out);
        EXPECT_EQ(ExitCodeOf(first), 0);
        EXPECT_EQ(ExitCodeOf(second), 0);
        EXPECT_EQ(FilesBelow(out), FilesBelow("whole"));
        EXPECT_EQ(Merged(out), Merged("whole"));
    }
}

}  // namespace
