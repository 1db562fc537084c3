#include <sys/mount.h>
#include <sys/resource.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <random>

#include "host/CommandFixture.h"

using namespace quarry::test;

namespace {

constexpr const char* kModel = "/usr/share/opencv4/haarcascades/haarcascade_frontalface_alt.xml";

std::string Noise(std::size_t count) {
    std::mt19937 random(1);
    std::string bytes(count, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    return bytes;
}

/// Files that are not what they claim to be, and files that cannot be written: one line on stderr says so, and the
/// folder stays as it was.
class HostileFiles : public QuarryCommand {
protected:
    void SetUp() override {
        QuarryCommand::SetUp();
        WritePicture("good.png", 1, 0);
        WriteVideo("good.avi", 20);
        WriteText("body.json", "[" + Pairs(17) + "]");
        WriteText("points.json", "{\"source\": [" + Pairs(5) + "], \"destination\": [" + Pairs(5) + "]}");
        WriteText("polygon.json", "[[0, 0], [1, 0], [1, 1]]");
    }

    static std::string Pairs(int count) {
        std::string pairs;
        for (int i = 0; i < count; ++i) {
            pairs +=
                (i > 0 ? ", [0." : "[0.") + std::to_string(i % 9 + 1) + ", 0." + std::to_string(i * 7 % 9 + 1) + "]";
        }
        return pairs;
    }

    void ExpectRefusal(const Arguments& arguments, int exitCode, const std::string& named) const {
        const std::set<std::string> before = FilesIn(folder);
        ExpectOneLineError(arguments, exitCode, named);
        EXPECT_EQ(FilesIn(folder), before) << testing::PrintToString(arguments);
    }

    /// Files that are not what their ending says; one of them begins as a good one does.
    Arguments BadFiles(const std::string& ending, const std::string& good) const {
        fs::create_directory(folder / ("folder" + ending));
        WriteText("empty" + ending, "");
        WriteText("noise" + ending, Noise(5000));
        WriteText("headed" + ending, good.substr(0, 40) + Noise(500));
        return {"folder" + ending, "empty" + ending, "noise" + ending, "headed" + ending, "missing" + ending};
    }

    /// Each verb that reads a picture, with its other arguments right.
    static std::vector<Arguments> OverPicture(const std::string& picture) {
        return {{"sharpness", picture},
                {"diff", picture, "good.png", "--out", "out.png"},
                {"diff", "good.png", picture, "--out", "out.png"},
                {"denoise", picture, "--out", "out.png"},
                {"occupancy", picture, "--out", "out.png"},
                {"clusters", picture, "--out", "out.png"},
                {"rect", picture, "--center", "20,20", "--size", "10x10", "--out", "out.png"},
                {"clothing", picture, "body.json", "--out", "out.png"},
                {"colours", picture, "good.png"},
                {"detect", picture, "--cascade", kModel, "--out", "out.png"},
                {"fire", picture, "--out", "out.png"},
                {"align", picture, "points.json", "--out", "out.png"},
                {"rotate", picture, "--angle", "10", "--out", "out.png"}};
    }
    static std::vector<Arguments> OverVideo(const std::string& video) {
        return {{"background", video, "--out", "out.avi"}, {"track", video, "--rect", "2,24,16,16", "--out", "out.avi"},
                {"flow", video, "--out", "out.avi"},       {"contours", video, "--out", "out.avi"},
                {"occupancy", video, "--out", "out.avi"},  {"clusters", video, "--out", "out.avi"},
                {"people", video, "--out", "out.avi"}};
    }
    static std::vector<Arguments> OverJson(const std::string& file) {
        return {{"inside", file, "polygon.json"},
                {"inside", "polygon.json", file},
                {"shape-rate", file, "polygon.json", "--interval", "40", "--size", "64x48"},
                {"similarity", file, file},
                {"clothing", "good.png", file, "--out", "out.png"},
                {"align", "good.png", file, "--out", "out.png"}};
    }
};

TEST_F(HostileFiles, NoPictureIsRefusedByEveryVerb) {
    for (const std::string& bad : BadFiles(".png", ContentsOf(folder / "good.png"))) {
        for (const Arguments& call : OverPicture(bad)) ExpectRefusal(call, 1, bad);
    }
}

TEST_F(HostileFiles, NoVideoIsRefusedByEveryVerb) {
    for (const std::string& bad : BadFiles(".avi", ContentsOf(folder / "good.avi"))) {
        for (const Arguments& call : OverVideo(bad)) ExpectRefusal(call, 1, bad);
    }
}

TEST_F(HostileFiles, NoJsonIsRefusedByEveryVerb) {
    WriteText("deep.json", std::string(1'000'000, '['));
    WriteText("closed.json", std::string(100'000, '[') + std::string(100'000, ']'));
    WriteText("infinite.json", "[[1e999, 0], [1, 1], [0, 1]]");
    WriteText("object.json", R"({"a": {"b": []}})");
    WriteText("words.json", R"([["left", "right"], ["up", "down"]])");
    Arguments bad = BadFiles(".json", "[[0, 0], [0.25, 0.5], [0.5, 0.75], [1, 1]]");
    bad.insert(bad.end(), {"deep.json", "closed.json", "infinite.json", "object.json", "words.json"});
    for (const std::string& file : bad) {
        for (const Arguments& call : OverJson(file)) ExpectRefusal(call, 1, file);
    }
}

TEST_F(HostileFiles, NoCascadeIsRefused) {
    if (!fs::exists(kModel)) GTEST_SKIP() << "no model";
    const std::string model = ContentsOf(kModel);
    WriteText("half.xml", model.substr(0, model.size() / 2));
    WriteText("other.xml", "<?xml version=\"1.0\"?>\n<opencv_storage><a>1</a></opencv_storage>\n");
    WriteText("cascade.xml", "<?xml version=\"1.0\"?>\n<opencv_storage><cascade></cascade></opencv_storage>\n");
    Arguments bad = BadFiles(".xml", model);
    bad.insert(bad.end(), {"half.xml", "other.xml", "cascade.xml"});
    for (const std::string& file : bad) {
        ExpectRefusal({"detect", "good.png", "--cascade", file, "--out", "out.png"}, 1, file);
    }
}

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

TEST_F(HostileFiles, ForbiddenOnesAreRefused) {
    fs::copy_file(folder / "good.png", folder / "secret.png");
    WriteText("secret.json", "[]");
    WriteText("secret.xml", "");
    for (const char* const secret : {"secret.png", "secret.json", "secret.xml"}) {
        fs::permissions(folder / secret, fs::perms::none);
    }
    if (access((folder / "secret.png").c_str(), R_OK) == 0) GTEST_SKIP() << "root may read everything";
    for (const Arguments& call : OverPicture("secret.png")) ExpectRefusal(call, 1, "secret.png");
    for (const Arguments& call : OverJson("secret.json")) ExpectRefusal(call, 1, "secret.json");
    ExpectRefusal({"detect", "good.png", "--cascade", "secret.xml"}, 1, "secret.xml");
    fs::create_directory(folder / "sealed");
    fs::permissions(folder / "sealed", fs::perms::owner_read | fs::perms::owner_exec);
    ExpectRefusal({"denoise", "good.png", "--out", "sealed/out.png"}, 1, "sealed/out.png");
}

TEST_F(HostileFiles, WhatIsReadIsNeverWrittenOver) {
    fs::create_symlink("good.png", folder / "link.png");
    fs::create_hard_link(folder / "good.avi", folder / "link.avi");
    const std::string picture = ContentsOf(folder / "good.png");
    const std::string video = ContentsOf(folder / "good.avi");
    const auto over = [](Arguments call, const std::string& out) {
        if (call.end()[-2] == "--out") call.back() = out;
        return call;
    };
    for (const Arguments& call : OverPicture("good.png")) {
        if (call.end()[-2] != "--out") continue;
        for (const char* const out : {"good.png", "./good.png", "link.png"}) ExpectRefusal(over(call, out), 2, "--out");
    }
    for (const Arguments& call : OverVideo("good.avi")) {
        for (const char* const out : {"good.avi", "link.avi"}) ExpectRefusal(over(call, out), 2, "--out");
    }
    EXPECT_EQ(ContentsOf(folder / "good.png"), picture);
    EXPECT_EQ(ContentsOf(folder / "good.avi"), video);
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
