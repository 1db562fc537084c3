#include <cmath>

#include "host/CommandFixture.h"

using namespace quarry::test;

namespace {

const cv::Size kSize(100, 80);

/// Things of several sizes on black, one of them dark red, one a ring and one of a few pixels.
cv::Mat Things() {
    cv::Mat picture(kSize, CV_8UC3, cv::Scalar::all(0));
    cv::rectangle(picture, cv::Rect(7, 11, 33, 22), {200, 180, 90}, cv::FILLED);
    cv::circle(picture, {70, 50}, 20, {0, 0, 40}, 4);
    cv::rectangle(picture, cv::Rect(5, 70, 4, 4), {255, 255, 255}, cv::FILLED);
    return picture;
}

/// The grid by OpenCV.
json CellsOf(const cv::Mat& picture, const cv::Size& grid, double fill, double minArea) {
    cv::Mat grey;
    cv::cvtColor(picture, grey, cv::COLOR_BGR2GRAY);
    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(grey, contours, cv::RETR_EXTERNAL,
                     fill > 0.5 ? cv::CHAIN_APPROX_NONE : cv::CHAIN_APPROX_TC89_KCOS);
    cv::Mat drawing(picture.size(), CV_8UC1, cv::Scalar(0));
    for (std::size_t i = 0; i < contours.size(); ++i) {
        if (cv::contourArea(contours[i]) < std::floor(kSize.area() * minArea)) continue;
        cv::drawContours(drawing, contours, static_cast<int>(i), cv::Scalar(255), cv::FILLED);
    }
    const cv::Size cell(picture.cols / grid.width, picture.rows / grid.height);
    json rows = json::array();
    for (int row = 0; row < grid.height; ++row) {
        std::vector<int> cells;
        for (int column = 0; column < grid.width; ++column) {
            const int covered = cv::countNonZero(drawing(cv::Rect({column * cell.width, row * cell.height}, cell)));
            cells.push_back(covered > std::floor(cell.area() * fill) ? 1 : 0);
        }
        rows.push_back(cells);
    }
    return rows;
}

int SumOf(const json& rows) {
    int sum = 0;
    for (const json& row : rows) {
        for (const json& cell : row) sum += cell.get<int>();
    }
    return sum;
}

class OccupancyCommand : public QuarryCommand {
protected:
    void WriteThings() const { cv::imwrite((folder / "things.png").string(), Things()); }

    json Occupancy(const Arguments& more = {}) const {
        Arguments arguments = {"occupancy", "things.png", "--json"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        EXPECT_EQ(outcome.err, "");
        const std::vector<json> lines = JsonLines(outcome.out);
        EXPECT_EQ(lines.size(), 1U);
        return lines.at(0);
    }
};

TEST_F(OccupancyCommand, OfAPictureIsTheGridOfWhatIsNotBlack) {
    WriteThings();
    const json line = Occupancy();
    EXPECT_EQ(line.at("file"), "things.png");
    EXPECT_EQ(line.at("cells"), CellsOf(Things(), {16, 12}, 0.3, 0.001));
    EXPECT_EQ(line.at("occupied"), SumOf(line.at("cells")));
    EXPECT_GT(line.at("occupied"), 0);
    EXPECT_GT(line.at("milliseconds").get<double>(), 0);
}

TEST_F(OccupancyCommand, OptionsReachTheGrid) {
    WriteThings();
    EXPECT_EQ(Occupancy({"--grid", "7x3"}).at("cells"), CellsOf(Things(), {7, 3}, 0.3, 0.001));
    EXPECT_EQ(Occupancy({"--grid", "100x80"}).at("cells"), CellsOf(Things(), {100, 80}, 0.3, 0.001));
    EXPECT_EQ(Occupancy({"--grid", "1x1", "--fill", "0"}).at("cells"), json::parse("[[1]]"));
    EXPECT_EQ(Occupancy({"--fill", "0.8"}).at("cells"), CellsOf(Things(), {16, 12}, 0.8, 0.001));
    EXPECT_EQ(Occupancy({"--fill", "1"}).at("occupied"), 0);
    const json large = Occupancy({"--min-area", "0.05"});
    EXPECT_EQ(large.at("cells"), CellsOf(Things(), {16, 12}, 0.3, 0.05));
    const json everything = Occupancy({"--min-area", "0", "--fill", "0.1"});
    EXPECT_EQ(everything.at("cells"), CellsOf(Things(), {16, 12}, 0.1, 0));
    EXPECT_LT(Occupancy({"--min-area", "0.05", "--fill", "0.1"}).at("occupied"), everything.at("occupied"))
        << "the small one is left out";
    EXPECT_EQ(Occupancy({"--min-area", "1"}).at("occupied"), 0);
}

/// Red, green and blue count differently in grey: the darkest blue is black, the same red is not.
TEST_F(OccupancyCommand, ReadsTheColoursInTheRightOrder) {
    for (const auto& [colour, occupied] : {std::pair(cv::Scalar(3, 0, 0), 0), std::pair(cv::Scalar(0, 0, 3), 192)}) {
        cv::Mat picture(48, 64, CV_8UC3, colour);
        cv::imwrite((folder / "things.png").string(), picture);
        EXPECT_EQ(Occupancy({"--fill", "0.2"}).at("occupied"), occupied);
    }
}

TEST_F(OccupancyCommand, TellsTheSameInWordsAndDrawsIt) {
    WriteThings();
    const int occupied = Occupancy().at("occupied").get<int>();
    const Outcome outcome = Run({"occupancy", "things.png", "--out", "grid.png"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    const std::vector<std::string> lines = Lines(outcome.out);
    ASSERT_EQ(lines.size(), 2U) << outcome.out;
    EXPECT_EQ(std::stoi(lines[1]), occupied);
    EXPECT_EQ(FilesIn(folder), (std::set<std::string>{"things.png", "grid.png"}));
    const cv::Mat drawn = cv::imread((folder / "grid.png").string());
    EXPECT_EQ(drawn.cols, kSize.width);
    EXPECT_GT(drawn.rows, kSize.height) << "the caption stands below the picture";
    EXPECT_GT(cv::norm(drawn(cv::Rect({0, 0}, kSize)), Things(), cv::NORM_INF), 60);
}

TEST_F(OccupancyCommand, OfAVideoIsWhereThingsMove) {
    WriteVideo("clip.avi", 40);
    const Outcome outcome = Run({"occupancy", "clip.avi", "--json", "--grid", "6x4", "--out", "grid.avi"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    const std::vector<json> lines = JsonLines(outcome.out);
    ASSERT_EQ(lines.size(), 40U);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        EXPECT_EQ(lines[i].at("frame"), i);
        ASSERT_EQ(lines[i].at("cells").size(), 4U);
        ASSERT_EQ(lines[i].at("cells").at(0).size(), 6U);
        EXPECT_EQ(lines[i].at("occupied"), SumOf(lines[i].at("cells")));
    }
    EXPECT_GT(lines.back().at("occupied"), 0) << "the square moves";
    EXPECT_LT(lines.back().at("occupied"), 24) << "the rest does not";
    EXPECT_EQ(FilesIn(folder), (std::set<std::string>{"clip.avi", "grid.avi"}));
    EXPECT_EQ(FramesOf(folder / "grid.avi").size(), 40U);
    const std::vector<std::string> table = Lines(Run({"occupancy", "clip.avi"}).out);
    ASSERT_EQ(table.size(), 42U);
    EXPECT_EQ(table.back().rfind("40 frames, ", 0), 0U);
}

TEST_F(OccupancyCommand, RefusesWrongUsage) {
    WriteThings();
    WriteVideo("clip.avi", 3);
    const std::set<std::string> before = FilesIn(folder);
    ExpectOneLineError({"occupancy"}, 2, "INPUT");
    for (const char* const grid :
         {"", "16", "16x", "x12", "0x12", "16x0", "-1x5", "16x12x3", "16,12", "3.5x2", "40000x2"}) {
        ExpectOneLineError({"occupancy", "things.png", "--grid", grid}, 2, "--grid");
    }
    // What only the frame's size can tell.
    ExpectOneLineError({"occupancy", "things.png", "--grid", "101x12", "--out", "grid.png"}, 2, "--grid");
    ExpectOneLineError({"occupancy", "clip.avi", "--grid", "16x65", "--out", "grid.avi"}, 2, "--grid");
    for (const char* const share : {"-0.1", "1.1", "nan", "much"}) {
        ExpectOneLineError({"occupancy", "things.png", "--fill", share}, 2, "--fill");
        ExpectOneLineError({"occupancy", "things.png", "--min-area", share}, 2, "--min-area");
    }
    ExpectOneLineError({"occupancy", "things.png", "--out", "grid.avi"}, 2, "--out");
    ExpectOneLineError({"occupancy", "clip.avi", "--out", "grid.png"}, 2, "--out");
    ExpectOneLineError({"occupancy", "clip.avi", "--out", "grid.mp4"}, 2, "--out");
    ExpectOneLineError({"occupancy", "things.png", "--out", "./things.png"}, 2, "--out");
    EXPECT_EQ(FilesIn(folder), before);
}

TEST_F(OccupancyCommand, AnInputThatFailsIsNamedAndLeavesNothingBehind) {
    WriteText("text.avi", "not a video");
    WriteText("text.png", "not a picture");
    WriteText("text", "neither");
    fs::create_directory(folder / "folder");
    const std::set<std::string> before = FilesIn(folder);
    for (const char* const name : {"missing.avi", "missing.png", "text.avi", "text.png", "text", "folder"}) {
        ExpectOneLineError({"occupancy", name}, 1, std::string(name) + ": ");
    }
    ExpectOneLineError({"occupancy", "text.png", "--out", "grid.png"}, 1, "not a picture");
    ExpectOneLineError({"occupancy", "text.avi", "--out", "grid.avi"}, 1, "not a video");
    EXPECT_EQ(FilesIn(folder), before);
}

/// A picture is told by its content where its name does not tell it.
TEST_F(OccupancyCommand, TakesPicturesOfAnyName) {
    WriteThings();
    fs::rename(folder / "things.png", folder / "things");
    EXPECT_EQ(Run({"occupancy", "things", "--out", "grid.jpg"}).exitCode, 0);
    EXPECT_EQ(FilesIn(folder), (std::set<std::string>{"things", "grid.jpg"}));
}

}  // namespace
