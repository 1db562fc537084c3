#pragma once

#include <opencv2/objdetect.hpp>
#include <vector>

#include "Quarry.Frame/ClassificationProcessor.h"

/// Finds standing people with histograms of oriented gradients and a linear support vector machine (Dalal and Triggs,
/// CVPR 2005), OpenCV's default people detector.
///
/// A detection is dropped if another detection of the same area contains it, if its height is outside the limits, or if
/// its weight is negative. Two identical detections drop each other. Detections of different areas are not compared.
/// The lower limit is `MinSize` times the frame's height, but at least 128 pixels; the upper one is `MaxSize` times the
/// frame's height. Areas no wider than 64 pixels or no higher than the lower limit are not searched. Rectangles are
/// relative to the frame.
///
/// Pixels are read in place during the call; rows are packed (`width * 3` bytes), `stride` is not consulted. The
/// detections belong to the result, which the host gives back with DisposeResult.
/// @throws MarshalingException    a record's length word or tag is wrong; the result record is untouched
/// @throws std::invalid_argument  `AreasCount` is negative, or `Areas` is null while `AreasCount` is above 0; neither
///                                is read when `WholeFrame` is 1
/// @throws cv::Exception          a side of the frame is negative; or an area is searched, and `data` is null or the
///                                area does not lie inside the frame
class HogSvmHumanClassifier : public ClassificationProcessor {
public:
    explicit HogSvmHumanClassifier(ClassificationOptions* source);

    ClassificationResult DoProcess(ClassificationData data) override;

    /// For each rectangle, whether another one contains it. Identical rectangles contain each other.
    static std::vector<bool> FindContained(const std::vector<cv::Rect>& rectangles);

private:
    /// Sets how finely the detector searches. The spelling is part of the interface.
    void CalcInternalParametrs(double sensitivity);

    /// Stores a frame size and computes the limits of a person's height from it.
    void ReInit(int width, int height);

    /// The search areas in pixels.
    void PrepareAreas(std::vector<cv::Rect>& areas, ClassificationData data) const;

    /// Searches the areas of the frame, in order.
    void FindResponse(const Image& frame, std::vector<cv::Rect>& areas);

    /// Adds the detections of one area, without those that are dropped.
    void Filter(const cv::Rect& area, const std::vector<cv::Rect>& rectangles, const std::vector<double>& weights);

    void PrepareResult(ClassificationResult& result, const std::vector<cv::Rect>& found,
                       const std::vector<double>& weights) const;

    cv::HOGDescriptor descriptor;
    cv::Size windowStride;  ///< pixels
    double scale = 0;       ///< from one level of the pyramid to the next
    cv::Size frameSize;     ///< of the last frame, pixels
    int minHeight = 0;      ///< of a person, pixels
    int maxHeight = 0;
    std::vector<cv::Rect> foundRectangles;  ///< in the frame, pixels
    std::vector<double> foundWeights;
};
