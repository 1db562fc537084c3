#pragma once

#include <opencv2/core.hpp>

#include "Quarry.Frame/Updatable.h"

/// Follows one rectangle through a stream of colour frames with a correlation filter that minimises the output sum of
/// squared error (Bolme et al., CVPR 2010).
///
/// The first frame trains the filter on the target's rectangle; that and every later frame are searched around the last
/// position. A frame is accepted when its correlation peak is sharp enough, and then blended into the filter.
///
/// Frames are read in place during the call; rows are packed (`width * 3` bytes), `stride` and `timestamp` are not
/// consulted. The updater's state stays NoResult; the result's `Found` says what became of the target. The result holds
/// no buffer.
/// @throws cv::Exception          `data` is null while the frame is not empty, the frame is empty, or the rectangle is
///                                smaller than 2 x 2; a frame that fails leaves the tracker as it was, but that one on
///                                which memory ends after the training leaves it trained, its target not found yet
/// @throws std::invalid_argument  `TrackerMode` is neither 0 nor 1 (when the tracker is created)
class MosseTracker : public Updatable<MosseTrackerOptions, MosseTrackerData, MosseTrackerResult> {
public:
    explicit MosseTracker(MosseTrackerOptions* source);

    void DoUpdate(MosseTrackerData data) override;
    void InitResult() override;
    void AssignResultData() override;
    ~MosseTracker() override;
    bool NeedInitialize(MosseTrackerData data) override;
    void DoInitialize(MosseTrackerData data) override;

    /// A slightly turned and sheared copy of the window. The warp is the same at every call: all samples are alike.
    static cv::Mat randWarp(const cv::Mat& window);

    /// Spectra of the training samples, which are all alike, added one by one: not multiplied, since every addition
    /// rounds.
    static cv::Mat SumOfSamples(const cv::Mat& sample);

    /// The conjugate of a quotient of spectra; 0 where the denominator is 0. It is meant for real denominators, such as
    /// the filter's: its imaginary part is made with a sum where a complex one would want a difference.
    static cv::Mat divDFTs(const cv::Mat& numerator, const cv::Mat& denominator);

private:
    /// Trains the filter on the rectangle of the first frame.
    void initImpl(const cv::Mat& frame, const cv::Rect_<double>& rect);

    /// Log, zero mean, unit deviation, tapered towards the borders; in place.
    void preProcess(cv::Mat& window) const;

    /// Correlates a patch with the filter.
    /// @param spectrum  the patch's
    /// @param delta  the peak's place relative to the patch's centre, pixels
    /// @return peak-to-sidelobe ratio
    double correlate(const cv::Mat& spectrum, cv::Point_<int>& delta) const;

    /// Searches a frame and, when the target is found, follows it and learns.
    /// @return whether the target was found
    bool updateImpl(const cv::Mat& frame);

    /// Spectrum of the grey window around a point, preprocessed.
    cv::Mat PatchSpectrum(const cv::Mat& frame, const cv::Point2d& middle) const;

    double learningRate;
    double psrThreshold;  ///< least peak-to-sidelobe ratio of a target that is found
    bool needInitialize = true;
    bool found = false;     ///< whether the last frame showed the target
    cv::Point2d center;     ///< pixels
    cv::Size size;          ///< of the window, pixels
    cv::Mat hanningWindow;  ///< CV_32F, as are the spectra, which have two channels
    cv::Mat G;              ///< spectrum of the response that is wanted: a narrow peak at the window's centre
    cv::Mat H;              ///< the filter
    cv::Mat A;              ///< its numerator
    cv::Mat B;              ///< its denominator
};
