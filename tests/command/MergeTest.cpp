#include "command/ArchiveFixture.h"

using namespace quarry::test;

namespace {

class MergeCommand : public Archive {
protected:
    /// Refused, with one line that begins so and nothing written.
    void ExpectRefusal(const std::string& begin, const std::string& also = "") const {
        const Outcome outcome = Run({"merge", "lines", "--out", "merged.jsonl"});
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_EQ(Lines(outcome.err).size(), 1U);
        EXPECT_EQ(outcome.err.rfind("quarry: " + begin, 0), 0U) << outcome.err;
        EXPECT_NE(outcome.err.find(also), std::string::npos) << outcome.err;
        EXPECT_FALSE(fs::exists(folder / "merged.jsonl"));
        const Outcome shown = Run({"merge", "lines"});
        EXPECT_EQ(shown.exitCode, 1);
        EXPECT_EQ(shown.out, "");
    }

    std::string Output(const std::string& video) const { return ContentsOf(folder / "lines" / (video + ".jsonl")); }
};

TEST_F(MergeCommand, PutsAllLinesInTheByteOrderOfTheNames) {
    const std::vector<std::string> names = {"B.avi",      "a b.avi",  "a-b.avi",       "a.avi",     "a.avi.avi",
                                            "deep/x.avi", "deep.avi", "deep/er/y.avi", "\u00E9.avi"};
    WriteVideos(names);
    ASSERT_EQ(Scan("sharpness", "lines").exitCode, 0);
    std::vector<std::string> sorted = names;
    std::sort(sorted.begin(), sorted.end());
    std::string expected;
    for (const std::string& name : sorted) expected += Output(name);
    EXPECT_EQ(Merged("lines"), expected);
    const Outcome outcome = Run({"merge", "lines", "--out", "merged.jsonl"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out + outcome.err, "");
    EXPECT_EQ(ContentsOf(folder / "merged.jsonl"), expected);
    EXPECT_EQ(FilesIn(folder), (std::set<std::string>{"lines", "merged.jsonl", "videos"}));
}

TEST_F(MergeCommand, TakesBadVideosToo) {
    WriteVideos({"a.avi"});
    WriteText("videos/b.avi", "not a video");
    ASSERT_EQ(Scan("sharpness", "lines").exitCode, 65);
    EXPECT_EQ(Merged("lines"), Output("a.avi") + Output("b.avi"));
}

TEST_F(MergeCommand, PassesOverTemporaryAndOtherFiles) {
    WriteVideos({"a.avi", ".b.avi", ".c.unfinished-12.avi"});
    ASSERT_EQ(Scan("sharpness", "lines").exitCode, 0);
    const std::string expected = Output(".b.avi") + Output(".c.unfinished-12.avi") + Output("a.avi");
    WriteText("lines/.a.avi.unfinished-0123456789abcdef.jsonl", Output("a.avi").substr(0, 300));
    WriteText("lines/notes.txt", "of mine");
    EXPECT_EQ(Merged("lines"), expected);
}

TEST_F(MergeCommand, RefusesWhatIsOfOtherOptionsOperationsOrVersions) {
    WriteVideos({"a.avi", "deep/b.avi"});
    ASSERT_EQ(Scan("sharpness", "lines").exitCode, 0);
    const std::string whole = Output("deep/b.avi");
    ASSERT_EQ(Scan("sharpness", "lines", {"--every", "2", "--shard", "2/2"}).exitCode, 0);
    ExpectRefusal("lines/deep/b.avi.jsonl: is of ", "but lines/a.avi.jsonl is of ");
    ASSERT_EQ(Scan("fire", "lines", {"--shard", "2/2"}).exitCode, 0);
    ExpectRefusal("lines/deep/b.avi.jsonl: is of ", "but lines/a.avi.jsonl is of ");
    std::string older = whole;
    older.replace(older.find(QUARRY_COMMAND_VERSION), 1, "0");
    WriteText("lines/deep/b.avi.jsonl", older);
    ExpectRefusal("lines/deep/b.avi.jsonl: is of ", "but lines/a.avi.jsonl is of ");
    WriteText("lines/deep/b.avi.jsonl", whole);
    EXPECT_EQ(Merged("lines"), Output("a.avi") + whole);
}

TEST_F(MergeCommand, RefusesWhatIsOfOtherInstructionsWhereTheyCount) {
    if (!cv::checkHardwareSupport(CV_CPU_AVX2)) GTEST_SKIP() << "no AVX2";
    WriteVideos({"a.avi", "b.avi"}, {160, 140});
    for (const char* const operation : {"flow", "people", "sharpness"}) {
        fs::remove_all(folder / "lines");
        ASSERT_EQ(Scan(operation, "lines", {"--shard", "1/2"}).exitCode, 0);
        const WithoutAvx2 without;
        ASSERT_EQ(Scan(operation, "lines", {"--shard", "2/2"}).exitCode, 0);
        if (std::string(operation) == "sharpness") {
            EXPECT_EQ(Merged("lines"), Output("a.avi") + Output("b.avi"));
            continue;
        }
        ExpectRefusal("lines/b.avi.jsonl: is of ", "\"instructions\":\"baseline\"}, but lines/a.avi.jsonl is of ");
        ExpectRefusal("lines/b.avi.jsonl: is of ", "\"instructions\":\"avx2\"}\n");
    }
}

TEST_F(MergeCommand, RefusesUnfinishedAndForeignFiles) {
    WriteVideos({"a.avi", "b.avi"});
    ASSERT_EQ(Scan("sharpness", "lines").exitCode, 0);
    const std::string whole = Output("b.avi");
    const std::string head = whole.substr(0, whole.find('\n') + 1);
    for (const std::string& spoilt :
         {std::string(), whole.substr(0, whole.size() - 1), whole.substr(0, whole.size() / 2), head,
          head + "{\"frames\":1}\n", head + "{\"frames\":\"0\"}\n", head + "{\"frames\":0,\"error\":3}\n",
          std::string("{}\n{\"frames\":0}\n"), std::string("[]\n{\"frames\":0}\n"),
          std::string("{\"frame\":0}\n{\"frame\":1}\n"), std::string("text\n"), whole + whole}) {
        WriteText("lines/b.avi.jsonl", spoilt);
        ExpectRefusal("lines/b.avi.jsonl: not the finished lines of a video");
    }
}

TEST_F(MergeCommand, RefusesTheSameVideoTwice) {
    WriteVideos({"a.avi", "b.avi"});
    ASSERT_EQ(Scan("sharpness", "lines").exitCode, 0);
    fs::create_directory(folder / "lines/copy");
    fs::copy_file(folder / "lines/a.avi.jsonl", folder / "lines/copy/a.avi.jsonl");
    ExpectRefusal("lines/copy/a.avi.jsonl: is of the same video as lines/a.avi.jsonl");
}

TEST_F(MergeCommand, RefusesWhatHoldsNothing) {
    ExpectOneLineError({"merge", "videos"}, 1, "videos: no finished lines");
    ExpectOneLineError({"merge", "nowhere"}, 1, "nowhere: cannot be read");
    ExpectOneLineError({"merge"}, 2, "DIR");
}

TEST_F(MergeCommand, DoesNotWriteBelowWhatItReads) {
    WriteVideos({"a.avi"});
    ASSERT_EQ(Scan("sharpness", "lines").exitCode, 0);
    for (const char* const out : {"lines/all.jsonl", "./lines/deep/all.jsonl", "videos/../lines/all.jsonl"}) {
        ExpectOneLineError({"merge", "lines", "--out", out}, 2, out);
    }
    EXPECT_EQ(FilesIn(folder / "lines"), std::set<std::string>{"a.avi.jsonl"});
}

TEST_F(MergeCommand, AFullDiskIsAFailure) {
    WriteVideos({"a.avi"});
    ASSERT_EQ(Scan("sharpness", "lines").exitCode, 0);
    const std::string err = folder.string() + ".err";
    EXPECT_EQ(ExitCodeOf(Start({"merge", "lines"}, "/dev/full", err)), 1);
    EXPECT_EQ(ContentsOf(err), "quarry: standard output: cannot be written in full\n");
    fs::remove(err);
    ExpectOneLineError({"merge", "lines", "--out", "nowhere/all.jsonl"}, 1, "nowhere/all.jsonl");
}

}  // namespace
