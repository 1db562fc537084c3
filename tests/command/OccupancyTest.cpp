#include <cmath>

#include "command/CommandFixture.h"

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
        return RunJson(Arguments{"occupancy", "things.png"} + more).at(0);
    }
};

TEST_F(OccupancyCommand, OfAPictureIsTheGridOfWhatIsNotBlack) {
    WriteThings();
    const json line = Occupancy();
    EXPECT_EQ(line.at("cells"), CellsOf(Things(), {16, 12}, 0.3, 0.001));
    EXPECT_EQ(line.at("occupied"), SumOf(line.at("cells")));
    EXPECT_GT(line.at("occupied"), 0);
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
    const cv::Mat drawn = ReadPicture("grid.png");
    EXPECT_EQ(drawn.cols, kSize.width);
    EXPECT_GT(drawn.rows, kSize.height) << "the caption stands below the picture";
    EXPECT_GT(cv::norm(drawn(cv::Rect({0, 0}, kSize)), Things(), cv::NORM_INF), 60);
}

TEST_F(OccupancyCommand, OfAVideoIsWhereThingsMove) {
    WriteVideo("clip.avi", 40);
    const std::vector<json> lines = RunJson({"occupancy", "clip.avi", "--grid", "6x4"});
    for (const json& line : lines) {
        ASSERT_EQ(line.at("cells").size(), 4U);
        ASSERT_EQ(line.at("cells").at(0).size(), 6U);
        EXPECT_EQ(line.at("occupied"), SumOf(line.at("cells")));
    }
    EXPECT_GT(lines.back().at("occupied"), 0) << "the square moves";
    EXPECT_LT(lines.back().at("occupied"), 24) << "the rest does not";
}

TEST_F(OccupancyCommand, AGridWithMoreCellsThanAFrameHasPixelsIsRefused) {
    WriteVideo("clip.avi", 3);
    ExpectRefusal({"occupancy", "clip.avi", "--grid", "16x65", "--out", "grid.avi"}, 2, "--grid");
}

TEST_F(OccupancyCommand, NamesAnInputOfAnyName) {
    WriteText("text", "neither picture nor video");
    fs::create_directory(folder / "folder");
    for (const char* const name : {"text", "folder", "missing"}) {
        ExpectRefusal({"occupancy", name}, 1, std::string(name) + ": ");
    }
}

/// A picture is told by its content where its name does not tell it.
TEST_F(OccupancyCommand, TakesPicturesOfAnyName) {
    WriteThings();
    fs::rename(folder / "things.png", folder / "things");
    EXPECT_EQ(Run({"occupancy", "things", "--out", "grid.jpg"}).exitCode, 0);
    EXPECT_EQ(FilesIn(folder), (std::set<std::string>{"things", "grid.jpg"}));
}

}  // namespace
