#pragma once

#include <opencv2/core.hpp>

#include "Quarry.Frame/Processor.h"

/// The two dominant colours of a person's upper body and the two of the legs, by k-means (Arthur and Vassilvitskii,
/// 2007, choose its first centres) over the pixels between body keypoints.
///
/// A colour is three floats from 0 to 1, the frame's channels in reverse order. In each area the colour of the larger
/// cluster comes first; if both are equal, that of the second centre. Keypoints beyond the frame are moved to its
/// border. The first centres come from OpenCV's global random numbers, which the library does not seed: results may
/// differ slightly from call to call.
///
/// Pixels are read in place during the call; rows are packed (`width * 3` bytes), `stride` is not consulted. 17
/// keypoints in the COCO order are read, whatever their count says. The colours belong to the result, which the host
/// gives back with DisposeResult.
/// @throws MarshalingException    a record's length word or tag is wrong; the result record is untouched
/// @throws std::invalid_argument  `Keypoints.Points` is null
/// @throws cv::Exception          `data` is null while the frame is not empty, or an area covers fewer than two pixels
class KMeanColorExtractor : public Processor<KMeanOptions, KMeanData, KMeanResult> {
public:
    using Processor::Processor;

    KMeanResult DoProcess(KMeanData data) override;
    void DoDisposeData(KMeanResult* result) override;

    /// Moves points beyond the frame to its border.
    static void FilterPolygonsPoints(cv::Point* points, int count, int width, int height);
};
