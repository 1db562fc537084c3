#include <cmath>

#include "command/CommandFixture.h"

using namespace quarry::test;

namespace {

const cv::Size kSize(200, 300);
constexpr int kPoints[17][2] = {{100, 20}, {104, 16},  {96, 16},  {110, 18},  {90, 18},  {130, 50},
                                {70, 50},  {150, 90},  {50, 90},  {150, 130}, {50, 130}, {120, 150},
                                {80, 150}, {120, 210}, {80, 210}, {120, 270}, {80, 270}};

json Body() {
    json body = json::array();
    for (const auto& [x, y] : kPoints) body.push_back({(x + 0.5) / kSize.width, (y + 0.5) / kSize.height});
    return body;
}

/// Torso: two thirds green, the rest blue like the thighs, which it meets; the shorter shins yellow.
cv::Mat Person() {
    cv::Mat picture(kSize, CV_8UC3, cv::Scalar::all(128));
    picture.rowRange(0, 118).setTo(cv::Scalar(40, 200, 20));
    picture.rowRange(118, 211).setTo(cv::Scalar(220, 60, 10));
    picture.rowRange(211, 300).setTo(cv::Scalar(20, 210, 240));
    return picture;
}

class ClothingCommand : public QuarryCommand {
protected:
    void SetUp() override {
        QuarryCommand::SetUp();
        cv::imwrite((folder / "person.png").string(), Person());
        WriteText("body.json", Body().dump());
    }

    void ExpectRefused(const json& body, const std::string& what) const {
        WriteText("wrong.json", body.dump());
        ExpectRefusal({"clothing", "person.png", "wrong.json", "--out", "out.png"}, 1, "wrong.json: " + what);
    }
};

void ExpectColour(const json& colour, const std::string& hex, double red, double green, double blue) {
    EXPECT_EQ(colour.at("colour"), hex);
    EXPECT_NEAR(colour.at("red").get<double>(), red / 255, 1e-3);
    EXPECT_NEAR(colour.at("green").get<double>(), green / 255, 1e-3);
    EXPECT_NEAR(colour.at("blue").get<double>(), blue / 255, 1e-3);
}

TEST_F(ClothingCommand, FindsTheColoursLargerPartFirst) {
    const std::vector<json> lines = RunJson({"clothing", "person.png", "body.json"});
    ASSERT_EQ(lines[0].at("torso").size(), 2U);
    ASSERT_EQ(lines[0].at("legs").size(), 2U);
    ExpectColour(lines[0].at("torso")[0], "#14c828", 20, 200, 40);
    ExpectColour(lines[0].at("torso")[1], "#0a3cdc", 10, 60, 220);
    ExpectColour(lines[0].at("legs")[0], "#0a3cdc", 10, 60, 220);
    ExpectColour(lines[0].at("legs")[1], "#f0d214", 240, 210, 20);
}

TEST_F(ClothingCommand, WithoutJsonWritesATable) {
    const std::vector<std::string> lines = Lines(Run({"clothing", "person.png", "body.json"}).out);
    ASSERT_EQ(lines.size(), 5U);
    EXPECT_EQ(lines[1], "torso first   #14c828   0.078  0.784  0.157");
    EXPECT_EQ(lines[2], "torso second  #0a3cdc   0.039  0.235  0.863");
    EXPECT_EQ(lines[3], "legs  first   #0a3cdc   0.039  0.235  0.863");
    EXPECT_EQ(lines[4], "legs  second  #f0d214   0.941  0.824  0.078");
}

TEST_F(ClothingCommand, DrawsAreasAndSwatches) {
    EXPECT_EQ(Run({"clothing", "person.png", "body.json", "--out", "out.png"}).exitCode, 0);
    const cv::Mat out = ReadPicture("out.png");
    ASSERT_EQ(out.cols, kSize.width);
    ASSERT_GT(out.rows, kSize.height);
    const auto swatch = [&](int place) { return out.at<cv::Vec3b>(out.rows - 2, kSize.width * (2 * place + 1) / 8); };
    EXPECT_EQ(swatch(0), cv::Vec3b(40, 200, 20));
    EXPECT_EQ(swatch(1), cv::Vec3b(220, 60, 10));
    EXPECT_EQ(swatch(2), cv::Vec3b(220, 60, 10));
    EXPECT_EQ(swatch(3), cv::Vec3b(20, 210, 240));
    cv::Mat change;
    cv::absdiff(out.rowRange(0, kSize.height), Person(), change);
    EXPECT_GT(cv::norm(change(cv::Rect(70, 45, 61, 10)), cv::NORM_INF), 0) << "the torso is outlined";
    EXPECT_EQ(cv::norm(change(cv::Rect(0, 0, 40, 300)), cv::NORM_INF), 0) << "the rest is as it was";
}

TEST_F(ClothingCommand, TakesABodyThatReachesBeyondThePicture) {
    json body = Body();
    for (json& point : body) point[0] = point[0].get<double>() - 0.4;
    WriteText("left.json", body.dump());
    EXPECT_EQ(Run({"clothing", "person.png", "left.json", "--out", "out.png"}).exitCode, 0);
}

TEST_F(ClothingCommand, NamesTheFileAndWhatIsWrongWithIt) {
    json body = Body();
    body.erase(16);
    ExpectRefused(body, "holds 16 points; there must be 17");
    ExpectRefused(json{{"points", Body()}}, "not a JSON array of 17 [x, y] pairs");
    body = Body();
    body[4] = {0.5};
    ExpectRefused(body, "point 5 of 17 is not an [x, y] pair");
    body[4] = {0.5, nullptr};
    ExpectRefused(body, "point 5 of 17: y is not a number from -1 to 2");
    body[4] = {150, 0.5};
    ExpectRefused(body, "point 5 of 17: x is 150; it must be a number from -1 to 2");
    ExpectRefused(json(std::vector<std::vector<double>>(17, {-0.5, -0.5})), "torso or legs cover less than 2 pixels");
}

}  // namespace
