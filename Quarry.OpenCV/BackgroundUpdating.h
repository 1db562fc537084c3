#pragma once

#include <cstdint>
#include <opencv2/core.hpp>
#include <opencv2/video/background_segm.hpp>

#include "Quarry.OpenCV/CVBackgroungModel.h"

/// Background image and foreground mask of a stream of colour frames.
///
/// The background is a mixture of Gaussians per pixel (Zivkovic, ICPR 2004). The learning rate follows the real time
/// between frames, with an exponential time constant in seconds, which is shorter while the background is being learnt.
/// The foreground mask is not the mixture's own: a pixel is foreground where the grey difference between the last frame
/// and the background exceeds a threshold.
///
/// Frames are read in place, never copied: the pixels of the last frame must live until GetUpdateResult has returned.
/// Rows are packed (`width * 3` bytes), `stride` is not consulted. The result's buffers belong to this object and are
/// valid until its next Update or its end. A frame of another size begins a new model.
/// @throws cv::Exception          `data` is null while the frame is not empty, or the frame is empty
/// @throws std::invalid_argument  the frame has more than 2147483647 bytes (`std::bad_alloc` if their number wraps to a
///                                negative 32-bit number)
/// @throws std::logic_error       a result is asked for before the first frame
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

    /// The share of the background, 0..1, that is replaced in `elapsedSeconds` if `period` seconds replace 88 % of it.
    static float CalcCurrentRate(float elapsedSeconds, float period);

    /// Removes specks from an 8-bit mask, in place. A pixel stays 255 only if it is 255 and the nine bytes of its 3 x 3
    /// neighbourhood add up to 3 x 255 or more; any other pixel becomes 0. Rows are processed from left to right and
    /// top to bottom, so the neighbours above and to the left have their new values. The border does not change.
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
