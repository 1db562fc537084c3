#include "command/CommandFixture.h"

using namespace quarry::test;

namespace {

constexpr int kFrames = 15;
constexpr int kFirst = 10;  // frame that shows anything
const cv::Size kSize(240, 64);
const cv::Size kLarge(24, 20);
const cv::Size kLong(34, 5);

/// They never stand where they have stood before, so that no background is learnt of them.
cv::Rect LargeAt(int frame) {
    return {{10 + 40 * (frame - kFirst), 8}, kLarge};
}
cv::Rect LongAt(int frame) {
    return {{15 + 40 * (frame - kFirst), 46}, kLong};
}

/// A large thing at the top and a long one at the bottom, after some frames of nothing.
cv::Mat Drawn(int frame) {
    cv::Mat picture(kSize, CV_8UC3, cv::Scalar::all(60));
    if (frame < kFirst) return picture;
    cv::rectangle(picture, LargeAt(frame), {250, 250, 250}, cv::FILLED);
    cv::rectangle(picture, LongAt(frame), {250, 250, 250}, cv::FILLED);
    return picture;
}

class ContoursCommand : public QuarryCommand {
protected:
    void WriteThings() const { WriteVideo("clip.avi", kFrames, Drawn, kSize, 10); }

    std::vector<json> Contours(const Arguments& more = {}) const {
        std::vector<json> lines = RunJson(Arguments{"contours", "clip.avi"} + more);
        EXPECT_EQ(lines.size(), static_cast<std::size_t>(kFrames));
        return lines;
    }
};

std::vector<cv::Point> PixelsOf(const json& points) {
    std::vector<cv::Point> pixels;
    for (const json& point : points) {
        pixels.emplace_back(cvRound(point.at(0).get<double>() * kSize.width),
                            cvRound(point.at(1).get<double>() * kSize.height));
    }
    return pixels;
}

/// What surrounds the contour of a frame.
cv::Rect BoxOf(const json& line) {
    return cv::boundingRect(PixelsOf(line.at("points")));
}

/// Compression and the model's own cleaning may move edges a little.
void ExpectNear(const cv::Rect& box, const cv::Rect& expected) {
    EXPECT_NEAR(box.x, expected.x, 3);
    EXPECT_NEAR(box.y, expected.y, 3);
    EXPECT_NEAR(box.br().x, expected.br().x, 3);
    EXPECT_NEAR(box.br().y, expected.br().y, 3);
}

TEST_F(ContoursCommand, FindTheObjectAndMeasureIt) {
    WriteThings();
    const std::vector<json> lines = Contours();
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const json& line = lines[i];
        if (i < kFirst) {
            EXPECT_TRUE(line.at("points").empty()) << line;
            continue;
        }
        ExpectNear(BoxOf(line), LargeAt(static_cast<int>(i)));
        const std::vector<cv::Point> pixels = PixelsOf(line.at("points"));
        EXPECT_NEAR(line.at("area").get<double>(), cv::contourArea(pixels) / kSize.area(), 1e-6);
        EXPECT_NEAR(line.at("perimeter").get<double>(), cv::arcLength(pixels, true) / kSize.width, 1e-5);
    }
}

TEST_F(ContoursCommand, OfWhatIsInTheRectangleOnly) {
    WriteThings();
    const std::vector<json> lines = Contours({"--rect", "0,34,240,30"});
    for (std::size_t i = kFirst; i < lines.size(); ++i) {
        ExpectNear(BoxOf(lines[i]), LongAt(static_cast<int>(i)));
    }
    for (const json& line : Contours({"--rect", "0,0,5,5"})) {
        EXPECT_TRUE(line.at("points").empty()) << line;
        EXPECT_EQ(line.at("area"), 0);
        EXPECT_EQ(line.at("perimeter"), 0);
    }
}

TEST_F(ContoursCommand, SelectsByExtent) {
    WriteThings();
    const std::vector<json> lines = Contours({"--select", "diagonal"});
    for (std::size_t i = kFirst; i < lines.size(); ++i) {
        ExpectNear(BoxOf(lines[i]), LongAt(static_cast<int>(i)));
    }
}

TEST_F(ContoursCommand, MethodsKeepDifferentPointsOfOneBorder) {
    WriteThings();
    const json all = Contours({"--method", "none"}).back();
    const json simple = Contours({"--method", "simple"}).back();
    EXPECT_EQ(simple.at("points"), Contours().back().at("points")) << "what is taken when nothing is said";
    EXPECT_GT(all.at("points").size(), simple.at("points").size());
    EXPECT_EQ(all.at("area"), simple.at("area"));
    EXPECT_EQ(BoxOf(all), BoxOf(simple));
    // The border as the contour itself draws it.
    const std::vector<cv::Point> pixels = PixelsOf(all.at("points"));
    cv::Mat mask(kSize, CV_8UC1, cv::Scalar(0));
    cv::fillPoly(mask, std::vector<std::vector<cv::Point>>{pixels}, cv::Scalar(255));
    for (const auto& [name, method] :
         {std::pair("tc89-l1", cv::CHAIN_APPROX_TC89_L1), std::pair("tc89-kcos", cv::CHAIN_APPROX_TC89_KCOS)}) {
        std::vector<std::vector<cv::Point>> expected;
        cv::findContours(mask, expected, cv::RETR_LIST, method);
        ASSERT_EQ(expected.size(), 1U);
        EXPECT_EQ(PixelsOf(Contours({"--method", name}).back().at("points")), expected[0]) << name;
    }
}

TEST_F(ContoursCommand, AreDrawnInOrange) {
    WriteThings();
    const json line = Contours({"--out", "drawn.avi"}).back();
    const cv::Rect box = BoxOf(line);
    const auto onTheLeftSide = FramesOf(folder / "drawn.avi").back().at<cv::Vec3b>(box.y + box.height / 2, box.x);
    EXPECT_GT(onTheLeftSide[2], onTheLeftSide[0] + 60) << "orange";
}

TEST_F(ContoursCommand, AreCountedInTheSummary) {
    WriteThings();
    const std::vector<std::string> lines = Lines(Run({"contours", "clip.avi"}).out);
    EXPECT_NE(lines.at(0).find("points"), std::string::npos);
    EXPECT_EQ(lines.back().rfind("15 frames, an object in 5, ", 0), 0U) << lines.back();
}

TEST_F(ContoursCommand, TheWholeFrameMayBeNamed) {
    WriteThings();
    const std::vector<json> unnamed = Contours();
    const std::vector<json> named = Contours({"--rect", "0,0,240,64"});
    for (std::size_t i = 0; i < unnamed.size(); ++i) EXPECT_EQ(named[i].at("points"), unnamed[i].at("points"));
}

}  // namespace
