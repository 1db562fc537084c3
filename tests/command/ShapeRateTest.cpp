#include "command/CommandFixture.h"

using namespace quarry::test;

namespace {

const std::vector<cv::Point2f> kBefore = {{0.1F, 0.1F}, {0.5F, 0.15F}, {0.55F, 0.6F}, {0.2F, 0.7F}};
const std::vector<cv::Point2f> kAfter = {{0.2F, 0.1F}, {0.8F, 0.2F}, {0.45F, 0.9F}, {0.4F, 0.3F}};

std::vector<cv::Point> PixelsOf(const std::vector<cv::Point2f>& polygon, const cv::Size& size) {
    std::vector<cv::Point> pixels;
    pixels.reserve(polygon.size());
    for (const cv::Point2f& point : polygon) {
        pixels.emplace_back(static_cast<int>(point.x * static_cast<float>(size.width)),
                            static_cast<int>(point.y * static_cast<float>(size.height)));
    }
    return pixels;
}

class ShapeRateCommand : public QuarryCommand {
protected:
    void SetUp() override {
        QuarryCommand::SetUp();
        Write("before.json", kBefore);
        Write("after.json", kAfter);
    }

    void Write(const std::string& name, const std::vector<cv::Point2f>& polygon) const {
        json points = json::array();
        for (const cv::Point2f& point : polygon) points.push_back({point.x, point.y});
        WriteText(name, points.dump());
    }

    json Rate(const Arguments& more, const std::string& before = "before.json",
              const std::string& after = "after.json") const {
        const json line = RunJson(Arguments{"shape-rate", before, after} + more).at(0);
        EXPECT_EQ(line.at("after"), after);
        return line.at("rate");
    }
};

TEST_F(ShapeRateCommand, IsTheDistanceOfTheShapesPerSecond) {
    for (const cv::Size& size : {cv::Size(640, 480), cv::Size(480, 640)}) {
        for (const int method : {1, 2, 3}) {
            // The third method is relative to the shape that comes first, the later one.
            const double distance = cv::matchShapes(PixelsOf(kAfter, size), PixelsOf(kBefore, size), method, 0);
            const json rate =
                Rate({"--interval", "250", "--size", std::to_string(size.width) + "x" + std::to_string(size.height),
                      "--method", std::to_string(method)});
            EXPECT_GT(rate.get<double>(), 0);
            EXPECT_NEAR(rate.get<double>(), distance / 0.25, 1e-9) << size << method;
        }
    }
}

TEST_F(ShapeRateCommand, OfTheSameShapeIsNothing) {
    EXPECT_EQ(Rate({"--interval", "40", "--size", "640x480"}, "after.json", "after.json"), 0);
}

TEST_F(ShapeRateCommand, WithoutJsonTellsTheSameInWords) {
    const Arguments options = {"--interval", "40.5", "--size", "640x480"};
    const double rate = Rate(options).get<double>();
    const Outcome outcome = Run(Arguments{"shape-rate", "before.json", "after.json"} + options);
    EXPECT_EQ(outcome.exitCode, 0);
    std::istringstream words(outcome.out);
    std::string name;
    double value = 0;
    words >> name >> value;
    EXPECT_EQ(name, "rate");
    EXPECT_NEAR(value, rate, 1e-6);
    EXPECT_EQ(Lines(outcome.out).size(), 1U);
}

TEST_F(ShapeRateCommand, IsNoneWhenOnlyOneShapeHasAnArea) {
    WriteText("dot.json", "[[0.5, 0.5]]");
    for (const char* const interval : {"1", "5000"}) {
        EXPECT_TRUE(Rate({"--interval", interval, "--size", "640x480"}, "dot.json").is_null());
        const Outcome outcome =
            Run({"shape-rate", "dot.json", "after.json", "--interval", interval, "--size", "640x480"});
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_NE(outcome.out.find("none"), std::string::npos) << outcome.out;
    }
    EXPECT_EQ(Rate({"--interval", "40", "--size", "640x480"}, "dot.json", "dot.json"), 0);
}

}  // namespace
