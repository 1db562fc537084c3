#include "command/ArchiveFixture.h"

using namespace quarry::test;

namespace {

using Names = std::set<std::string>;
using OrderedJson = nlohmann::ordered_json;

class ScanCommand : public Archive {
protected:
    /// As coreutils computes it.
    std::string Sha256Of(const fs::path& path) const {
        return OutputOf("sha256sum < '" + (folder / path).string() + "'").substr(0, 64);
    }

    std::string HeadOf(const std::string& output) const {
        const std::vector<std::string> lines = Lines(ContentsOf(folder / output));
        return lines.empty() ? "" : lines.front();
    }

    /// The objects of the frames, and a check of those around them.
    std::vector<json> FramesIn(const std::string& output) const {
        std::vector<json> lines = LinesOf(output);
        EXPECT_GE(lines.size(), 2U);
        EXPECT_EQ(lines.back(), (json{{"frames", lines.size() - 2}}));
        return {lines.begin() + 1, lines.end() - 1};
    }

    static void ForgetMilliseconds(std::vector<json>& lines) {
        for (json& line : lines) EXPECT_EQ(line.erase("milliseconds"), 1U);
    }

    void ExpectDone(const Outcome& outcome, int done, int skipped) const {
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, "quarry: " + std::to_string(done) + " done, " + std::to_string(skipped) +
                                   " skipped, 0 bad, 0 failed\n");
    }
};

TEST_F(ScanCommand, LinesAreThoseOfTheVerb) {
    WriteVideo("videos/clip.avi", 14, {160, 140});
    const std::vector<std::pair<std::string, Arguments>> verbs = {
        {"background", {"--sensitivity", "0.7", "--history", "20"}},
        {"track", {"--rect", "10,24,32,32", "--mode", "1"}},
        {"flow", {"--quality", "0.1", "--line", "0,0.2,1,0.7", "--values", "5"}},
        {"contours", {"--rect", "0,0,120,130", "--method", "none"}},
        {"occupancy", {"--grid", "5x4", "--fill", "0.2"}},
        {"clusters", {"--min-area", "0.002", "--every-pixel"}},
        {"people", {"--area", "0,0,1,1", "--sensitivity", "0.2"}},
    };
    for (const auto& [verb, options] : verbs) {
        std::vector<json> expected = RunJson(Arguments{verb, "videos/clip.avi"} + options);
        ASSERT_EQ(expected.size(), 14U) << verb;
        ForgetMilliseconds(expected);
        ExpectDone(Scan(verb, verb, options), 1, 0);
        EXPECT_EQ(FramesIn(verb + "/clip.avi.jsonl"), expected) << verb;
    }
}

TEST_F(ScanCommand, LinesOfVerbsOverPicturesAreThoseOfTheFrames) {
    WriteVideo("videos/clip.avi", 5);
    const std::vector<cv::Mat> frames = FramesOf(folder / "videos/clip.avi");
    Arguments pictures;
    for (std::size_t i = 0; i < frames.size(); ++i) {
        pictures.push_back(std::to_string(i) + ".png");
        cv::imwrite((folder / pictures.back()).string(), frames[i]);
    }
    std::vector<std::pair<std::string, Arguments>> verbs = {
        {"sharpness", {}}, {"sharpness", {"--face=-20,30,60,30"}}, {"fire", {}}};
    if (fs::exists(kModel)) verbs.push_back({"detect", {"--cascade", kModel, "--mode", "1"}});
    for (const auto& [verb, options] : verbs) {
        std::vector<json> expected = RunJson(Arguments{verb} + options + pictures);
        ASSERT_EQ(expected.size(), frames.size()) << verb;
        for (std::size_t i = 0; i < expected.size(); ++i) {
            for (const char* const key : {"file", "width", "height", "milliseconds"}) expected[i].erase(key);
            expected[i].update({{"frame", i}, {"timestamp", (i + 1) * 1'000'000}});
        }
        ExpectDone(Scan(verb, "lines", options), 1, 0);
        EXPECT_EQ(FramesIn("lines/clip.avi.jsonl"), expected) << verb;
    }
}

TEST_F(ScanCommand, TakesTheFramesThatAreAskedFor) {
    WriteVideo("videos/clip.avi", 20);
    const std::vector<json> all = RunJson({"contours", "videos/clip.avi", "--frames", "3:17"});
    ExpectDone(Scan("sharpness", "lines", {"--frames", "3:17", "--every", "5"}), 1, 0);
    const std::vector<json> frames = FramesIn("lines/clip.avi.jsonl");
    ASSERT_EQ(frames.size(), 3U);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(frames[i].at("frame"), 3 + 5 * i);
        EXPECT_EQ(frames[i].at("timestamp"), all[5 * i].at("timestamp"));
    }
}

TEST_F(ScanCommand, TheFirstLineSaysWhatTheOthersDependOn) {
    WriteVideo("videos/deep/clip.avi", 4);
    ExpectDone(Scan("sharpness", "lines"), 1, 0);
    const auto bytes = fs::file_size(folder / "videos/deep/clip.avi");
    EXPECT_EQ(
        HeadOf("lines/deep/clip.avi.jsonl"),
        R"({"quarry":")" QUARRY_COMMAND_VERSION
        R"(","operation":"sharpness","options":{"face":null,"first":0,"end":null,"every":1},"video":"deep/clip.avi",)"
        R"("bytes":)" +
            std::to_string(bytes) + R"(,"sha256":")" + Sha256Of("videos/deep/clip.avi") + "\"}");
}

TEST_F(ScanCommand, TheFirstLineHasAllOptionsInAFixedOrder) {
    WriteVideo("videos/clip.avi", 2, {160, 140});
    const std::string instructions =
        std::string(R"("instructions":")") + (cv::checkHardwareSupport(CV_CPU_AVX2) ? "avx2" : "baseline") + "\"}";
    const std::vector<std::pair<Arguments, std::string>> calls = {
        {{"background"},
         R"({"sensitivity":0.5,"history":500,"adaptation":10,"speedup":4,"first":0,"end":null,"every":1})"},
        {{"background", "--adaptation", "10.0", "--speedup", "40e-1", "--sensitivity", "5e-1"},
         R"({"sensitivity":0.5,"history":500,"adaptation":10,"speedup":4,"first":0,"end":null,"every":1})"},
        {{"background", "--speedup", "2", "--every", "2", "--sensitivity", "0.50", "--frames", ":9"},
         R"({"sensitivity":0.5,"history":500,"adaptation":10,"speedup":2,"first":0,"end":9,"every":2})"},
        {{"track", "--rect=-1,2,30,40"}, R"({"rect":[-1,2,30,40],"mode":0,"first":0,"end":null,"every":1})"},
        {{"flow", "--detail", "0.3"},
         R"({"detail":0.3,"quality":null,"line":null,"values":32,"first":0,"end":null,"every":1,)" + instructions},
        {{"contours", "--method", "none"},
         R"({"rect":null,"method":"none","select":"area","first":0,"end":null,"every":1})"},
        {{"occupancy"}, R"({"grid":"16x12","fill":0.3,"min-area":0.001,"first":0,"end":null,"every":1})"},
        {{"clusters", "--every-pixel"}, R"({"min-area":0.001,"every-pixel":true,"first":0,"end":null,"every":1})"},
        {{"people", "--area", "0,0,1,1", "--area", "0,0.0,.50,1"},
         R"({"sensitivity":0.4,"min-size":0,"max-size":1,"area":[[0,0,1,1],[0,0,0.5,1]],"first":0,"end":null,"every":1,)" +
             instructions},
        {{"people"},
         R"({"sensitivity":0.4,"min-size":0,"max-size":1,"area":[],"first":0,"end":null,"every":1,)" + instructions},
        {{"fire", "--frames", "0:"}, R"({"first":0,"end":null,"every":1})"},
    };
    for (const auto& [call, options] : calls) {
        Scan(call[0], "lines", {call.begin() + 1, call.end()});
        EXPECT_EQ(OrderedJson::parse(HeadOf("lines/clip.avi.jsonl")).at("options").dump(), options);
    }
}

TEST_F(ScanCommand, AModelIsKnownByItsContents) {
    if (!fs::exists(kModel)) GTEST_SKIP() << "no model";
    WriteVideo("videos/clip.avi", 2);
    fs::create_directory(folder / "elsewhere");
    for (const char* const copy : {"model.xml", "elsewhere/model.xml"}) fs::copy_file(kModel, folder / copy);
    ExpectDone(Scan("detect", "lines", {"--cascade", "model.xml"}), 1, 0);
    const json cascade = LinesOf("lines/clip.avi.jsonl").front().at("options").at("cascade");
    EXPECT_EQ(cascade, (json{{"file", "model.xml"}, {"sha256", Sha256Of("model.xml")}}));
    ExpectDone(Scan("detect", "lines", {"--cascade", "elsewhere/model.xml"}), 0, 1);
    std::ofstream(folder / "model.xml", std::ios::app) << "<!-- another one -->\n";
    ExpectDone(Scan("detect", "lines", {"--cascade", "model.xml"}), 1, 0);
    EXPECT_EQ(LinesOf("lines/clip.avi.jsonl").front().at("options").at("cascade").at("sha256"), Sha256Of("model.xml"));
}

TEST_F(ScanCommand, ShardsShareTheListAndNoVideoTwice) {
    WriteVideos({"a.avi", "b.avi", "deep/c.avi", "deep/d.avi", "e.avi", "f.avi", "g.avi"});
    const std::vector<Names> expected = {{"a.avi.jsonl", "deep/d.avi.jsonl", "g.avi.jsonl"},
                                         {"b.avi.jsonl", "e.avi.jsonl"},
                                         {"deep/c.avi.jsonl", "f.avi.jsonl"}};
    for (int i = 1; i <= 3; ++i) {
        const std::string shard = std::to_string(i) + "/3";
        const auto count = static_cast<int>(expected[static_cast<std::size_t>(i) - 1].size());
        ExpectDone(Scan("sharpness", "alone" + std::to_string(i), {"--shard", shard}), count, 0);
        EXPECT_EQ(FilesBelow("alone" + std::to_string(i)), expected[static_cast<std::size_t>(i) - 1]) << shard;
        ExpectDone(Scan("sharpness", "shared", {"--shard", shard}), count, 0);
    }
    ExpectDone(Scan("sharpness", "whole"), 7, 0);
    EXPECT_EQ(Merged("shared"), Merged("whole"));
    ExpectDone(Scan("sharpness", "more", {"--shard", "8/9"}), 0, 0);
    EXPECT_EQ(FilesBelow("more"), Names());
}

TEST_F(ScanCommand, WhatIsFinishedIsSkipped) {
    WriteVideos({"a.avi", "deep/b.avi"});
    ExpectDone(Scan("sharpness", "lines"), 2, 0);
    const std::string before = Merged("lines");
    const auto written = fs::last_write_time(folder / "lines/deep/b.avi.jsonl");
    fs::create_hard_link(folder / "lines/deep/b.avi.jsonl", folder / "same");
    ExpectDone(Scan("sharpness", "lines", {"--threads", "2", "--shard", "2/2"}), 0, 1);
    ExpectDone(Scan("sharpness", "lines"), 0, 2);
    EXPECT_EQ(fs::last_write_time(folder / "lines/deep/b.avi.jsonl"), written);
    EXPECT_TRUE(fs::equivalent(folder / "lines/deep/b.avi.jsonl", folder / "same")) << "not written again";
    WriteVideo("videos/c.avi", 2);
    ExpectDone(Scan("sharpness", "lines"), 1, 2);
    EXPECT_NE(Merged("lines"), before);
}

TEST_F(ScanCommand, AnythingElseIsDoneAnew) {
    WriteVideos({"a.avi", "b.avi"});
    ExpectDone(Scan("sharpness", "lines"), 2, 0);
    const fs::path output = folder / "lines/a.avi.jsonl";
    const std::string whole = ContentsOf(output);
    std::vector<std::string> spoilt = {"", "\n", "not of this\n", whole + whole, whole + "{}\n"};
    for (std::size_t length = 1; length < whole.size(); length += 23) spoilt.push_back(whole.substr(0, length));
    spoilt.push_back(whole.substr(0, whole.size() - 1));
    const std::size_t line = whole.find("{\"frame\":1,");
    spoilt.push_back(whole.substr(0, line) + whole.substr(whole.find('\n', line) + 1));
    std::string older = whole;
    spoilt.push_back(older.replace(older.find(QUARRY_COMMAND_VERSION), 1, "0"));
    for (const std::string& contents : spoilt) {
        std::ofstream(output, std::ios::binary) << contents;
        ExpectDone(Scan("sharpness", "lines"), 1, 1);
        EXPECT_EQ(ContentsOf(output), whole) << contents;
    }
    ExpectDone(Scan("sharpness", "lines", {"--every", "2"}), 2, 0);
    EXPECT_NE(ContentsOf(output), whole);
    ExpectDone(Scan("fire", "lines"), 2, 0);
    ExpectDone(Scan("sharpness", "lines"), 2, 0);
    EXPECT_EQ(ContentsOf(output), whole);
    const auto modified = fs::last_write_time(folder / "videos/a.avi");
    WriteVideo("videos/a.avi", 9);
    fs::last_write_time(folder / "videos/a.avi", modified);
    ExpectDone(Scan("sharpness", "lines"), 1, 1);
    EXPECT_EQ(FramesIn("lines/a.avi.jsonl").size(), 9U);
}

TEST_F(ScanCommand, WhatDependsOnInstructionsIsDoneAnewWithOthers) {
    if (!cv::checkHardwareSupport(CV_CPU_AVX2)) GTEST_SKIP() << "no AVX2";
    WriteVideos({"a.avi"}, {160, 140});
    for (const char* const operation : {"flow", "people", "sharpness"}) {
        ExpectDone(Scan(operation, operation), 1, 0);
        const bool depends = std::string(operation) != "sharpness";
        const WithoutAvx2 without;
        ExpectDone(Scan(operation, operation), depends ? 1 : 0, depends ? 0 : 1);
        ExpectDone(Scan(operation, operation), 0, 1);
        const json options = LinesOf(std::string(operation) + "/a.avi.jsonl").front().at("options");
        EXPECT_EQ(options.value("instructions", ""), depends ? "baseline" : "");
    }
}

TEST_F(ScanCommand, ATruncatedVideoIsPlayedAsFarAsItGoes) {
    WriteVideo("videos/half.avi", 20);
    const std::string whole = ContentsOf(folder / "videos/half.avi");
    WriteText("videos/half.avi", whole.substr(0, whole.size() / 2));
    std::vector<json> expected = RunJson({"background", "videos/half.avi"});
    ForgetMilliseconds(expected);
    ExpectDone(Scan("background", "lines"), 1, 0);
    EXPECT_EQ(FramesIn("lines/half.avi.jsonl"), expected);
    EXPECT_LT(expected.size(), 20U);
}

}  // namespace
