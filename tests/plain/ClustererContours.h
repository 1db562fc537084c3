#pragma once

#include <vector>

#include "Quarry/Records/ClustererContours.h"
#include "plain/Steps.h"

/// Clusters of contours, in plain steps.
namespace quarry::plain {

struct Blob {
    Outline outline;
    float centerX, centerY;
};

inline bool operator==(const Blob& a, const Blob& b) {
    return a.outline == b.outline && SameBits(a.centerX, b.centerX) && SameBits(a.centerY, b.centerY);
}

template <class Stream>
Stream& operator<<(Stream& out, const Blob& blob) {
    out << blob.outline << ", centre (" << blob.centerX << ", " << blob.centerY << ")";
    return out;
}

inline Blob BlobOf(const PixelContour& contour, const cv::Size& frame) {
    const cv::Moments moments = cv::moments(contour);
    const auto x = static_cast<float>(Truncated(moments.m10 / moments.m00));
    const auto y = static_cast<float>(Truncated(moments.m01 / moments.m00));
    return {{PlacesOf(contour, {}, frame), static_cast<float>(cv::contourArea(contour) / (frame.width * frame.height)),
             static_cast<float>(cv::arcLength(contour, true) / frame.width)},
            x / static_cast<float>(frame.width),
            y / static_cast<float>(frame.height)};
}

inline std::vector<Blob> Clusters(const cv::Mat& frame, float precision, float minAreaRate) {
    std::vector<Blob> blobs;
    for (const PixelContour& contour : BlobsOf(frame, precision, minAreaRate)) {
        blobs.push_back(BlobOf(contour, frame.size()));
    }
    return blobs;
}

/// The clusters of a record.
inline std::vector<Blob> ClustersOf(const ClustererResult& result) {
    std::vector<Blob> blobs;
    for (int i = 0; i < result.Count; ++i) {
        const Cluster& cluster = result.Clusters[i];
        blobs.push_back({OutlineOf(*cluster.Contour), cluster.CenterX, cluster.CenterY});
    }
    return blobs;
}

}  // namespace quarry::plain
