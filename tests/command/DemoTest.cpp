#include "host/CommandFixture.h"
#include "support/Footage.h"

using namespace quarry::test;

namespace {

void ExpectSelfContainedPage(const std::string& page) {
    EXPECT_EQ(page.rfind("<!DOCTYPE html>", 0), 0U);
    EXPECT_NE(page.find("</html>"), std::string::npos);
    for (const char* const outside : {"http:", "https:", "<script", "<link", "@import", "url(", "src=\"/", "src=\"."}) {
        EXPECT_EQ(page.find(outside), std::string::npos) << outside;
    }
    for (std::size_t at = page.find("src=\""); at != std::string::npos; at = page.find("src=\"", at + 1)) {
        EXPECT_EQ(page.compare(at + 5, 11, "data:image/"), 0) << page.substr(at, 40);
    }
    EXPECT_NE(page.find("<section id=\"operations\">"), std::string::npos);
    for (const char* const part : {"Time per frame, median", "<svg", "learning", "time, s", "foreground mask",
                                   "prefers-color-scheme", "Time per frame"}) {
        EXPECT_NE(page.find(part), std::string::npos) << part;
    }
    const std::set<std::string> paired = {"section", "figure", "div", "svg", "table", "tr",
                                          "td",      "h2",     "h3",  "p",   "span"};
    for (const std::string& tag : paired) {
        const auto count = [&](const std::string& text) {
            std::size_t found = 0;
            for (std::size_t at = page.find(text); at != std::string::npos; at = page.find(text, at + 1)) ++found;
            return found;
        };
        EXPECT_EQ(count("<" + tag + ">") + count("<" + tag + " "), count("</" + tag + ">")) << tag;
    }
}

/// The page without the letters that stand for pixels.
std::string WithoutPictures(const std::string& page) {
    std::string rest;
    std::size_t end = 0;
    for (std::size_t at = page.find(";base64,"); at != std::string::npos; at = page.find(";base64,", end)) {
        rest += page.substr(end, at - end);
        end = page.find('"', at);
    }
    return rest + page.substr(end);
}

/// Every embedded picture decodes.
void ExpectPicturesDecode(const std::string& page, std::size_t atLeast) {
    const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::size_t pictures = 0;
    for (std::size_t at = page.find(";base64,"); at != std::string::npos; at = page.find(";base64,", at + 1)) {
        const std::size_t begin = at + 8;
        const std::size_t end = page.find('"', begin);
        std::vector<uint8_t> bytes;
        uint32_t bits = 0;
        int count = 0;
        for (std::size_t i = begin; i < end && page[i] != '='; ++i) {
            const std::size_t digit = alphabet.find(page[i]);
            ASSERT_NE(digit, std::string::npos);
            bits = bits << 6 | static_cast<uint32_t>(digit);
            count += 6;
            if (count >= 8) bytes.push_back(static_cast<uint8_t>(bits >> (count -= 8) & 255));
        }
        EXPECT_FALSE(cv::imdecode(bytes, cv::IMREAD_COLOR).empty()) << "picture " << pictures;
        ++pictures;
    }
    EXPECT_GE(pictures, atLeast);
}

TEST_F(QuarryCommand, DemoWithoutFootageDrawsItsOwnAndSaysSo) {
    const Outcome outcome = Run({"demo", "--media", "missing", "--out", "page/here"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, "page/here/report.html\n");
    const std::vector<std::string> lines = Lines(outcome.err);
    ASSERT_EQ(lines.size(), 1U) << outcome.err;
    EXPECT_EQ(lines[0].rfind("quarry: missing:", 0), 0U) << lines[0];
    EXPECT_EQ(FilesIn(folder / "page/here"), (std::set<std::string>{"report.html"}));
    const std::string page = ContentsOf(folder / "page/here/report.html");
    ExpectSelfContainedPage(page);
    ExpectPicturesDecode(page, 60);
    EXPECT_NE(page.find("No real footage"), std::string::npos);
    for (const std::string& operation : Lines(Run({"list", "--json"}).out)) {
        const auto name = json::parse(operation)["name"].get<std::string>();
        EXPECT_NE(page.find("<section id=\"" + name + "\">"), std::string::npos) << name;
    }
}

TEST_F(QuarryCommand, DemoShowsTheFolderItIsGiven) {
    fs::create_directory(folder / "media");
    WriteVideo("media/vtest.avi", 50, {160, 120});
    WritePicture("media/a<b>&.png", 10, 0);
    WritePicture("media/soft.jpg", 11, 2);
    WriteText("media/broken.jpg", "not a picture");
    const Outcome outcome = Run({"demo"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, "demo/report.html\n");
    const std::string page = ContentsOf(folder / "demo/report.html");
    ExpectSelfContainedPage(page);
    EXPECT_EQ(page.find("No real footage"), std::string::npos);
    EXPECT_NE(page.find("a&lt;b&gt;&amp;.png"), std::string::npos);
    EXPECT_NE(page.find("vtest.avi, 50 frames"), std::string::npos);
}

TEST_F(QuarryCommand, DemoManagesOneFrameAndOnePicture) {
    fs::create_directory(folder / "media");
    WriteVideo("media/vtest.avi", 1);
    WritePicture("media/only.png", 12, 0);
    const Outcome outcome = Run({"demo"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    const std::string page = ContentsOf(folder / "demo/report.html");
    ExpectSelfContainedPage(page);
    EXPECT_EQ(WithoutPictures(page).find("nan"), std::string::npos);
}

TEST_F(QuarryCommand, DemoSaysThatTheDetectorDidNotRunWithoutItsModel) {
    fs::create_directory(folder / "media");
    WriteVideo("media/vtest.avi", 1);
    WritePicture("media/only.png", 12, 0);
    const Outcome outcome = Run({"demo", "--cascade", "no<model>.xml"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
    const std::string page = ContentsOf(folder / "demo/report.html");
    ExpectSelfContainedPage(page);
    EXPECT_NE(page.find("there is no model of faces that can be read at no&lt;model&gt;.xml"), std::string::npos);
}

TEST_F(QuarryCommand, DemoNamesAnOutputThatCannotBeWritten) {
    WriteText("file", "");
    fs::create_directories(folder / "taken/report.html");
    ExpectOneLineError({"demo", "--out", "file"}, 1, "file");
    ExpectOneLineError({"demo", "--out", "taken"}, 1, "taken/report.html");
    EXPECT_EQ(FilesIn(folder / "taken"), (std::set<std::string>{"report.html"}));
}

TEST_F(QuarryCommand, DemoRunsOnRealFootage) {
    const fs::path media = quarry::test::MediaDirectory();
    if (!fs::exists(media / "vtest.avi")) GTEST_SKIP() << "no footage";
    const Outcome outcome = Run({"demo", "--media", media.string()});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    const std::string page = ContentsOf(folder / "demo/report.html");
    ExpectSelfContainedPage(page);
    ExpectPicturesDecode(page, 60);
    EXPECT_NE(page.find("first 300 of 795"), std::string::npos) << "the page says that it shows a part";
}

}  // namespace
