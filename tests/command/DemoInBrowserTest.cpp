#include "host/CommandFixture.h"
#include "support/Footage.h"

using namespace quarry::test;

namespace {

enum class Scheme { Dark, Light };  // in the numbers of the browser's setting

/// Opens pages from disk in a browser that has no window and no network.
class DemoInBrowser : public QuarryCommand {
protected:
    void SetUp() override {
        QuarryCommand::SetUp();
        if (std::system("command -v chromium >/dev/null") != 0) GTEST_SKIP() << "no chromium";
        fs::copy_file(QUARRY_SOURCE_DIRECTORY "/tests/command/PageWatcher.html", folder / "watcher.html");
    }

    /// What the watcher says of a page of the folder, with what went to the browser's console as further faults.
    json Seen(const std::string& page, Scheme scheme) const {
        const std::string place = folder.string();
        const std::string browser =
            "HOME='" + place + "' timeout 120 chromium --headless --no-sandbox --disable-gpu --disable-dev-shm-usage" +
            " --no-first-run --disable-background-networking --disable-component-update --disable-sync" +
            " --host-resolver-rules='MAP * ~NOTFOUND' --allow-file-access-from-files --enable-logging=stderr" +
            " --blink-settings=preferredColorScheme=" + std::to_string(static_cast<int>(scheme)) +
            " --virtual-time-budget=5000 --user-data-dir='" + place + "/profile' --dump-dom 'file://" + place +
            "/watcher.html?page=" + page + "' >'" + place + "/dom' 2>'" + place + "/console'";
        EXPECT_EQ(std::system(browser.c_str()), 0) << ContentsOf(folder / "console");
        const std::string dom = ContentsOf(folder / "dom");
        const std::size_t begin = dom.find("{\"faults\"");
        json seen = json::parse(dom.substr(begin, dom.find("</body>") - begin));
        for (const std::string& line : Lines(ContentsOf(folder / "console"))) {
            const std::size_t message = line.find(":CONSOLE");
            if (message != std::string::npos) seen["faults"].push_back(line.substr(message));
        }
        return seen;
    }

    void ExpectFinishedPage(const Arguments& demo) const {
        ASSERT_EQ(Run(demo).exitCode, 0);
        for (const Scheme scheme : {Scheme::Light, Scheme::Dark}) {
            const json seen = Seen("demo/report.html", scheme);
            EXPECT_EQ(seen.at("faults"), json::array());
            EXPECT_GE(seen.at("pictures"), 60);
            EXPECT_EQ(seen.at("dark"), scheme == Scheme::Dark);
        }
    }

    void ExpectFault(const std::string& body, const std::string& fault) const {
        WriteText("page.html", "<!DOCTYPE html><body style=\"color: #000; background: #fff\">" + body + "</body>");
        EXPECT_NE(Seen("page.html", Scheme::Light).at("faults").dump().find(fault), std::string::npos) << body;
    }
};

TEST_F(DemoInBrowser, ShowsDrawnScenesNarrowAndWideInLightAndDark) {
    ExpectFinishedPage({"demo", "--media", "missing"});
}

TEST_F(DemoInBrowser, ShowsRealFootageNarrowAndWideInLightAndDark) {
    const fs::path media = MediaDirectory();
    if (!fs::exists(media / "vtest.avi")) GTEST_SKIP() << "no footage";
    ExpectFinishedPage({"demo", "--media", media.string()});
}

TEST_F(DemoInBrowser, WouldTellOfFaults) {
    ExpectFault(R"(<img alt="lost" src="lost.png">)", "at 360 px: no picture: lost");
    ExpectFault(R"(<img alt="broken" src="data:image/png;base64,AAAA">)", "at 1600 px: no picture: broken");
    ExpectFault(R"(<p style="width: 900px">wide</p>)", "at 360 px: 548 px too wide");
    ExpectFault("<script>throw new Error('thrown')</script>", "Uncaught Error: thrown");
    ExpectFault("<script>console.error('logged')</script>", "logged");
    ExpectFault("<script>fetch('http://far.example/')</script>", "asks for http://far.example/");
    ExpectFault(R"(<link rel="stylesheet" href="http://far.example/">)", "asks for http://far.example/");
}

}  // namespace
