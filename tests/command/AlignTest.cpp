#include <cmath>

#include "command/CommandFixture.h"

using namespace quarry::test;

namespace {

using Points = std::vector<std::vector<double>>;

const Points kSource = {{10, 12}, {45, 9}, {28, 22}, {14, 33}, {44, 35}};

/// Turned, scaled and shifted.
Points Moved(const Points& points, const cv::Matx23d& matrix) {
    Points moved;
    for (const std::vector<double>& point : points) {
        const cv::Vec2d place = matrix * cv::Vec3d(point[0], point[1], 1);
        moved.push_back({place[0], place[1]});
    }
    return moved;
}

class AlignCommand : public QuarryCommand {
protected:
    void SetUp() override {
        QuarryCommand::SetUp();
        picture = WritePicture("picture.png", 1, 1.5);
    }

    void WritePoints(const json& source, const json& destination) const {
        WriteText("points.json", json{{"source", source}, {"destination", destination}}.dump());
    }

    cv::Mat Aligned(const Arguments& more = {}) const {
        RunJson(Arguments{"align", "picture.png", "points.json", "--out", "aligned.png"} + more);
        return ReadPicture("aligned.png");
    }

    void ExpectRefused(const std::string& what) const {
        ExpectRefusal({"align", "picture.png", "points.json", "--out", "aligned.png"}, 1, "points.json: " + what);
    }

    cv::Mat picture;
};

TEST_F(AlignCommand, OfPointsInPlaceChangesNothing) {
    WritePoints(kSource, kSource);
    const cv::Mat aligned = Aligned();
    ASSERT_EQ(aligned.type(), CV_8UC3);
    ASSERT_EQ(aligned.size(), picture.size());
    EXPECT_LE(cv::norm(aligned, picture, cv::NORM_INF), 2);
}

TEST_F(AlignCommand, TurnsScalesAndShifts) {
    for (const double angle : {0.0, 30.0, -120.0}) {
        const cv::Matx23d matrix = cv::getRotationMatrix2D({28, 22}, angle, 1.3);
        WritePoints(kSource, Moved(kSource, matrix));
        cv::Mat expected;
        cv::warpAffine(picture, expected, matrix, {80, 50});
        const cv::Mat aligned = Aligned({"--size", "80x50"});
        ASSERT_EQ(aligned.size(), expected.size());
        EXPECT_LT(cv::norm(aligned, expected, cv::NORM_L1) / static_cast<double>(expected.total() * 3), 1) << angle;
    }
}

TEST_F(AlignCommand, TellsWhatItMade) {
    WritePoints(kSource, kSource);
    const Arguments call = {"align", "picture.png", "points.json", "--out", "aligned.png", "--size", "20x30"};
    EXPECT_EQ(Run(call).out.rfind("aligned.png\n20 x 30 pixels", 0), 0U);
    const json line = RunJson(call).at(0);
    EXPECT_EQ(line.at("width"), 20);
    EXPECT_EQ(line.at("height"), 30);
}

TEST_F(AlignCommand, TakesFivePointsEachAndNothingElse) {
    for (const std::size_t count : {0U, 4U, 6U}) {
        Points points(count, {1, 2});
        if (count > 0) points[0] = {3, 4};
        WritePoints(points, kSource);
        ExpectRefused("\"source\": holds " + std::to_string(count) + " points; there must be 5");
        WritePoints(kSource, points);
        ExpectRefused("\"destination\": holds " + std::to_string(count) + " points; there must be 5");
    }
    json points = kSource;
    for (const char* const wrong : {"7", "[1]", "[1,2,3]", "{}", "null"}) {
        points[3] = json::parse(wrong);
        WritePoints(kSource, points);
        ExpectRefused("\"destination\": point 4 of 5 is not an [x, y] pair");
    }
    points[3] = {"one", 2};
    WritePoints(points, kSource);
    ExpectRefused("\"source\": point 4 of 5: x is not a number");
    points[3] = {1, 1e300};
    WritePoints(points, kSource);
    ExpectRefused("\"source\": point 4 of 5: y is 1e+300; it must be a number from -32768 to 32767");
    WritePoints(kSource, Points(5, {7, 7}));
    ExpectRefused("\"destination\": all points are in one place");
    WritePoints(Points(5, {7, 7}), kSource);
    ExpectRefused("\"source\": all points are in one place");
    WriteText("points.json", json{{"source", kSource}}.dump());
    ExpectRefused("\"destination\" is missing");
    WriteText("points.json", json(kSource).dump());
    ExpectRefused("not a JSON object");
}

}  // namespace
