#include <algorithm>
#include <opencv2/objdetect.hpp>

#include "command/CommandFixture.h"
#include "support/Footage.h"

using namespace quarry::test;

namespace {

class DetectCommand : public QuarryCommand {
protected:
    void SetUp() override {
        QuarryCommand::SetUp();
        if (!fs::exists(kModel)) GTEST_SKIP() << "no model";
        if (!fs::exists(MediaDirectory() / "messi5.jpg")) GTEST_SKIP() << "no footage";
        fs::copy_file(MediaDirectory() / "messi5.jpg", folder / "player.jpg");
        fs::copy_file(MediaDirectory() / "basketball1.png", folder / "two.png");
    }

    cv::Mat PictureOf(const std::string& name) const { return cv::imread((folder / name).string()); }

    std::vector<json> Detect(const Arguments& more) const {
        std::vector<json> lines = RunJson(Arguments{"detect", "--cascade", kModel} + more);
        for (json& line : lines) std::sort(line.at("detections").begin(), line.at("detections").end());
        return lines;
    }
};

/// In a fixed order: detections come in the one in which OpenCV's threads end.
json JsonOf(const std::vector<cv::Rect>& rectangles, const cv::Point& origin = {}) {
    json array = json::array();
    for (const cv::Rect& rect : rectangles) {
        array.push_back(
            {{"x", rect.x + origin.x}, {"y", rect.y + origin.y}, {"width", rect.width}, {"height", rect.height}});
    }
    std::sort(array.begin(), array.end());
    return array;
}

std::vector<cv::Rect> Expected(const cv::Mat& picture, int neighbours, int flags, int minSize = 0, int maxSize = 0) {
    cv::Mat grey;
    cv::cvtColor(picture, grey, cv::COLOR_BGR2GRAY);
    std::vector<cv::Rect> found;
    cv::CascadeClassifier(kModel).detectMultiScale(grey, found, 1.1, neighbours, flags, {minSize, minSize},
                                                   {maxSize, maxSize});
    return found;
}

TEST_F(DetectCommand, FindsWhatTheModelFindsInEveryMode) {
    const std::vector<std::pair<int, int>> presets = {
        {5, cv::CASCADE_SCALE_IMAGE},
        {1, cv::CASCADE_SCALE_IMAGE},
        {2, cv::CASCADE_DO_CANNY_PRUNING | cv::CASCADE_FIND_BIGGEST_OBJECT}};
    std::size_t found = 0;
    for (std::size_t mode = 0; mode < presets.size(); ++mode) {
        const std::vector<json> lines = Detect({"player.jpg", "two.png", "--mode", std::to_string(mode)});
        ASSERT_EQ(lines.size(), 2U);
        EXPECT_EQ(lines[0].at("file"), "player.jpg");
        EXPECT_EQ(lines[1].at("file"), "two.png");
        for (const json& line : lines) {
            const cv::Mat picture = PictureOf(line.at("file"));
            const auto [neighbours, flags] = presets[mode];
            EXPECT_EQ(line.at("width"), picture.cols);
            EXPECT_EQ(line.at("height"), picture.rows);
            EXPECT_EQ(line.at("detections"), JsonOf(Expected(picture, neighbours, flags))) << mode;
            found += line.at("detections").size();
        }
    }
    EXPECT_GE(found, 6U) << "a face in each picture";
}

TEST_F(DetectCommand, AnAreasRectanglesAreInPixelsOfThePicture) {
    const cv::Mat picture = PictureOf("player.jpg");
    const cv::Rect area(static_cast<int>(0.3F * static_cast<float>(picture.cols)),
                        static_cast<int>(0.1F * static_cast<float>(picture.rows)),
                        static_cast<int>(0.35F * static_cast<float>(picture.cols)),
                        static_cast<int>(0.5F * static_cast<float>(picture.rows)));
    const std::vector<cv::Rect> expected = Expected(picture(area), 5, cv::CASCADE_SCALE_IMAGE);
    ASSERT_FALSE(expected.empty());
    const std::vector<json> lines = Detect({"player.jpg", "--area", "0.3,0.1,0.35,0.5"});
    EXPECT_EQ(lines.at(0).at("detections"), JsonOf(expected, area.tl()));
    EXPECT_EQ(Detect({"player.jpg", "--area", "0,0.5,1,0.5"}).at(0).at("detections"), json::array()) << "no face there";
    EXPECT_EQ(Detect({"player.jpg", "--area", "0.7,0.1,0.3,0.9"}).size(), 1U) << "up to the very edges";
}

TEST_F(DetectCommand, SizesLimitWhatIsFound) {
    const cv::Mat picture = PictureOf("two.png");
    const json all = JsonOf(Expected(picture, 1, cv::CASCADE_SCALE_IMAGE));
    for (const auto& [low, high] : std::vector<std::pair<int, int>>{{60, 0}, {0, 60}, {30, 60}, {300, 400}}) {
        const json found =
            Detect({"two.png", "--mode", "1", "--min-size", std::to_string(low), "--max-size", std::to_string(high)})
                .at(0)
                .at("detections");
        EXPECT_EQ(found, JsonOf(Expected(picture, 1, cv::CASCADE_SCALE_IMAGE, low, high))) << low << ' ' << high;
        EXPECT_NE(found, all);
    }
    EXPECT_EQ(Detect({"two.png", "--mode", "1", "--min-size", "0", "--max-size", "0"}).at(0).at("detections"), all);
}

TEST_F(DetectCommand, TableHasALinePerPicture) {
    cv::imwrite((folder / "grey.png").string(), cv::Mat(60, 80, CV_8UC3, cv::Scalar::all(128)));
    const std::vector<cv::Rect> expected = Expected(PictureOf("player.jpg"), 5, cv::CASCADE_SCALE_IMAGE);
    ASSERT_EQ(expected.size(), 1U);
    const std::vector<std::string> lines = Lines(Run({"detect", "player.jpg", "grey.png", "--cascade", kModel}).out);
    ASSERT_EQ(lines.size(), 3U);
    const cv::Rect& face = expected[0];
    EXPECT_NE(lines[0].find("found"), std::string::npos);
    EXPECT_NE(lines[1].find("  " + std::to_string(face.x) + "," + std::to_string(face.y) + "," +
                            std::to_string(face.width) + "," + std::to_string(face.height)),
              std::string::npos)
        << lines[1];
    EXPECT_EQ(lines[2].find(','), std::string::npos) << lines[2];
}

TEST_F(DetectCommand, DrawsTheRectangles) {
    const json line = Detect({"two.png", "--out", "marked.png"}).at(0);
    const cv::Mat picture = PictureOf("two.png");
    const cv::Mat marked = PictureOf("marked.png");
    ASSERT_EQ(marked.size(), picture.size());
    const json& face = line.at("detections").at(0);
    const cv::Rect place(face.at("x"), face.at("y"), face.at("width"), face.at("height"));
    const auto side = marked.at<cv::Vec3b>(place.y + place.height / 2, place.x);
    EXPECT_GT(side[1], side[2] + 60) << "green";
    EXPECT_EQ(cv::norm(picture(place)(cv::Rect(3, 3, place.width - 6, place.height - 6)),
                       marked(place)(cv::Rect(3, 3, place.width - 6, place.height - 6)), cv::NORM_INF),
              0)
        << "the face stays as it is";
}

TEST_F(DetectCommand, RefusesAnAreaOfLessThanAPixel) {
    WritePicture("small.png", 1, 0);
    ExpectOneLineError({"detect", "--cascade", kModel, "--area", "0,0,0.01,1", "small.png"}, 1,
                       "small.png: the area is less than a pixel");
}

TEST_F(DetectCommand, AModelThatCannotBeReadIsTheOnlyErrorAndNothingIsWritten) {
    const std::string model = ContentsOf(kModel);
    const std::string head = "<?xml version=\"1.0\"?>\n<opencv_storage>";
    const std::vector<std::pair<std::string, std::string>> bad = {
        {"text.xml", "not a model"},
        {"empty.xml", ""},
        {"other.xml", head + "<number>1</number></opencv_storage>\n"},
        {"cascade.xml", head + "<cascade></cascade></opencv_storage>\n"},
        {"cut.xml", model.substr(0, 20'000)},
        {"half.xml", model.substr(0, model.size() / 2)},
        {"noise.xml", Noise(5000)},
        {"headed.xml", model.substr(0, 40) + Noise(500)}};
    for (const auto& [name, contents] : bad) WriteText(name, contents);
    fs::create_directory(folder / "folder.xml");
    for (const std::string& name : FilesIn(folder)) {
        if (name == "player.jpg" || fs::path(name).extension() == ".xml") {
            ExpectRefusal({"detect", "missing.png", "--out", "marked.png", "--cascade", name}, 1, name);
            EXPECT_EQ(Run({"detect", "player.jpg", "two.png", "--cascade", name}).out, "");
        }
    }
    ExpectRefusal({"detect", "missing.png", "--out", "marked.png", "--cascade", "missing.xml"}, 1, "missing.xml");
}

TEST_F(DetectCommand, RefusesOptionsThatContradictEachOther) {
    const Arguments call = {"detect", "player.jpg", "--cascade", kModel};
    ExpectRefusal(call + Arguments{"--min-size", "50", "--max-size", "20"}, 2,
                  "--max-size: must be 0 or at least --min-size, 50, not 20");
    ExpectRefusal(call + Arguments{"two.png", "--out", "marked.png"}, 2, "--out: goes with one picture");
}

}  // namespace
