#include "command/CommandFixture.h"

using namespace quarry::test;

namespace {

/// Runs a line of bash and gives what it wrote.
std::string Bash(const std::string& line) {
    return OutputOf("bash --norc -c '" + line + "'");
}

std::string Loaded() {
    return "source " QUARRY_SOURCE_DIRECTORY "/packaging/quarry.bash; ";
}

/// What is offered for the last of these words.
std::set<std::string> Offered(const Arguments& words) {
    std::string line = Loaded() + "COMP_WORDS=(" QUARRY_COMMAND;
    for (const std::string& word : words) line += " \"" + word + "\"";
    line += "); COMP_CWORD=" + std::to_string(words.size()) + R"(; _quarry; printf "%s\n" "${COMPREPLY[@]}")";
    std::set<std::string> offered;
    for (const std::string& candidate : Lines(Bash(line))) {
        if (!candidate.empty()) offered.insert(candidate);
    }
    return offered;
}

using Words = std::set<std::string>;

TEST_F(QuarryCommand, CompletionOffersTheVerbsOfTheHelp) {
    const Words verbs = Offered({""});
    for (const char* const verb : {"sharpness", "diff", "background", "track", "list", "describe"}) {
        EXPECT_EQ(verbs.count(verb), 1U) << verb;
    }
    for (const std::string& verb : verbs) {
        EXPECT_NE(Run({verb, "--help"}).out.find("\nUsage: quarry " + verb + " "), std::string::npos) << verb;
    }
    EXPECT_EQ(Offered({"shar"}), Words{"sharpness"});
    EXPECT_EQ(Offered({"paint"}), Words{});
    EXPECT_EQ(Offered({"--v"}), Words{"--version"});
}

TEST_F(QuarryCommand, CompletionOffersTheOptionsOfTheVerb) {
    EXPECT_EQ(Offered({"diff", "-"}), (Words{"--help", "--out", "--json"}));
    EXPECT_EQ(Offered({"background", "clip.avi", "--s"}), (Words{"--sensitivity", "--speedup"}));
    EXPECT_EQ(Offered({"describe", "mosse-tracker", "--m"}), Words{"--markdown"});
}

TEST_F(QuarryCommand, CompletionOffersTheOperationsThatCanBeDescribed) {
    Words all;
    for (const json& operation : RunJson({"list"})) {
        all.insert(operation.at("name").get<std::string>());
    }
    EXPECT_EQ(Offered({"describe", ""}), all);
    EXPECT_EQ(Offered({"describe", "mosse"}), Words{"mosse-tracker"});
    EXPECT_EQ(Offered({"describe", "--json", "mosse"}), Words{"mosse-tracker"});
}

TEST_F(QuarryCommand, CompletionOffersTheOperationsOfScanAndTheOptionsOfBoth) {
    EXPECT_EQ(Offered({"scan", "s"}), Words{"sharpness"});
    EXPECT_EQ(Offered({"scan", "--manifest", "videos", "f"}), (Words{"fire", "flow"}));
    EXPECT_EQ(Offered({"scan", "--ma"}), Words{"--manifest"});
    EXPECT_EQ(Offered({"scan", "track", "--m"}), (Words{"--manifest", "--mode"}));
    EXPECT_EQ(Offered({"track", "--m"}), Words{"--mode"});
    EXPECT_EQ(Offered({"scan", "track", "t"}), Words{});
    EXPECT_EQ(Offered({"scan", "--manifest", "f"}), Words{}) << "a file";
}

TEST_F(QuarryCommand, CompletionLeavesFilesToTheShell) {
    EXPECT_EQ(Offered({"sharpness", ""}), Words{});
    EXPECT_EQ(Offered({"track", "clip.avi", "--out", "tra"}), Words{});
    EXPECT_EQ(Bash(Loaded() + "complete -p quarry"), "complete -o default -F _quarry quarry\n");
}

}  // namespace
