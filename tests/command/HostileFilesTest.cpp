#include <sys/mount.h>
#include <sys/resource.h>

#include <cerrno>
#include <csignal>
#include <cstring>

#include "command/CommandFixture.h"

using namespace quarry::test;

namespace {

/// Files that are damaged, and disks that are full.
class HostileFiles : public QuarryCommand {
protected:
    void SetUp() override {
        QuarryCommand::SetUp();
        WritePicture("good.png", 1, 0);
        WriteVideo("good.avi", 20);
    }
};

TEST_F(HostileFiles, ATruncatedVideoIsPlayedAsFarAsItGoes) {
    const std::string whole = ContentsOf(folder / "good.avi");
    WriteText("half.avi", whole.substr(0, whole.size() / 2));
    const Outcome outcome = Run({"background", "half.avi", "--json", "--out", "out.avi"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
    const std::size_t played = JsonLines(outcome.out).size();
    EXPECT_GE(played, 5U);
    EXPECT_LE(played, 15U);
    EXPECT_EQ(FramesOf(folder / "out.avi").size(), played);
}

TEST_F(HostileFiles, WhatMayNotBeReadOrWrittenIsNamed) {
    WriteText("secret.xml", "");
    fs::permissions(folder / "secret.xml", fs::perms::none);
    if (access((folder / "secret.xml").c_str(), R_OK) == 0) GTEST_SKIP() << "root may read everything";
    ExpectRefusal({"detect", "good.png", "--cascade", "secret.xml"}, 1, "secret.xml");
    fs::create_directory(folder / "sealed");
    fs::permissions(folder / "sealed", fs::perms::owner_read | fs::perms::owner_exec);
    ExpectRefusal({"denoise", "good.png", "--out", "sealed/out.png"}, 1, "sealed/out.png");
}

/// What becomes of an output when the disk takes only some of it.
class FullDisk : public HostileFiles {
protected:
    void ExpectNothingIsLeft(const std::string& place) const {
        const Arguments calls[] = {{"denoise", "good.png", "--out", place + "out.png"},
                                   {"background", "good.avi", "--out", place + "out.avi"},
                                   {"track", "good.avi", "--rect", "2,24,16,16", "--out", place + "out.avi"}};
        for (const Arguments& call : calls) ExpectRefusal(call, 1, call.back());
    }
};

TEST_F(FullDisk, LeavesNothingWhenItIsATinyOne) {
    fs::create_directory(folder / "disk");
    const std::string disk = (folder / "disk").string();
    if (mount("none", disk.c_str(), "tmpfs", 0, "size=4096") != 0) GTEST_SKIP() << "cannot mount: " << strerror(errno);
    ExpectNothingIsLeft("disk/");
    EXPECT_EQ(FilesIn(disk), std::set<std::string>());
    umount(disk.c_str());
}

TEST_F(FullDisk, LeavesNothingWhenFilesMayNotGrow) {
    rlimit usual{};
    getrlimit(RLIMIT_FSIZE, &usual);
    const rlimit small = {4096, usual.rlim_max};
    std::signal(SIGXFSZ, SIG_IGN);  // the command inherits it: its writes fail then
    setrlimit(RLIMIT_FSIZE, &small);
    ExpectNothingIsLeft("");
    setrlimit(RLIMIT_FSIZE, &usual);
    std::signal(SIGXFSZ, SIG_DFL);
}

}  // namespace
