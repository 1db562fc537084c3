#include "command/CommandFixture.h"

using namespace quarry::test;

namespace {

TEST_F(QuarryCommand, TellsItsVersion) {
    const Outcome outcome = Run({"--version"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, "quarry " QUARRY_COMMAND_VERSION "\n");
    EXPECT_EQ(outcome.err, "");
}

TEST_F(QuarryCommand, HelpNamesTheVerbsThatRunNoOperation) {
    const Outcome outcome = Run({"--help"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
    for (const char* const verb : {"scan", "merge", "list", "describe"}) {
        EXPECT_NE(outcome.out.find(std::string("\n  ") + verb + " "), std::string::npos) << verb;
        EXPECT_EQ(Run({verb, "--help"}).exitCode, 0) << verb;
    }
}

TEST_F(QuarryCommand, WrongUsageEndsWithTwoAndNamesTheArgument) {
    ExpectOneLineError({}, 2, "verb");
    ExpectOneLineError({"paint"}, 2, "paint");
    ExpectOneLineError({"--paint"}, 2, "--paint");
    ExpectOneLineError({"list", "more"}, 2, "more");
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
