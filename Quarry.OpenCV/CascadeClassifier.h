#pragma once

#include <memory>
#include <opencv2/objdetect.hpp>
#include <vector>

#include "Quarry.Frame/ClassificationProcessor.h"

/// Finds objects of one kind in a region of a frame with a cascade of boosted features (Viola and Jones, CVPR 2001).
///
/// Only the first area is searched, whatever `AreasCount` says; `WholeFrame` is not consulted. The rectangles are
/// fractions of the area, not of the frame, with their origin at the area's corner: a host that searches a part of the
/// frame maps them back.
/// Weights are not set.
///
/// Pixels are read in place during the call; rows are packed (`width * 3` bytes), `stride` is not consulted. The model
/// is read when the processor is created. The detections belong to the result, which the host gives back with
/// DisposeResult.
/// @throws MarshalingException    a record's length word or tag is wrong; the result record is untouched
/// @throws std::invalid_argument  `Mode` is above 2 or `CascadePath` is null (when created), or `Areas` is null
/// @throws cv::Exception          `CascadePath` is empty, or names a file that OpenCV cannot parse (when created);
///                                `data` is null while the frame is not empty, the area does not lie inside the frame
///                                or has no pixels, or no model was loaded: each call reports a missing file, creation
///                                does not
class CascadeClassifier : public ClassificationProcessor {
public:
    explicit CascadeClassifier(ClassificationOptions* source);

    ClassificationResult DoProcess(ClassificationData data) override;

    /// Rectangles as fractions of a size, in their order.
    static std::unique_ptr<RelRect[]> GetRects(const std::vector<cv::Rect>& rectangles, const cv::Size& size);

private:
    /// How thoroughly the detector looks.
    struct Preset {
        double scaleFactor;  ///< from one size of the search window to the next
        int minNeighbors;    ///< a detection needs more overlapping hits than this
        int flags;           ///< `cv::CASCADE_...`
    };
    static const Preset& PresetOf(const ClassificationOptions& options);

    Preset preset;
    cv::CascadeClassifier cascade;
    cv::Size minSize;  ///< pixels; empty: no limit
    cv::Size maxSize;
};
