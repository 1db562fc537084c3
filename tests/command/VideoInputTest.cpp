#include <csignal>

#include "command/CommandFixture.h"

using namespace quarry::test;

namespace {

constexpr int kFrames = 30;

/// What all verbs that play a video can be told, shown by one of them.
class VideoInput : public QuarryCommand {
protected:
    std::vector<json> Play(const std::string& input, const Arguments& more = {}) const {
        return RunJson(Arguments{"background", input} + more);
    }

    static std::vector<int> IndexesOf(const std::vector<json>& lines) {
        std::vector<int> indexes;
        indexes.reserve(lines.size());
        for (const json& line : lines) indexes.push_back(line.at("frame").get<int>());
        return indexes;
    }

    void WritePictures(int count) const {
        fs::create_directory(folder / "shots");
        for (int i = 0; i < count; ++i) {
            cv::imwrite((folder / ("shots/" + std::to_string(i) + ".png")).string(), MovingSquare(96, 64, i));
        }
    }
};

TEST_F(VideoInput, TakesTheFramesOfARange) {
    WriteVideo("clip.avi", kFrames);
    EXPECT_EQ(IndexesOf(Play("clip.avi", {"--frames", "5:9"})), (std::vector<int>{5, 6, 7, 8}));
    EXPECT_EQ(IndexesOf(Play("clip.avi", {"--frames", "27:"})), (std::vector<int>{27, 28, 29}));
    EXPECT_EQ(IndexesOf(Play("clip.avi", {"--frames", ":2"})), (std::vector<int>{0, 1}));
    EXPECT_EQ(IndexesOf(Play("clip.avi", {"--frames", "28:99"})), (std::vector<int>{28, 29}));
}

TEST_F(VideoInput, TakesEveryNthFrameAtItsTime) {
    WriteVideo("clip.avi", kFrames);
    const std::vector<json> lines = Play("clip.avi", {"--frames", "3:20", "--every", "7"});
    EXPECT_EQ(IndexesOf(lines), (std::vector<int>{3, 10, 17}));
    for (const json& line : lines) EXPECT_EQ(line.at("timestamp"), (line.at("frame").get<int>() + 1) * 1'000'000);
}

TEST_F(VideoInput, PlaysWhatIsTakenAtItsOwnPace) {
    WriteVideo("clip.avi", kFrames);
    Play("clip.avi", {"--every", "5", "--annotate", "marked.avi"});
    EXPECT_EQ(FramesOf(folder / "marked.avi").size(), 6U);
    EXPECT_NEAR(cv::VideoCapture((folder / "marked.avi").string()).get(cv::CAP_PROP_FPS), 2, 0.01);
}

TEST_F(VideoInput, SkipsToTheVeryFrame) {
    WriteVideo("clip.avi", kFrames);
    Play("clip.avi", {"--frames", "11:12", "--out", "one.avi"});
    const cv::Mat expected = FramesOf(folder / "clip.avi")[11];
    const cv::Mat shown = FramesOf(folder / "one.avi").at(0)(cv::Rect(0, 0, 96, 64));
    EXPECT_LT(cv::norm(shown, expected, cv::NORM_L1) / static_cast<double>(shown.total() * 3), 4)
        << "but for the codec's losses";
}

TEST_F(VideoInput, ThreadsDoNotChangeTheResult) {
    WriteVideo("clip.avi", kFrames);
    const std::vector<json> one = Play("clip.avi", {"--threads", "1"});
    const std::vector<json> two = Play("clip.avi", {"--threads", "2"});
    ASSERT_EQ(one.size(), two.size());
    for (std::size_t i = 0; i < one.size(); ++i) EXPECT_EQ(one[i].at("foreground"), two[i].at("foreground")) << i;
}

TEST_F(VideoInput, CommaSeparatedListsAreQuoted) {
    WriteVideo("clip.avi", 2);
    const std::vector<std::string> lines =
        Lines(Run({"flow", "clip.avi", "--csv", "--line", "0,0,1,1", "--values", "2"}).out);
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0], "frame,timestamp,mean,maximum,milliseconds,line");
    const std::size_t list = lines[1].find(",\"[");
    ASSERT_NE(list, std::string::npos) << lines[1];
    EXPECT_EQ(lines[1].substr(lines[1].size() - 2), "]\"");
    EXPECT_EQ(json::parse(lines[1].substr(list + 2, lines[1].size() - list - 3)).size(), 2U);
}

TEST_F(VideoInput, MayBeAFolderOfPictures) {
    WritePictures(5);
    WriteText("shots/readme.txt", "not a picture");
    EXPECT_EQ(IndexesOf(Play("shots")), (std::vector<int>{0, 1, 2, 3, 4}));
    EXPECT_EQ(Play("shots")[1].at("timestamp"), 2 * 400'000) << "25 to the second";
}

TEST_F(VideoInput, MayBeAPatternOfNames) {
    WritePictures(5);
    EXPECT_EQ(IndexesOf(Play("shots/[1-3].png")), (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(Play("shots/?.png", {"--frames", "1:", "--every", "2"}).size(), 2U);
}

TEST_F(VideoInput, NamesWhatCannotBeRead) {
    WritePictures(2);
    fs::create_directory(folder / "empty");
    WritePicture("shots/9.png", 1, 0);  // of another size
    ExpectOneLineError({"background", "empty"}, 1, "empty: no pictures");
    ExpectOneLineError({"background", "none*.png"}, 1, "none*.png");
    ExpectOneLineError({"background", "shots"}, 1, "9.png");
    ExpectOneLineError({"background", "987654"}, 1, "camera");
    ExpectOneLineError({"background", "shots", "--frames", "7:"}, 1, "no frames there");
}

TEST_F(VideoInput, CommaSeparatedValuesAndJsonExcludeEachOther) {
    ExpectOneLineError({"background", "clip.avi", "--csv", "--json"}, 2, "--csv");
}

TEST_F(VideoInput, CtrlCLeavesAShorterVideoThatIsWhole) {
    WriteVideo("long.avi", 400, {640, 480});
    const pid_t child = Start({"background", "long.avi", "--out", "marked.avi", "--json"}, "lines", "errors");
    WaitUntil([&] { return Lines(ContentsOf(folder / "lines")).size() >= 3; });
    kill(child, SIGINT);
    EXPECT_EQ(ExitCodeOf(child), 130);
    EXPECT_EQ(ContentsOf(folder / "errors"), "");
    EXPECT_EQ(FilesIn(folder), (std::set<std::string>{"errors", "lines", "long.avi", "marked.avi"}));
    const std::size_t lines = JsonLines(ContentsOf(folder / "lines")).size();
    EXPECT_GE(lines, 3U);
    EXPECT_LT(lines, 400U);
    EXPECT_EQ(FramesOf(folder / "marked.avi").size(), lines);
}

}  // namespace
