#include "Quarry.OpenCV/ColorComparingProcessor.h"

#include "Quarry.OpenCV/CVHelper.h"

ColorComparingOutputData ColorComparingProcessor::DoProcess(ColorComparingInputData data) {
    const cv::Mat image1 = Wrap("FirstImage", data.FirstImage);
    const cv::Mat image2 = Wrap("SecondImage", data.SecondImage);
    // NOLINTBEGIN(bugprone-implicit-widening-of-multiplication-result): the expressions are part of the interface
    assert(data.FirstImage.width * 3 == image1.step);   // The line number of this assertion is part of the interface.
    assert(data.SecondImage.width * 3 == image2.step);  // The line number of this assertion is part of the interface.
    // NOLINTEND(bugprone-implicit-widening-of-multiplication-result)
    const cv::Rect area = CVHelper::RelativeToAbsolute(data.Area, data.FirstImage.width, data.FirstImage.height);
    const cv::Mat histogram1 = HistogramOf(quarry::RegionOf(image1, area));
    const cv::Mat histogram2 = HistogramOf(quarry::RegionOf(image2, area));
    return {0, cv::compareHist(histogram1, histogram2, options.CompareMethod)};
}

cv::Mat ColorComparingProcessor::HistogramOf(const cv::Mat& region) {
    constexpr int kHueAndSaturation[] = {0, 1};
    constexpr int kBins[] = {50, 60};
    constexpr float kHues[] = {0, 180};
    constexpr float kSaturations[] = {0, 256};
    const float* ranges[] = {kHues, kSaturations};
    cv::Mat hsv;
    cv::cvtColor(region, hsv, cv::COLOR_BGR2HSV);
    cv::Mat histogram;
    cv::calcHist(&hsv, 1, kHueAndSaturation, cv::noArray(), histogram, 2, kBins, ranges, true, false);
    return histogram;
}
