#include <algorithm>
#include <cctype>

#include "command/CommandFixture.h"

using namespace quarry::test;

namespace {

constexpr int kFrames = 12;

/// A verb with files and options that are right.
struct Call {
    std::string verb;
    Arguments names;  ///< of the inputs, as the help has them
    Arguments inputs;
    Arguments options;  ///< those that are required, but for --out
    std::string out;    ///< empty: the verb writes no file
    bool needsOut = false;
};

const std::vector<Call> kCalls = {
    {"sharpness", {"IMAGE"}, {"good.png"}, {}, ""},
    {"diff", {"FIRST", "SECOND"}, {"good.png", "other.png"}, {}, "out.png"},
    {"similarity", {"FIRST", "SECOND"}, {"embedding.json", "embedding.json"}, {}, ""},
    {"denoise", {"IMAGE"}, {"good.png"}, {}, "out.png", true},
    {"background", {"VIDEO"}, {"good.avi"}, {}, "out.avi"},
    {"track", {"VIDEO"}, {"good.avi"}, {"--rect", "2,24,16,16"}, "out.avi"},
    {"flow", {"VIDEO"}, {"good.avi"}, {}, "out.avi"},
    {"contours", {"VIDEO"}, {"good.avi"}, {}, "out.avi"},
    {"occupancy", {"INPUT"}, {"good.png"}, {}, "out.png"},
    {"occupancy", {"INPUT"}, {"good.avi"}, {}, "out.avi"},
    {"clusters", {"INPUT"}, {"good.png"}, {}, "out.png"},
    {"clusters", {"INPUT"}, {"good.avi"}, {}, "out.avi"},
    {"inside", {"POLYGON", "CONTOUR"}, {"polygon.json", "polygon.json"}, {}, ""},
    {"shape-rate", {"BEFORE", "AFTER"}, {"polygon.json", "polygon.json"}, {"--interval", "40", "--size", "64x48"}, ""},
    {"rect", {"PICTURE"}, {"good.png"}, {"--center", "20,20", "--size", "10x10"}, "out.png", true},
    {"clothing", {"PICTURE", "POINTS"}, {"good.png", "body.json"}, {}, "out.png"},
    {"detect", {"IMAGE"}, {"good.png"}, {"--cascade", kModel}, "out.png"},
    {"people", {"VIDEO"}, {"good.avi"}, {}, "out.avi"},
    {"colours", {"FIRST", "SECOND"}, {"good.png", "other.png"}, {}, ""},
    {"fire", {"IMAGE"}, {"good.png"}, {}, "out.png"},
    {"align", {"PICTURE", "POINTS"}, {"good.png", "points.json"}, {}, "out.png", true},
    {"rotate", {"PICTURE"}, {"good.png"}, {"--angle", "10"}, "out.png", true},
};

Arguments ArgumentsOf(const Call& call) {
    const Arguments out = call.out.empty() ? Arguments() : Arguments{"--out", call.out};
    return Arguments{call.verb} + call.inputs + call.options + out;
}

/// How a test names it when it fails.
void PrintTo(const Call& call, std::ostream* out) {
    *out << testing::PrintToString(ArgumentsOf(call));
}

/// The arguments without an option and its value.
Arguments Without(Arguments arguments, const std::string& option) {
    const auto found = std::find(arguments.begin(), arguments.end(), option);
    if (found != arguments.end()) arguments.erase(found, found + 2);
    return arguments;
}

std::string EndingOf(const std::string& file) {
    return fs::path(file).extension().string();
}

std::string Pairs(int count) {
    json pairs = json::array();
    for (int i = 0; i < count; ++i) pairs.push_back({(i % 9 + 1) / 10.0, (i * 7 % 9 + 1) / 10.0});
    return pairs.dump();
}

class WithFiles : public QuarryCommand {
protected:
    void SetUp() override {
        QuarryCommand::SetUp();
        WritePicture("good.png", 1, 0);
        WritePicture("other.png", 2, 0);
        WriteVideo("good.avi", kFrames);
        WriteText("embedding.json", json(std::vector<double>(512, 0.5)).dump());
        WriteText("body.json", Pairs(17));
        WriteText("points.json", R"({"source": )" + Pairs(5) + R"(, "destination": )" + Pairs(5) + "}");
        WriteText("polygon.json", "[[0, 0], [1, 0], [1, 1]]");
    }
};

/// What holds for each verb that runs operations.
class EveryVerb : public WithFiles, public testing::WithParamInterface<Call> {
protected:
    void SetUp() override {
        WithFiles::SetUp();
        if (call.verb == "detect" && !fs::exists(kModel)) GTEST_SKIP() << "no model";
    }

    bool takesVideo() const { return call.inputs[0] == "good.avi"; }
    bool takesManyInputs() const { return call.names[0] == "IMAGE" && call.verb != "denoise"; }

    /// Files that are not what their ending says; one of them begins as a good one does.
    void WriteBadFiles(const std::string& ending, const std::string& good) const {
        if (!fs::create_directory(folder / ("folder" + ending))) return;
        WriteText("empty" + ending, "");
        WriteText("text" + ending, "neither picture nor video nor JSON");
        WriteText("noise" + ending, Noise(5000));
        WriteText("headed" + ending, good.substr(0, 40) + Noise(500));
        if (ending == ".avi") WriteVideo("no-frames.avi", 0);
        if (ending != ".json") return;
        WriteText("deep.json", std::string(1'000'000, '['));
        WriteText("closed.json", std::string(100'000, '[') + std::string(100'000, ']'));
        WriteText("infinite.json", "[[1e999, 0], [1, 1], [0, 1]]");
        WriteText("object.json", R"({"a": {"b": []}})");
        WriteText("words.json", R"([["left", "right"], ["up", "down"]])");
        WriteText("no-points.json", "[]");
    }

    const Call& call = GetParam();
};

TEST_P(EveryVerb, HelpHasAnExampleAndJson) {
    const std::string help = Run({call.verb, "--help"}).out;
    EXPECT_NE(help.find("--json"), std::string::npos);
    EXPECT_NE(help.find("\n  quarry " + call.verb + " "), std::string::npos);
    EXPECT_NE(Run({"--help"}).out.find("\n  " + call.verb + " "), std::string::npos);
}

TEST_P(EveryVerb, NamesTheArgumentThatIsMissing) {
    for (std::size_t i = 0; i < call.inputs.size(); ++i) {
        Arguments arguments = ArgumentsOf(call);
        arguments.erase(arguments.begin() + 1 + static_cast<std::ptrdiff_t>(i),
                        arguments.begin() + 1 + static_cast<std::ptrdiff_t>(call.inputs.size()));
        ExpectRefusal(arguments, 2, call.names[i]);
    }
    for (std::size_t i = 0; i < call.options.size(); i += 2) {
        ExpectRefusal(Without(ArgumentsOf(call), call.options[i]), 2, call.options[i]);
    }
    if (call.needsOut) ExpectRefusal(Without(ArgumentsOf(call), "--out"), 2, "--out");
}

TEST_P(EveryVerb, RefusesArgumentsThatItDoesNotKnow) {
    ExpectRefusal(ArgumentsOf(call) + Arguments{"--paint"}, 2, "--paint");
    if (!takesManyInputs()) ExpectRefusal(ArgumentsOf(call) + Arguments{"more.png"}, 2, "more.png");
    if (call.out.empty()) ExpectRefusal(ArgumentsOf(call) + Arguments{"--out", "out.png"}, 2, "--out");
}

TEST_P(EveryVerb, NamesTheInputThatIsNotWhatItShouldBe) {
    const auto expectRefused = [&](std::size_t i, const std::string& bad, const std::string& reason) {
        Arguments arguments = ArgumentsOf(call);
        arguments[1 + i] = bad;
        ExpectRefusal(arguments, 1, bad + reason);
    };
    for (std::size_t i = 0; i < call.inputs.size(); ++i) {
        const std::string ending = EndingOf(call.inputs[i]);
        WriteBadFiles(ending, ContentsOf(folder / call.inputs[i]));
        const std::string kind = ending == ".png" ? "a picture" : ending == ".avi" ? "a video" : "JSON";
        const std::set<std::string> unknown = {"empty" + ending, "text" + ending, "noise" + ending};
        const bool takesPolygon = call.inputs[i] == "polygon.json";
        std::set<std::string> bad = FilesIn(folder);
        for (const char* const name : {"good.png", "other.png", "good.avi"}) bad.erase(name);
        for (const std::string& name : call.inputs) bad.erase(name);
        if (takesPolygon) bad.erase("body.json");  // its points are those of a polygon, too
        for (const std::string& name : bad) {
            if (EndingOf(name) == ending) expectRefused(i, name, unknown.count(name) != 0 ? ": not " + kind : ": ");
        }
        expectRefused(i, "missing" + ending, ": no such file");
    }
}

TEST_P(EveryVerb, OverManyInputsGoesOnAfterOneThatFails) {
    if (!takesManyInputs()) return;
    WriteText("text.png", "not a picture");
    fs::create_directory(folder / "folder.png");
    const Arguments failing = {"missing.png", "text.png", "folder.png"};
    const Outcome outcome =
        Run(Arguments{call.verb, "good.png"} + failing + Arguments{"other.png", "--json"} + call.options);
    EXPECT_EQ(outcome.exitCode, 1);
    const std::vector<json> lines = JsonLines(outcome.out);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0].at("file"), "good.png");
    EXPECT_EQ(lines[1].at("file"), "other.png");
    const std::vector<std::string> errors = Lines(outcome.err);
    ASSERT_EQ(errors.size(), failing.size()) << outcome.err;
    for (std::size_t i = 0; i < failing.size(); ++i) EXPECT_EQ(errors[i].rfind("quarry: " + failing[i] + ":", 0), 0U);
}

TEST_P(EveryVerb, NamesTheInputThatMayNotBeRead) {
    const Arguments arguments = ArgumentsOf(call);
    for (std::size_t i = 0; i < call.inputs.size(); ++i) {
        Arguments secret = arguments;
        secret[1 + i] = "secret" + EndingOf(call.inputs[i]);
        WriteText(secret[1 + i], ContentsOf(folder / call.inputs[i]));
        fs::permissions(folder / secret[1 + i], fs::perms::none);
        if (access((folder / secret[1 + i]).c_str(), R_OK) == 0) GTEST_SKIP() << "root may read everything";
        ExpectRefusal(secret, 1, secret[1 + i]);
    }
}

TEST_P(EveryVerb, NeverWritesOverItsInput) {
    if (call.out.empty()) return;
    const std::string input = call.inputs[0];
    const std::string ending = EndingOf(input);
    fs::create_symlink(input, folder / ("link" + ending));
    fs::create_hard_link(folder / input, folder / ("same" + ending));
    const std::string before = ContentsOf(folder / input);
    for (const std::string& out : {input, "./" + input, "link" + ending, "same" + ending}) {
        ExpectRefusal(Without(ArgumentsOf(call), "--out") + Arguments{"--out", out}, 2, "--out");
    }
    EXPECT_EQ(ContentsOf(folder / input), before);
}

TEST_P(EveryVerb, NamesTheOutputThatCannotBeWritten) {
    if (call.out.empty()) return;
    const std::string ending = EndingOf(call.out);
    fs::create_directory(folder / ("folder" + ending));
    WriteText("file", "");
    const Arguments arguments = Without(ArgumentsOf(call), "--out");
    for (const std::string& out : {"nowhere/" + call.out, "file/" + call.out, "folder" + ending}) {
        ExpectRefusal(arguments + Arguments{"--out", out}, 1, out);
    }
    for (const std::string& out : {std::string("out.tiff"), std::string("out.mp4"), std::string("out"),
                                   std::string(ending == ".avi" ? "out.png" : "out.avi")}) {
        ExpectRefusal(arguments + Arguments{"--out", out}, 2, "--out");
    }
    ExpectRefusal(arguments + Arguments{"--out"}, 2, "--out");
}

TEST_P(EveryVerb, ReplacesAnOlderOutputOnlyWhenItSucceeds) {
    if (call.out.empty()) return;
    WriteText(call.out, "older");
    Arguments failing = ArgumentsOf(call);
    failing[1] = "missing" + EndingOf(call.inputs[0]);
    ExpectRefusal(failing, 1, failing[1]);
    EXPECT_EQ(ContentsOf(folder / call.out), "older");

    const std::set<std::string> before = FilesIn(folder);
    RunJson(ArgumentsOf(call));
    EXPECT_EQ(FilesIn(folder), before);
    if (takesVideo()) {
        const std::vector<cv::Mat> frames = FramesOf(folder / call.out);
        ASSERT_EQ(frames.size(), static_cast<std::size_t>(kFrames));
        EXPECT_EQ(frames[0].cols, 96);
        EXPECT_GT(frames[0].rows, 64) << "the caption stands below the frame";
        return;
    }
    EXPECT_EQ(ReadPicture(call.out).type(), CV_8UC3);
    Arguments asJpeg = ArgumentsOf(call);
    asJpeg.back() = "out.jpg";
    EXPECT_EQ(Run(asJpeg).exitCode, 0);
    EXPECT_EQ(ContentsOf(folder / "out.jpg").substr(0, 2), "\xFF\xD8");
    EXPECT_FALSE(ReadPicture("out.jpg").empty());
}

TEST_P(EveryVerb, WritesJsonThatNamesTheInputOrTheFrame) {
    const std::vector<json> lines = RunJson(ArgumentsOf(call));
    if (!takesVideo()) {
        ASSERT_EQ(lines.size(), 1U);
        std::string key = lines[0].contains("file") ? "file" : call.names[0];
        std::transform(key.begin(), key.end(), key.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        EXPECT_EQ(lines[0].at(key), call.inputs[0]);
        EXPECT_EQ(lines[0].value("out", call.out), call.out);
    } else {
        ASSERT_EQ(lines.size(), static_cast<std::size_t>(kFrames));
        for (std::size_t i = 0; i < lines.size(); ++i) {
            EXPECT_EQ(lines[i].at("frame"), i);
            EXPECT_EQ(lines[i].at("timestamp"), (i + 1) * 1'000'000) << "10 frames/s are 1,000,000 ticks apart";
        }
    }
    for (const json& line : lines) {
        EXPECT_GT(line.value("milliseconds", 1.0), 0);
    }
}

TEST_P(EveryVerb, OverAVideoWritesATableWithASummaryAndCommaSeparatedValues) {
    if (!takesVideo()) return;
    const std::vector<std::string> table = Lines(Run(ArgumentsOf(call)).out);
    ASSERT_EQ(table.size(), kFrames + 2U);
    EXPECT_EQ(table[0].rfind("frame    time s", 0), 0U) << table[0];
    EXPECT_EQ(table[3].rfind("    2     0.200", 0), 0U) << table[3];
    EXPECT_EQ(table.back().rfind("12 frames, ", 0), 0U) << table.back();
    if (call.names[0] != "VIDEO") return;
    const std::vector<std::string> values = Lines(Run(ArgumentsOf(call) + Arguments{"--csv"}).out);
    ASSERT_EQ(values.size(), kFrames + 1U);
    using OrderedJson = nlohmann::ordered_json;
    std::string head;
    const std::string line = Lines(Run(ArgumentsOf(call) + Arguments{"--json"}).out)[1];
    const OrderedJson object = OrderedJson::parse(line);
    for (const auto& [name, value] : object.items()) head += (head.empty() ? "" : ",") + name;
    EXPECT_EQ(values[0], head);
    EXPECT_EQ(values[2].rfind("1,2000000,", 0), 0U) << values[2];
}

TEST_P(EveryVerb, ShowsItsProgressOnATerminalOnly) {
    const bool isSlow = takesVideo() || call.names[0] == "IMAGE";
    const Outcome shown = RunOnTerminal(ArgumentsOf(call), false);
    EXPECT_EQ(shown.exitCode, 0);
    EXPECT_EQ(shown.err.find('\n'), std::string::npos) << shown.err;
    const std::string cleared = "\r\x1B[K";
    EXPECT_EQ(shown.err.substr(shown.err.size() - std::min(shown.err.size(), cleared.size())), isSlow ? cleared : "");
}

INSTANTIATE_TEST_SUITE_P(All, EveryVerb, testing::ValuesIn(kCalls), [](const auto& call) {
    std::string name = call.param.verb + "_" + EndingOf(call.param.inputs[0]).substr(1);
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

/// Values of an option that are wrong usage.
struct WrongValues {
    std::string verb;
    std::string option;
    Arguments values;
    Arguments more = {};
};

// The good picture has 61 x 43 pixels, the good video 96 x 64.
const Arguments kNoShares = {"-0.1", "1.1", "nan", "much", ""};
const Arguments kNoAreas = {"",          "0,0,1",    "0,0,1,1,1", "0,0,a,1",     "a,0,1,1",     "0,0,1.1,1",
                            "0,0,1,2",   "0,0,0,1",  "0,0,1,0",   "0.6,0,0.5,1", "0,0.6,1,0.5", "-0.1,0,0.5,1",
                            "nan,0,1,1", "0,0,nan,1"};
const std::vector<WrongValues> kWrongValues = {
    {"sharpness",
     "--face",
     {"", "1,2,3", "1,2,3,4,5", "1,2,3,", "a,2,3,4", "1,2,-3,4", "1,2,3,-4", "1,2,3,4.5", "40000,2,3,4", "1,-32769,3,4",
      "1,2,32768,4"}},
    {"background", "--sensitivity", kNoShares},
    {"background", "--history", {"0", "-5", "1.5", "99999999999"}},
    {"background", "--adaptation", {"0", "-1", "inf", "nan", "1e-400"}},
    {"background", "--speedup", {"-1", "inf", "nan", "fast"}},
    {"background", "--frames", {"", "3", "a:b", "5:5", "9:2", "-1:3", "1:2:3", "1.5:3"}},
    {"background", "--every", {"0", "-1", "x"}},
    {"background", "--threads", {"0"}},
    {"track",
     "--rect",
     {"", "1,2,3", "1,2,3,4,5", "1,2,3,x", "1,2,3.5,9", "1,2,3,", "1 2 30 40", "1,2,1,9", "1,2,9,1", "1,2,9,-9",
      "40000,2,9,9", "1,2,32768,9", "96,0,20,20", "0,64,20,20", "0,0,97,20", "0,0,20,65", "-20,0,20,20"}},
    {"track", "--mode", {"2", "-1", "fast", "0.5"}},
    {"flow", "--detail", {"-0.1", "1.1", "nan", "fine", ""}},
    {"flow", "--quality", {"-0.1", "1.1", "nan", "best"}},
    {"flow", "--scale", {"0", "-1", "inf"}},
    {"flow", "--line", {"", "0,0,1", "0,0,1,1.1", "-0.1,0,1,1", "0,0,1,nan", "0,0,1,x", "0;0;1;1", "0,0,1,1,"}},
    {"flow", "--values", {"0", "-1", "1.5", "many"}, {"--line", "0,0,1,1"}},
    {"flow", "--plot", {"plot.png"}, {"--line", "0,0,1,1"}},
    {"contours",
     "--rect",
     {"", "1,2,3", "1,2,3,x", "1,2,0,9", "1,2,9,0", "1,2,9,-9", "0.1,0.2,0.3,0.4", "-1,0,9,9", "90,0,7,9", "0,60,9,5",
      "300,200,9,9", "0,0,97,64", "0,0,96,65"}},
    {"contours", "--method", {"all"}},
    {"contours", "--select", {"2"}},
    {"occupancy",
     "--grid",
     {"", "16", "16x", "x12", "0x12", "16x0", "-1x5", "16x12x3", "16,12", "3.5x2", "40000x2", "62x12", "16x44"}},
    {"occupancy", "--fill", kNoShares},
    {"occupancy", "--min-area", kNoShares},
    {"clusters", "--min-area", kNoShares},
    {"shape-rate", "--interval", {"0", "-40", "nan", "inf", "soon"}},
    {"shape-rate", "--size", {"", "640", "640x", "0x480", "640x0", "-640x480", "32768x480", "640,480"}},
    {"shape-rate", "--method", {"0", "4", "best"}},
    {"rect", "--center", {"1", "1,2,3", "a,b", "1.5,2", "40000,1", "1,", ""}},
    {"rect", "--size", {"0x5", "5x0", "5x-1", "5", "5,5", "axb", "1.5x2", "40000x1", "1x", ""}},
    {"rect", "--angle", {"361", "nan", "inf", "right"}},
    {"detect", "--area", kNoAreas},
    {"detect", "--min-size", {"-1", "1.5", "big", "100001"}},
    {"detect", "--max-size", {"-1", "1.5", "big", "100001"}},
    {"detect", "--mode", {"3", "-1", "fast"}},
    {"people", "--sensitivity", kNoShares},
    {"people", "--min-size", kNoShares},
    {"people", "--max-size", kNoShares},
    {"people", "--area", kNoAreas, {"--area", "0,0,1,1"}},
    {"colours", "--method", {"taste", "3"}},
    {"colours", "--area", kNoAreas + Arguments{"0,0,0.01,1", "0.5,0,0.6,1", "a,b,c,d"}},
    {"align", "--size", {"0x5", "5", "40000x5"}},
    {"rotate", "--angle", {"400", "nan", "inf", "left"}},
    {"rotate", "--scale", {"0", "-1", "101", "nan", "big"}},
};

void PrintTo(const WrongValues& wrong, std::ostream* out) {
    *out << wrong.verb << ' ' << wrong.option;
}

class EveryOption : public WithFiles, public testing::WithParamInterface<WrongValues> {};

TEST_P(EveryOption, NamesItselfWhenItsValueIsWrong) {
    const WrongValues& wrong = GetParam();
    if (wrong.verb == "detect" && !fs::exists(kModel)) GTEST_SKIP() << "no model";
    const Call& call =
        *std::find_if(kCalls.begin(), kCalls.end(), [&](const Call& any) { return any.verb == wrong.verb; });
    for (const std::string& value : wrong.values) {
        std::string argument = wrong.option;
        argument.append("=").append(value);
        ExpectRefusal(Without(ArgumentsOf(call), wrong.option) + wrong.more + Arguments{argument}, 2, wrong.option);
    }
}

INSTANTIATE_TEST_SUITE_P(All, EveryOption, testing::ValuesIn(kWrongValues), [](const auto& wrong) {
    std::string name = wrong.param.verb + wrong.param.option;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

}  // namespace
