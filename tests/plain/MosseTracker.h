#pragma once

#include <opencv2/core.hpp>

#include "Quarry/SharedRecords.h"

namespace quarry::plain {

/// The correlation tracker in plain steps, each a call of OpenCV into a matrix of its own; all of the training samples
/// are warped, transformed and added.
class MosseTracker {
public:
    /// Trains on the target's rectangle in a frame.
    MosseTracker(uint32_t mode, const cv::Mat& frame, const PixelRect& rect);

    /// Searches a frame, the one that trained it included.
    void Update(const cv::Mat& frame) { found = Track(frame); }

    PixelRect Rect() const;

    bool found = false;

    static cv::Mat Divide(const cv::Mat& numerator, const cv::Mat& denominator);
    static cv::Mat Warped(const cv::Mat& window);

private:
    bool Track(const cv::Mat& frame);
    cv::Mat Crop(const cv::Mat& frame) const;
    void Prepare(cv::Mat& window) const;
    void Blend(const cv::Mat& fresh, cv::Mat& kept) const;

    double rate;
    double threshold;
    double centerX = 0;
    double centerY = 0;
    int width = 0;
    int height = 0;
    cv::Mat taper;
    cv::Mat target;
    cv::Mat filter;
    cv::Mat upper;
    cv::Mat lower;
};

}  // namespace quarry::plain
