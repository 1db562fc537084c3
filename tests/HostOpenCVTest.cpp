#include <gtest/gtest.h>

#include <cstdint>
#include <opencv2/core.hpp>
#include <type_traits>
#include <utility>

#include "Quarry/HostOpenCV.hpp"
#include "support/Refusal.h"
#include "support/Scenes.h"

namespace quarry::test {
namespace {

template <class T, class = void>
constexpr bool kGivesMatrix = false;
template <class T>
constexpr bool kGivesMatrix<T, std::void_t<decltype(MatOf(std::declval<T>()))>> = true;

static_assert(kGivesMatrix<ImageView> && kGivesMatrix<const ImageSubtractor::Picture&> &&
                  kGivesMatrix<FirePixels::Flames&> && kGivesMatrix<const PackedImage&> && kGivesMatrix<FlowResult>,
              "a matrix over what stays");
static_assert(!kGivesMatrix<ImageSubtractor::Picture> && !kGivesMatrix<FirePixels::Flames> &&
                  !kGivesMatrix<PackedImage> && !kGivesMatrix<PackedMask>,
              "no matrix over what ends with the statement");
static_assert(std::is_convertible_v<PackedImage&, ImageView> && std::is_convertible_v<const PackedMask&, MaskView>,
              "a view of what stays");
static_assert(!std::is_constructible_v<ImageView, PackedImage> && !std::is_constructible_v<MaskView, PackedMask>,
              "no view of what ends with the statement");
static_assert(std::is_convertible_v<PackedImage, ImageArgument> && std::is_convertible_v<PackedMask, MaskArgument>,
              "calls take it");

bool Same(const cv::Mat& a, const cv::Mat& b) {
    return a.size() == b.size() && a.type() == b.type() && cv::norm(a, b, cv::NORM_INF) == 0;
}

TEST(HostOpenCV, ViewsAMatrix) {
    const cv::Mat frame = RandomFrame(9, 7, 1);
    const ImageView view = ViewOf(frame, 5);
    EXPECT_EQ(view.data(), frame.data);
    EXPECT_EQ(view.width(), 9);
    EXPECT_EQ(view.height(), 7);
    EXPECT_EQ(view.timestamp(), 5U);
    const cv::Mat mask(7, 9, CV_8UC1, cv::Scalar(3));
    EXPECT_EQ(MaskViewOf(mask).data(), mask.data);
    EXPECT_EQ(MaskViewOf(mask).At(8, 6), 3);
}

TEST(HostOpenCV, RefusesOtherTypes) {
    EXPECT_EQ(RefusalOf([] { ViewOf(cv::Mat(4, 4, CV_8UC4)); }),
              "quarry::ViewOf: a matrix of type CV_8UC4 is given; CV_8UC3 is needed");
    EXPECT_EQ(RefusalOf([] { ViewOf(cv::Mat()); }),
              "quarry::ViewOf: a matrix of type CV_8UC1 is given; CV_8UC3 is needed");
    EXPECT_EQ(RefusalOf([] { ViewOf(cv::Mat(4, 4, CV_32FC3)); }),
              "quarry::ViewOf: a matrix of type CV_32FC3 is given; CV_8UC3 is needed");
    EXPECT_EQ(RefusalOf([] { MaskViewOf(cv::Mat(4, 4, CV_8UC3)); }),
              "quarry::MaskViewOf: a matrix of type CV_8UC3 is given; CV_8UC1 is needed");
    EXPECT_EQ(RefusalOf([] { PackedImage(cv::Mat(4, 4, CV_16UC3)); }),
              "quarry::PackedImage: a matrix of type CV_16UC3 is given; CV_8UC3 is needed");
    EXPECT_EQ(RefusalOf([] { PackedMask(cv::Mat(4, 4, CV_8SC1)); }),
              "quarry::PackedMask: a matrix of type CV_8SC1 is given; CV_8UC1 is needed");
    const int sizes[] = {2, 3, 4};
    EXPECT_EQ(RefusalOf([&] { ViewOf(cv::Mat(3, sizes, CV_8UC3)); }),
              "quarry::ViewOf: a matrix of 3 dimensions is given; 2 are needed");
}

TEST(HostOpenCV, RefusesPaddedRows) {
    const cv::Mat frame = RandomFrame(9, 7, 1);
    EXPECT_EQ(RefusalOf([&] { ViewOf(frame(cv::Rect(1, 1, 4, 4))); }),
              "quarry::ViewOf: rows are 27 bytes apart; packed rows, 12 bytes apart, are needed (PackedImage and "
              "PackedMask copy what is not packed)");
    const cv::Mat mask(7, 9, CV_8UC1);
    EXPECT_EQ(RefusalOf([&] { MaskViewOf(mask(cv::Rect(0, 0, 8, 7))); }),
              "quarry::MaskViewOf: rows are 9 bytes apart; packed rows, 8 bytes apart, are needed (PackedImage and "
              "PackedMask copy what is not packed)");
}

TEST(HostOpenCV, PacksOnlyWhatIsPadded) {
    const cv::Mat frame = RandomFrame(9, 7, 1);
    const PackedImage shared(frame);
    EXPECT_EQ(shared.view().data(), frame.data);
    const cv::Mat region = frame(cv::Rect(2, 1, 5, 4));
    const PackedImage packed(region, 8);
    EXPECT_NE(packed.view().data(), region.data);
    EXPECT_EQ(packed.view().timestamp(), 8U);
    EXPECT_TRUE(Same(packed.matrix(), region));
    EXPECT_TRUE(Same(MatOf(packed), region));

    cv::Mat mask;
    cv::extractChannel(frame, mask, 0);
    const PackedMask sharedMask(mask);
    EXPECT_EQ(sharedMask.view().data(), mask.data);
    EXPECT_EQ(MaskView(sharedMask).width(), 9);
    const cv::Mat part = mask(cv::Rect(2, 1, 5, 4));
    EXPECT_TRUE(Same(PackedMask(part).matrix(), part));
}

TEST(HostOpenCV, PackedImagesKeepTheirPixels) {
    cv::Mat frame = RandomFrame(9, 7, 1);
    const cv::Mat copy = frame.clone();
    const PackedImage packed(frame);
    frame.release();
    EXPECT_TRUE(Same(MatOf(packed), copy));
}

TEST(HostOpenCV, GivesMatricesOverResults) {
    const cv::Mat first = RandomFrame(9, 7, 1);
    const cv::Mat second = RandomFrame(9, 7, 2);
    cv::Mat expected;
    cv::absdiff(first, second, expected);
    ImageSubtractor subtract;
    const ImageSubtractor::Picture difference = subtract(ViewOf(first), ViewOf(second));
    EXPECT_EQ(MatOf(difference).data, difference.data());
    EXPECT_TRUE(Same(MatOf(difference), expected));
    EXPECT_TRUE(Same(CloneOf(subtract(ViewOf(first), ViewOf(second))), expected));
    FirePixels search;
    EXPECT_EQ(CloneOf(search(ViewOf(first))).type(), CV_8UC1);
}

TEST(HostOpenCV, GivesMatricesOverMotion) {
    DenseOpticalFlow flow;
    flow.Update(ViewOf(RandomFrame(40, 30, 1)));
    flow.Update(ViewOf(RandomFrame(40, 30, 2)));
    const FlowResult field = flow.Result();
    const cv::Mat motion = MatOf(field);
    EXPECT_EQ(motion.type(), CV_32FC2);
    EXPECT_EQ(motion.at<cv::Vec2f>(11, 17)[1], field.At(17, 11).Dy);
    EXPECT_NE(CloneOf(field).data, motion.data);
}

}  // namespace
}  // namespace quarry::test
