#include <regex>

#include "command/CommandFixture.h"

using namespace quarry::test;

namespace {

/// Pages of the manual, made when the command was built.
class ManPages : public QuarryCommand {
protected:
    void SetUp() override {
        if (!fs::exists(QUARRY_MAN_PAGES)) GTEST_SKIP() << "built without help2man";
        QuarryCommand::SetUp();
    }

    /// The page's source without the backslashes before its hyphens.
    static std::string Page(const std::string& name) {
        return std::regex_replace(ContentsOf(fs::path(QUARRY_MAN_PAGES) / (name + ".1")), std::regex(R"(\\-)"), "-");
    }

    std::vector<std::string> Verbs() const {
        const std::string help = Run({"--help"}).out;
        const std::string section = help.substr(help.find("\nSubcommands:"));
        std::vector<std::string> verbs;
        for (const std::string& line : Lines(section.substr(0, section.find("\n\n")))) {
            std::smatch match;
            if (std::regex_search(line, match, std::regex("^  ([a-z-]+)"))) verbs.push_back(match[1]);
        }
        return verbs;
    }
};

TEST_F(ManPages, ThePageOfTheCommandNamesEveryVerb) {
    const std::string page = Page("quarry");
    for (const char* const part : {"NAME", "SYNOPSIS", "DESCRIPTION", "EXAMPLES", "EXIT STATUS", "SEE ALSO"}) {
        EXPECT_TRUE(std::regex_search(page, std::regex("\n\\.SH \"?" + std::string(part) + "\"?\n"))) << part;
    }
    EXPECT_GE(Verbs().size(), 10U);
    for (const std::string& verb : Verbs()) {
        EXPECT_NE(page.find("\n.TP\n" + verb + "\n"), std::string::npos) << verb;
        EXPECT_NE(page.find(".BR quarry-" + verb + " (1)"), std::string::npos) << verb;
    }
    for (const char* const code : {"0", "1", "2", "130"}) {
        EXPECT_NE(page.find(std::string("\n.B ") + code + "\n"), std::string::npos) << code;
    }
}

TEST_F(ManPages, EveryVerbHasAPageWithItsOptionsAndNoOtherHas) {
    std::set<std::string> expected = {"quarry.1"};
    for (const std::string& verb : Verbs()) {
        expected.insert("quarry-" + verb + ".1");
        const std::string page = Page("quarry-" + verb);
        EXPECT_NE(page.find("\nquarry-" + verb + " - "), std::string::npos) << verb;
        for (const std::string& line : Lines(Run({verb, "--help"}).out)) {
            std::smatch option;
            if (!std::regex_search(line, option, std::regex("^  (--[a-z-]+)"))) continue;
            EXPECT_NE(page.find("\\fB" + option[1].str() + "\\fR"), std::string::npos) << verb << option[1];
        }
    }
    EXPECT_EQ(FilesIn(QUARRY_MAN_PAGES), expected);
}

TEST_F(ManPages, NothingInThemDependsOnTheMachine) {
    for (const std::string& name : FilesIn(QUARRY_MAN_PAGES)) {
        const std::string page = ContentsOf(fs::path(QUARRY_MAN_PAGES) / name);
        EXPECT_EQ(page.find(QUARRY_SOURCE_DIRECTORY), std::string::npos) << name;
        EXPECT_EQ(page.find("./quarry"), std::string::npos) << name;
    }
}

}  // namespace
