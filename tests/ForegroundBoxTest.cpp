#include <gtest/gtest.h>

#include <algorithm>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "Quarry.OpenCV/ForegroundBox.h"
#include "support/Footage.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::test;

using Contours = std::vector<std::vector<cv::Point>>;

/// Noise of which about `share` is not 0.
cv::Mat RandomImage(const cv::Size& size, int type, double share, cv::RNG& random) {
    cv::Mat image = cv::Mat::zeros(size, type);
    const int channels = image.channels();
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width * channels; ++x) {
            if (random.uniform(0.0, 1.0) < share) image.ptr(y)[x] = static_cast<uint8_t>(random.uniform(1, 256));
        }
    }
    return image;
}

/// A few pixels in an image that is 0 everywhere else.
cv::Mat SparseImage(const cv::Size& size, int type, cv::RNG& random) {
    cv::Mat image = cv::Mat::zeros(size, type);
    for (int count = random.uniform(0, 4); count > 0; --count) {
        const int x = random.uniform(0, size.width * image.channels());
        image.ptr(random.uniform(0, size.height))[x] = static_cast<uint8_t>(random.uniform(1, 256));
    }
    return image;
}

/// The box, pixel by pixel.
cv::Rect Reference(const cv::Mat& image) {
    int left = image.cols;
    int top = image.rows;
    int right = -1;
    int bottom = -1;
    for (int y = 0; y < image.rows; ++y) {
        for (int x = 0; x < image.cols; ++x) {
            const uint8_t* const pixel = image.ptr(y, x);
            if (std::all_of(pixel, pixel + image.channels(), [](uint8_t byte) { return byte == 0; })) continue;
            left = std::min(left, x);
            right = std::max(right, x);
            top = std::min(top, y);
            bottom = std::max(bottom, y);
        }
    }
    if (right < 0) return {0, 0, 1, 1};
    const cv::Point first(std::max(left - 1, 0), std::max(top - 1, 0));
    const cv::Point end(std::min(right + 2, image.cols), std::min(bottom + 2, image.rows));
    return {first, end};
}

Contours ContoursOf(const cv::Mat& image, int mode, int method, const cv::Point& offset = {}) {
    Contours contours;
    cv::findContours(image.clone(), contours, mode, method, offset);
    return contours;
}

void ExpectTheSameContours(const cv::Mat& image) {
    const cv::Rect box = quarry::ForegroundBox(image);
    for (const int mode : {cv::RETR_EXTERNAL, cv::RETR_LIST}) {
        for (const int method :
             {cv::CHAIN_APPROX_NONE, cv::CHAIN_APPROX_SIMPLE, cv::CHAIN_APPROX_TC89_L1, cv::CHAIN_APPROX_TC89_KCOS}) {
            ASSERT_EQ(ContoursOf(image(box), mode, method, box.tl()), ContoursOf(image, mode, method))
                << "mode " << mode << ", method " << method << "\n"
                << image;
        }
    }
}

TEST(ForegroundBox, HoldsWhatIsNotZeroAndOnePixelAround) {
    cv::RNG random(7);
    for (int i = 0; i < 20000; ++i) {
        const cv::Size size(random.uniform(1, 40), random.uniform(1, 20));
        const int type = CV_8UC(random.uniform(1, 5));
        const cv::Mat image =
            i % 2 == 0 ? SparseImage(size, type, random) : RandomImage(size, type, random.uniform(0.0, 0.1), random);
        ASSERT_EQ(quarry::ForegroundBox(image), Reference(image)) << "image " << i << ", " << size;
    }
}

TEST(ForegroundBox, LooksAtAPartOfAnImageAlone) {
    cv::RNG random(8);
    for (int i = 0; i < 5000; ++i) {
        cv::Mat image = RandomImage({33, 21}, CV_8UC1, 0.3, random);
        const cv::Rect part(random.uniform(0, 30), random.uniform(0, 18), random.uniform(1, 4), random.uniform(1, 4));
        image(part).setTo(0);
        image.at<uint8_t>(part.tl()) = static_cast<uint8_t>(random.uniform(0, 2));
        ASSERT_EQ(quarry::ForegroundBox(image(part)), Reference(image(part))) << "image " << i << ", " << part;
    }
}

TEST(ForegroundBox, FindsTheOnlyByteOfALargeImage) {
    cv::RNG random(9);
    cv::Mat image = cv::Mat::zeros(1080, 1920, CV_8UC3);
    EXPECT_EQ(quarry::ForegroundBox(image), cv::Rect(0, 0, 1, 1));
    for (int i = 0; i < 50; ++i) {
        const int x = random.uniform(0, 5760);
        const int y = random.uniform(0, 1080);
        image.ptr(y)[x] = 1;
        EXPECT_EQ(quarry::ForegroundBox(image), cv::Rect(x / 3 - 1, y - 1, 3, 3) & cv::Rect(0, 0, 1920, 1080))
            << x << ", " << y;
        image.ptr(y)[x] = 0;
    }
}

TEST(ForegroundBox, OfAnImageWithoutPixelsIsEmpty) {
    uint8_t byte = 1;
    for (const cv::Size& size : {cv::Size(0, 0), cv::Size(5, 0), cv::Size(0, 5), cv::Size(-3, -3), cv::Size(-3, 3)}) {
        EXPECT_TRUE(quarry::ForegroundBox(cv::Mat(size.height, size.width, CV_8UC1, &byte)).empty()) << size;
    }
}

TEST(ForegroundBox, HoldsTheContoursOfSmallImages) {
    cv::RNG random(10);
    for (int i = 0; i < 12000; ++i) {
        const cv::Size size(random.uniform(1, 9), random.uniform(1, 9));
        ExpectTheSameContours(RandomImage(size, CV_8UC1, random.uniform(0.0, 1.0), random));
        if (HasFatalFailure()) return;
    }
}

TEST(ForegroundBox, HoldsTheContoursOfObjects) {
    cv::RNG random(11);
    for (const cv::Size& size : {cv::Size(101, 77), cv::Size(320, 240), cv::Size(641, 479)}) {
        cv::Mat mask = ObjectMask(size.width, size.height);
        ExpectTheSameContours(mask);
        mask(cv::Rect(0, size.height / 4, size.width / 4, size.height / 2)).setTo(255);  // touches an edge
        ExpectTheSameContours(mask);
        cv::Mat specks = RandomImage(size, CV_8UC1, 0.02, random);
        specks(cv::Rect(0, 0, size.width, size.height / 3)).setTo(0);
        ExpectTheSameContours(specks);
    }
}

TEST(ForegroundBox, HoldsTheContoursOfRealFrames) {
    const std::vector<cv::Mat> frames = PedestrianFrames(6);
    if (frames.empty()) GTEST_SKIP() << "no footage in " << MediaDirectory();
    for (std::size_t i = 1; i < frames.size(); ++i) {
        cv::Mat change;
        cv::absdiff(frames[0], frames[i], change);
        cv::cvtColor(change, change, cv::COLOR_BGR2GRAY);
        cv::threshold(change, change, 40, 255, cv::THRESH_BINARY);
        ExpectTheSameContours(change);
    }
}

}  // namespace
