#include "host/CommandFixture.h"

using namespace quarry::test;

namespace {

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
    for (const char* const verb :
         {"sharpness", "diff",     "similarity", "denoise",    "background", "track",    "flow",    "contours",
          "occupancy", "clusters", "inside",     "shape-rate", "rect",       "clothing", "colours", "align",
          "rotate",    "detect",   "people",     "fire",       "scan",       "merge"}) {
        EXPECT_NE(outcome.out.find(verb), std::string::npos) << verb;
        EXPECT_EQ(Run({verb, "--help"}).exitCode, 0) << verb;
    }
    const std::string background = Run({"background", "--help"}).out;
    for (const char* const verb : {"sharpness", "diff",      "similarity", "denoise", "background", "track", "flow",
                                   "contours",  "occupancy", "clusters",   "inside",  "shape-rate", "rect",  "clothing",
                                   "colours",   "align",     "rotate",     "detect",  "people",     "fire"}) {
        const std::string help = Run({verb, "--help"}).out;
        EXPECT_NE(help.find("--json"), std::string::npos) << verb;
        EXPECT_NE(help.find(std::string("\n  quarry ") + verb + " "), std::string::npos) << verb << " has an example";
    }
    for (const char* const option : {"--out", "--json", "--sensitivity", "--history", "--adaptation", "--speedup"}) {
        EXPECT_NE(background.find(option), std::string::npos) << option;
    }
}

TEST_F(QuarryCommand, WrongUsageEndsWithTwoAndNamesTheArgument) {
    WriteVideo("clip.avi", 2);
    ExpectOneLineError({}, 2, "verb");
    ExpectOneLineError({"paint"}, 2, "paint");
    ExpectOneLineError({"--paint"}, 2, "--paint");
    ExpectOneLineError({"--paint", "clip.avi"}, 2, "--paint");
    ExpectOneLineError({"sharpness"}, 2, "IMAGE");
    ExpectOneLineError({"sharpness", "a.png", "--colour"}, 2, "--colour");
    ExpectOneLineError({"background"}, 2, "VIDEO");
    ExpectOneLineError({"background", "clip.avi", "other.avi"}, 2, "other.avi");
    ExpectOneLineError({"background", "clip.avi", "--out"}, 2, "--out");
}

TEST_F(QuarryCommand, AnUnknownVerbIsNamedAndTheNearestOneToo) {
    const std::vector<std::pair<std::string, std::string>> suggestions = {
        {"flw", "did you mean flow?"},           {"folw", "did you mean flow?"},
        {"colors", "did you mean colours?"},     {"shrpnes", "did you mean sharpness?"},
        {"persons", "quarry --help lists them"}, {"x", "quarry --help lists them"}};
    for (const auto& [verb, suggestion] : suggestions) {
        for (const Arguments& arguments : {Arguments{verb}, Arguments{verb, "clip.avi", "--json"}}) {
            const Outcome outcome = Run(arguments);
            EXPECT_EQ(outcome.exitCode, 2) << verb;
            EXPECT_EQ(outcome.err, "quarry: there is no verb " + verb + "; " + suggestion + "\n");
        }
    }
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

}  // namespace
