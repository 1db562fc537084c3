// What the cascade detector asks OpenCV for. OpenCV heeds the flags with models of an old format only, so that what is
// found does not tell them.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <opencv2/objdetect.hpp>
#include <vector>

#include "Quarry.OpenCV/CascadeClassifier.h"
#include "Quarry/Quarry.h"
#include "support/Framed.h"
#include "support/Scenes.h"

namespace {

/// How OpenCV was asked last.
struct Asked {
    double scaleFactor;
    int minNeighbors;
    int flags;
    cv::Size minSize;
    cv::Size maxSize;
} asked;

}  // namespace

/// Stands before OpenCV's own.
void cv::CascadeClassifier::detectMultiScale(cv::InputArray image, std::vector<cv::Rect>& objects, double scaleFactor,
                                             int minNeighbors, int flags, cv::Size minSize, cv::Size maxSize) {
    asked = {scaleFactor, minNeighbors, flags, minSize, maxSize};
    using Call =
        void (*)(cv::CascadeClassifier*, cv::InputArray, std::vector<cv::Rect>&, double, int, int, cv::Size, cv::Size);
    static const auto own = reinterpret_cast<Call>(
        dlsym(RTLD_NEXT,
              "_ZN2cv17CascadeClassifier16detectMultiScaleERKNS_11_InputArrayERSt6vectorINS_5Rect_IiEESaIS6_EEdii"
              "NS_5Size_IiEESB_"));
    own(this, image, objects, scaleFactor, minNeighbors, flags, minSize, maxSize);
}

namespace {

using namespace quarry::test;

TEST(CascadePresets, AreWhatOpenCvIsAskedFor) {
    constexpr const char* kFaces = "/usr/share/opencv4/haarcascades/haarcascade_frontalface_alt.xml";
    if (!std::filesystem::exists(kFaces)) GTEST_SKIP() << "no " << kFaces;
    const struct {
        int minNeighbors, flags;
    } presets[] = {{5, cv::CASCADE_SCALE_IMAGE},
                   {1, cv::CASCADE_SCALE_IMAGE},
                   {2, cv::CASCADE_DO_CANNY_PRUNING + cv::CASCADE_FIND_BIGGEST_OBJECT}};
    const cv::Mat frame = RandomFrame(160, 120, 1);
    for (uint32_t mode = 0; mode < 3; ++mode) {
        auto options = FramedOptions<ClassificationOptions>();
        options->Mode = mode;
        options->MinSize = 40.9;
        options->MaxSize = -1;
        options->CascadePath = kFaces;
        ClassificationData data{};
        const RelRect whole = {0, 0, 1, 1};
        data.Frame = ImageOf(frame);
        data.Areas = &whole;
        CascadeClassifier classifier(options.record());
        ClassificationResult result = classifier.DoProcess(data);
        classifier.DoDisposeData(&result);
        EXPECT_EQ(asked.scaleFactor, 1.1) << mode;
        EXPECT_EQ(asked.minNeighbors, presets[mode].minNeighbors) << mode;
        EXPECT_EQ(asked.flags, presets[mode].flags) << mode;
        EXPECT_EQ(asked.minSize, cv::Size(40, 40)) << mode;
        EXPECT_EQ(asked.maxSize, cv::Size()) << mode;
    }
}

}  // namespace
