#include "command/ArchiveFixture.h"

using namespace quarry::test;

namespace {

using Names = std::set<std::string>;

/// The videos that `quarry scan` takes, and what it calls them.
class ScanManifest : public Archive {
protected:
    std::vector<std::string> VideosIn(const std::string& out) const {
        std::vector<std::string> names;
        for (const json& line : JsonLines(Merged(out))) {
            if (line.contains("video")) names.push_back(line.at("video"));
        }
        return names;
    }

    Outcome ScanWithInput(const std::string& input, const std::string& out) const {
        WriteText("input", input);
        return ScanWithInputFrom(folder / "input", out);
    }

    Outcome ScanWithInputFrom(const fs::path& input, const std::string& out) const {
        const int before = dup(STDIN_FILENO);
        const int file = open(input.c_str(), O_RDONLY);
        dup2(file, STDIN_FILENO);  // the command inherits it
        Outcome outcome = Scan("sharpness", out, {"--manifest", "-"});
        dup2(before, STDIN_FILENO);
        close(file);
        close(before);
        return outcome;
    }

    void ExpectRefusal(const std::string& names, const std::string& reason) const {
        WriteText("videos/list.txt", names);
        const Outcome outcome = Scan("sharpness", "lines", {"--manifest", "videos/list.txt"});
        EXPECT_EQ(outcome.exitCode, 2) << names;
        EXPECT_EQ(outcome.err, "quarry: --manifest: " + reason + "\n");
        EXPECT_FALSE(fs::exists(folder / "lines")) << names;
    }
};

TEST_F(ScanManifest, AFolderHoldsTheVideosBelowIt) {
    WriteVideos({"b.avi", "B.AVI", "a.mp4", "deep/er/c.avi", "deep.mkv"});
    for (const char* const other : {"videos/readme.txt", "videos/picture.png", "videos/avi", "videos/a.avi.jsonl"}) {
        WriteText(other, "none");
    }
    fs::create_directory(folder / "videos/folder.avi");
    EXPECT_EQ(Scan("sharpness", "lines").exitCode, 0);
    EXPECT_EQ(VideosIn("lines"), (std::vector<std::string>{"B.AVI", "a.mp4", "b.avi", "deep.mkv", "deep/er/c.avi"}));
    EXPECT_EQ(FilesBelow("lines"),
              (Names{"B.AVI.jsonl", "a.mp4.jsonl", "b.avi.jsonl", "deep.mkv.jsonl", "deep/er/c.avi.jsonl"}));
    EXPECT_EQ(Scan("sharpness", "others", {"--manifest", (folder / "videos/").string()}).exitCode, 0);
    EXPECT_EQ(Merged("others"), Merged("lines"));
}

TEST_F(ScanManifest, AFileNamesThemRelativeToItself) {
    WriteVideos({"a.avi", "deep/b.avi", "unwanted.avi"});
    WriteText("videos/list.txt", "# the wanted ones\n\ndeep/b.avi\n#unwanted.avi\na.avi");
    EXPECT_EQ(Scan("sharpness", "lines", {"--manifest", "videos/list.txt"}).exitCode, 0);
    EXPECT_EQ(VideosIn("lines"), (std::vector<std::string>{"a.avi", "deep/b.avi"}));
}

TEST_F(ScanManifest, StandardInputNamesThemRelativeToTheWorkingFolder) {
    WriteVideos({"a.avi", "deep/b.avi"});
    EXPECT_EQ(ScanWithInput("videos/deep/b.avi\n# none\nvideos/a.avi\n", "lines").exitCode, 0);
    EXPECT_EQ(VideosIn("lines"), (std::vector<std::string>{"videos/a.avi", "videos/deep/b.avi"}));
    EXPECT_EQ(FilesBelow("lines"), (Names{"videos/a.avi.jsonl", "videos/deep/b.avi.jsonl"}));
}

TEST_F(ScanManifest, NamesMayHoldWhatFileNamesHold) {
    const std::vector<std::string> names = {"#1: a b.avi",      "-x.avi",        "50%d.avi",    "it's \"it\".avi",
                                            "two  spaces .avi", "tr\\ack$1.avi", "*[a-z]?.avi", "caf\u00E9 \u5F71.avi"};
    WriteVideos(names);
    EXPECT_EQ(Scan("sharpness", "lines").exitCode, 0);
    std::vector<std::string> sorted = names;
    std::sort(sorted.begin(), sorted.end());
    EXPECT_EQ(VideosIn("lines"), sorted);
    for (const std::string& name : names) EXPECT_TRUE(fs::exists(folder / "lines" / (name + ".jsonl"))) << name;
}

TEST_F(ScanManifest, LongNamesAndNamesThatAreNotUtf8AreScanned) {
    const std::string lengthy = std::string(245, 'x') + ".avi";
    WriteVideos({lengthy, "caf\xE9.avi"});
    EXPECT_EQ(Scan("sharpness", "lines").exitCode, 0);
    EXPECT_EQ(FilesBelow("lines"), (Names{lengthy + ".jsonl", "caf\xE9.avi.jsonl"}));
    EXPECT_EQ(VideosIn("lines").front(), "caf\uFFFD.avi");
}

TEST_F(ScanManifest, AbsoluteNamesAndDetoursStayWithinTheOutputs) {
    WriteVideos({"a.avi", "b.avi", "c.avi"});
    const std::string absolute = (folder / "videos/a.avi").string();
    WriteText("list.txt", absolute + "\nvideos/deep/../b.avi\n./videos//c.avi\n");
    EXPECT_EQ(Scan("sharpness", "lines", {"--manifest", "list.txt"}).exitCode, 0);
    EXPECT_EQ(VideosIn("lines"), (std::vector<std::string>{"./videos//c.avi", absolute, "videos/deep/../b.avi"}));
    EXPECT_EQ(FilesBelow("lines"), (Names{absolute.substr(1) + ".jsonl", "videos/b.avi.jsonl", "videos/c.avi.jsonl"}));
}

TEST_F(ScanManifest, NamesThatLeadOutOrHoldControlCharactersAreRefused) {
    WriteVideos({"a.avi"});
    const std::string out = ": leads out of the folder of the outputs";
    ExpectRefusal("../a.avi\na.avi\n", "../a.avi" + out);
    ExpectRefusal("a.avi\ndeep/../../videos/a.avi\n", "deep/../../videos/a.avi" + out);
    ExpectRefusal("/../a.avi\n", "/../a.avi" + out);
    ExpectRefusal("..\n", ".." + out);
    ExpectRefusal("deep/\n", "deep/: is the name of a folder");
    ExpectRefusal(".\n", ".: is the name of a folder");
    ExpectRefusal("/\n", "/: leads out of the folder of the outputs");
    ExpectRefusal("a.avi\r\n", "a.avi : holds a control character");
    ExpectRefusal("a\tb.avi\n", "a\tb.avi: holds a control character");
    ExpectRefusal("a\x7F.avi\n", "a\x7F.avi: holds a control character");
}

TEST_F(ScanManifest, ANameToWhichNoEndingCanBeAddedIsRefused) {
    const std::string lengthy = std::string(246, 'x') + ".avi";
    ExpectRefusal("deep/" + lengthy + "\n",
                  "deep/" + lengthy + ": is too long: the name of its lines would have more than 255 bytes");
}

TEST_F(ScanManifest, AByteOrderMarkIsRefused) {
    WriteVideos({"a.avi"});
    ExpectRefusal(
        "\xEF\xBB\xBF"
        "a.avi\n",
        "videos/list.txt: begins with a byte order mark");
    ExpectRefusal("\xEF\xBB\xBF# the wanted ones\na.avi\n", "videos/list.txt: begins with a byte order mark");
}

TEST_F(ScanManifest, NamesThatTheLinesCannotTellApartAreRefused) {
    const std::string reason = ": is not UTF-8, and cannot be told from another such name in the lines";
    ExpectRefusal("caf\xE8.avi\ncaf\xE9.avi\n", "caf\xE9.avi" + reason);
}

TEST_F(ScanManifest, AFolderNamedAsAnOutputIsRefused) {
    ExpectRefusal("a.avi\na.avi.jsonl/deep/b.avi\n", "a.avi.jsonl/deep/b.avi: lies below the output of a.avi");
    fs::create_directories(folder / "videos/a.avi.jsonl");
    WriteVideos({"a.avi.jsonl/b.avi", "c.avi"});
    WriteText("videos/list.txt", "a.avi.jsonl/b.avi\nc.avi\n");
    EXPECT_EQ(Scan("sharpness", "lines", {"--manifest", "videos/list.txt"}).exitCode, 0);
    EXPECT_EQ(FilesBelow("lines"), (Names{"a.avi.jsonl/b.avi.jsonl", "c.avi.jsonl"}));
}

TEST_F(ScanManifest, ALinkThatLeadsNowhereKeepsNoOtherVideoBack) {
    WriteVideos({"a.avi"});
    fs::create_symlink("loop.avi", folder / "videos/loop.avi");
    fs::create_symlink("none", folder / "videos/none.avi");
    const Outcome outcome = Scan("sharpness", "lines");
    EXPECT_EQ(outcome.exitCode, 75);
    EXPECT_EQ(Lines(outcome.err).back(), "quarry: 1 done, 0 skipped, 0 bad, 2 failed");
}

TEST_F(ScanManifest, StandardInputThatCannotBeReadIsNotAnEmptyManifest) {
    const Outcome outcome = ScanWithInputFrom(folder, "lines");
    EXPECT_EQ(outcome.exitCode, 75);
    EXPECT_EQ(outcome.err, "quarry: standard input: cannot be read in full\n");
}

TEST_F(ScanManifest, TheSameVideoTwiceIsRefused) {
    WriteVideos({"a.avi", "b.avi"});
    ExpectRefusal("a.avi\nb.avi\na.avi\n", "a.avi: stands there twice");
    ExpectRefusal("a.avi\nb.avi\n./a.avi\n", "a.avi: is the same as ./a.avi");
    ExpectRefusal("a.avi\n/a.avi\n", "a.avi: is the same as /a.avi");
}

TEST_F(ScanManifest, MayBeEmpty) {
    fs::remove_all(folder / "videos");
    fs::create_directory(folder / "videos");
    WriteText("list.txt", "\n# none\n");
    for (const char* const manifest : {"videos", "list.txt"}) {
        const Outcome outcome = Scan("sharpness", "lines", {"--manifest", manifest});
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_EQ(outcome.err, "quarry: 0 done, 0 skipped, 0 bad, 0 failed\n");
    }
    EXPECT_EQ(ScanWithInput("", "lines").exitCode, 0);
    EXPECT_EQ(FilesBelow("lines"), Names());
}

TEST_F(ScanManifest, WrongUsageIsRefused) {
    WriteVideos({"a.avi"});
    for (const char* const shard : {"", "1", "/", "1/", "/2", "0/2", "3/2", "-1/2", "1/0", "1/2/3", "1/2 ", " 1/2",
                                    "a/b", "1.0/2", "99999999999/99999999999"}) {
        ExpectOneLineError(ScanArguments("sharpness", "lines", {std::string("--shard=") + shard}), 2, "--shard");
    }
    ExpectOneLineError({"scan"}, 2, "required");
    ExpectOneLineError({"scan", "--manifest", "videos", "--out", "lines"}, 2, "operation");
    ExpectOneLineError({"scan", "sharpness", "--out", "lines"}, 2, "--manifest");
    ExpectOneLineError({"scan", "sharpness", "--manifest", "videos"}, 2, "--out");
    ExpectOneLineError(ScanArguments("diff", "lines"), 2, "diff");
    ExpectOneLineError(ScanArguments("track", "lines"), 2, "--rect");
    ExpectOneLineError(ScanArguments("people", "lines", {"--min-size", "0.5", "--max-size", "0.2"}), 2, "--max-size");
    for (const char* const option : {"--json", "--csv", "--plot", "--scale", "--annotate"}) {
        ExpectOneLineError(ScanArguments("flow", "lines", {option}), 2, option);
    }
    ExpectOneLineError(ScanArguments("detect", "lines", {"--cascade", "videos/a.avi"}), 2, "videos/a.avi");
    ExpectOneLineError(ScanArguments("detect", "lines", {"--cascade", "none.xml"}), 75, "none.xml");
    EXPECT_FALSE(fs::exists(folder / "lines"));
}

}  // namespace
