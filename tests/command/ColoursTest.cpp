#include <cmath>

#include "command/CommandFixture.h"

using namespace quarry::test;

namespace {

const std::vector<std::pair<std::string, int>> kMethods = {{"correlation", cv::HISTCMP_CORREL},
                                                           {"chi-square", cv::HISTCMP_CHISQR},
                                                           {"intersection", cv::HISTCMP_INTERSECT},
                                                           {"bhattacharyya", cv::HISTCMP_BHATTACHARYYA},
                                                           {"alternative-chi-square", cv::HISTCMP_CHISQR_ALT},
                                                           {"kullback-leibler", cv::HISTCMP_KL_DIV}};

/// How often each hue and saturation occurs, counted one by one.
cv::Mat CountsOf(const cv::Mat& picture) {
    cv::Mat hsv;
    cv::cvtColor(picture, hsv, cv::COLOR_BGR2HSV);
    cv::Mat counts(50, 60, CV_32F, cv::Scalar(0));
    for (int row = 0; row < hsv.rows; ++row) {
        for (int column = 0; column < hsv.cols; ++column) {
            const auto& pixel = hsv.at<cv::Vec3b>(row, column);
            counts.at<float>(pixel[0] * 50 / 180, pixel[1] * 60 / 256) += 1;
        }
    }
    return counts;
}

class ColoursCommand : public QuarryCommand {
protected:
    void SetUp() override {
        QuarryCommand::SetUp();
        first = WritePicture("first.png", 1, 2);
        second = WritePicture("second.png", 2, 1);
    }

    json Compared(const Arguments& more) const {
        return RunJson(Arguments{"colours", "first.png", "second.png"} + more).at(0);
    }

    cv::Mat first;
    cv::Mat second;
};

TEST_F(ColoursCommand, ComparesHowOftenColoursOccur) {
    const cv::Rect area(15, 4, 30, 21);
    for (const auto& [name, method] : kMethods) {
        const json line = Compared({"--method", name, "--area", "0.25,0.1,0.5,0.5"});
        const double expected = cv::compareHist(CountsOf(first(area)), CountsOf(second(area)), method);
        EXPECT_NEAR(line.at("value").get<double>(), expected, 1e-5 * std::max(1.0, std::abs(expected))) << name;
        EXPECT_EQ(line.at("method"), name);
        EXPECT_EQ(line.at("area"), json({15, 4, 30, 21}));
        EXPECT_EQ(line.at("second"), "second.png");
    }
}

TEST_F(ColoursCommand, TakesTheWholePictureAndCorrelationByDefault) {
    const double expected = cv::compareHist(CountsOf(first), CountsOf(second), cv::HISTCMP_CORREL);
    EXPECT_NEAR(Compared({}).at("value").get<double>(), expected, 1e-5);
    const Outcome outcome = Run({"colours", "first.png", "first.png"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, "correlation  1.000000\n");
    EXPECT_EQ(Run({"colours", "first.png", "first.png", "--method", "intersection"}).out,
              "intersection  2623.000000\n");
}

TEST_F(ColoursCommand, TakesTheSamePixelsOfALargerPicture) {
    cv::Mat large = RandomFrame(100, 80, 3);
    second.copyTo(large(cv::Rect({0, 0}, second.size())));
    cv::imwrite((folder / "large.png").string(), large);
    const json line = RunJson({"colours", "first.png", "large.png"}).at(0);
    EXPECT_EQ(line.at("value"), Compared({}).at("value"));
}

TEST_F(ColoursCommand, NamesThePictureThatIsTooSmall) {
    cv::imwrite((folder / "small.png").string(), RandomFrame(40, 43, 3));
    ExpectOneLineError({"colours", "first.png", "small.png"}, 1, "small.png: is 40 x 43 pixels");
    EXPECT_EQ(Run({"colours", "first.png", "small.png", "--area", "0,0,0.5,1"}).exitCode, 0);
}

}  // namespace
