#pragma once

#include <cstdint>
#include <opencv2/core.hpp>
#include <opencv2/video/background_segm.hpp>

#include "Quarry.OpenCV/CVBackgroungModel.h"

/// Background image and foreground mask of a stream of colour frames.
///
/// The background is a mixture of Gaussians per pixel (Zivkovic, ICPR 2004), learnt at a rate that follows the real
/// time between frames: an exponential time constant in seconds, shorter while the background is being learnt. The
/// foreground is not the mixture's own: it is where the grey difference between the last frame and the background
/// exceeds a threshold.
///
/// Frames are read in place, never copied: the pixels of the last one must live until GetUpdateResult has returned.
/// Rows are packed (`width * 3` bytes), `stride` is not consulted. The result's buffers are this object's own, valid
/// until the next Update or the end. A frame of another size begins a new model.
/// @throws cv::Exception          `data` is null while the frame is not empty, or the frame is empty
/// @throws std::invalid_argument  the frame has more bytes than a 32-bit size can say; where that wraps to a negative
///                                size it is std::bad_alloc
/// @throws std::logic_error       a result is asked for before a frame was taken in
class BackgroundUpdatingSystem : public CVBackgroungModel {
public:
    using CVBackgroungModel::CVBackgroungModel;

    void DoUpdate(BackgroundData data) override;
    void InitResult() override;
    void AssignResultData() override;
    ~BackgroundUpdatingSystem() override;
    bool NeedInitialize(BackgroundData data) override;
    void DoInitialize(BackgroundData data) override;
    void Dispose() override;

    void InitBuffers();
    void ReleaseBuffers();

    /// The share of the background that `elapsedSeconds` replace when `period` seconds replace most of it.
    static float CalcCurrentRate(float elapsedSeconds, float period);

    /// Clears the specks of an 8-bit mask: a pixel stays 255 only if it is 255 and the nine bytes around and at it sum
    /// to three foreground pixels or more. It works in place, row by row, so the neighbours above and to the left are
    /// those already cleared. The border stays as it is.
    static void DeNoise(cv::Mat& mask);

private:
    cv::Ptr<cv::BackgroundSubtractorMOG2> subtractor;
    int width = 0;  ///< of the frames that the model was built for; 0 before the first
    int height = 0;
    cv::Mat mask;                  ///< header over the result's ForegroundMask
    cv::Mat background;            ///< header over the result's BackgroundImage
    cv::Mat reserved;              ///< header over the result's ReservedImage
    cv::Mat difference;            ///< per-channel difference of the last frame and the background
    cv::Mat frame;                 ///< header over the host's last frame
    uint64_t lastTimestamp = 0;    ///< ticks
    uint64_t accumulatedTime = 0;  ///< ticks
    float learningPeriod = 0;      ///< seconds
    float adaptationTime = 0;      ///< seconds
    float threshold = 0;           ///< grey levels
};
