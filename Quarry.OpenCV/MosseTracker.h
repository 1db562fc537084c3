#pragma once

#include <opencv2/core.hpp>

#include "Quarry.Frame/Updatable.h"

/// Follows one rectangle through a stream of colour frames with a correlation filter that minimises the output sum of
/// squared error (Bolme et al., CVPR 2010).
///
/// The first frame trains the filter on the target's rectangle. Every frame, the first included, is searched around the
/// last position. If the correlation peak is sharp enough, the target is found, and the frame is blended into the
/// filter.
///
/// Frames are read in place during the call; rows are packed (`width * 3` bytes), `stride` and `timestamp` are not
/// consulted. The updater's state stays NoResult; the result's `Found` says whether the target was found. The result
/// holds no buffer.
///
/// A frame that fails leaves the tracker as it was, with one exception: if memory runs out after the training, the
/// tracker is trained and its target not found yet.
/// @throws cv::Exception          `data` is null while the frame is not empty, the frame is empty, or the rectangle is
///                                smaller than 2 x 2
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

    /// A slightly turned and sheared copy of the window. The warp is the same at every call, so all samples are equal.
    static cv::Mat randWarp(const cv::Mat& window);

    /// The sum of the spectra of the training samples. The samples are equal, but are added one by one rather than
    /// multiplied, since every addition rounds.
    static cv::Mat SumOfSamples(const cv::Mat& sample);

    /// The conjugate of a quotient of spectra; 0 where the denominator is 0. It holds for real denominators, such as
    /// the filter's: a complex denominator would need a difference in the imaginary part, which is a sum here.
    static cv::Mat divDFTs(const cv::Mat& numerator, const cv::Mat& denominator);

private:
    /// Trains the filter on the rectangle of the first frame.
    void initImpl(const cv::Mat& frame, const cv::Rect_<double>& rect);

    /// Log, zero mean, unit deviation, tapered towards the borders; in place.
    void preProcess(cv::Mat& window) const;

    /// Correlates a patch with the filter.
    /// @param spectrum  the patch's
    /// @param delta  the peak's position relative to the patch's centre, pixels
    /// @return peak-to-sidelobe ratio
    double correlate(const cv::Mat& spectrum, cv::Point_<int>& delta) const;

    /// Searches a frame and, when the target is found, follows it and learns.
    /// @return whether the target was found
    bool updateImpl(const cv::Mat& frame);

    /// Spectrum of the grey window around a point, preprocessed.
    cv::Mat PatchSpectrum(const cv::Mat& frame, const cv::Point2d& middle) const;

    double learningRate;
    double psrThreshold;  ///< lowest peak-to-sidelobe ratio at which the target counts as found
    bool needInitialize = true;
    bool found = false;     ///< whether the last frame showed the target
    cv::Point2d center;     ///< pixels
    cv::Size size;          ///< of the window, pixels
    cv::Mat hanningWindow;  ///< CV_32F
    cv::Mat G;              ///< CV_32FC2, spectrum of the wanted response: a narrow peak at the window's centre
    cv::Mat H;              ///< CV_32FC2, the filter
    cv::Mat A;              ///< CV_32FC2, the filter's numerator
    cv::Mat B;              ///< CV_32FC2, the filter's denominator
};
