/// @file
/// Steps that the plain forms of several operations share. Nothing here knows the library.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "Quarry/SharedRecords.h"

namespace quarry::plain {

/// Whether two numbers are the same to the last bit; all that are not a number count as the same.
template <class Number>
bool SameBits(Number a, Number b) {
    // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): the bits are what is compared
    return std::memcmp(&a, &b, sizeof(a)) == 0 || (std::isnan(a) && std::isnan(b));
}

/// Without the fraction; the lowest integer for what no integer holds.
inline int Truncated(double value) {
    const bool fits = -2147483649.0 < value && value < 2147483648.0;
    return fits ? static_cast<int>(value) : std::numeric_limits<int>::min();
}

/// A product in single precision, truncated.
inline int TruncatedProduct(float a, int b) {
    volatile float product = a * static_cast<float>(b);
    return Truncated(static_cast<double>(product));
}

/// The packed pixels of a frame.
inline cv::Mat FrameOf(const Image& image) {
    return cv::Mat(image.height, image.width, CV_8UC3, image.data, static_cast<std::size_t>(image.width) * 3);
}

using PixelContour = std::vector<cv::Point>;

/// The outlines of what is not black in an R, G, B frame, without small ones.
inline std::vector<PixelContour> BlobsOf(const cv::Mat& frame, float precision, float minAreaRate) {
    cv::Mat grey;
    cv::cvtColor(frame, grey, cv::COLOR_RGB2GRAY);
    std::vector<PixelContour> outlines;
    cv::findContours(grey, outlines, cv::RETR_EXTERNAL,
                     precision > 0.5F ? cv::CHAIN_APPROX_NONE : cv::CHAIN_APPROX_TC89_KCOS);
    const int smallest = TruncatedProduct(minAreaRate, frame.rows * frame.cols);
    std::vector<PixelContour> blobs;
    for (const PixelContour& outline : outlines) {
        if (cv::contourArea(outline) >= smallest) blobs.push_back(outline);
    }
    return blobs;
}

/// A contour as numbers, to compare bit for bit.
struct Outline {
    std::vector<float> places;  ///< x and y of each point, relative to the frame
    float area = 0;
    float perimeter = 0;
};

inline bool operator==(const Outline& a, const Outline& b) {
    return a.places == b.places && SameBits(a.area, b.area) && SameBits(a.perimeter, b.perimeter);
}

template <class Stream>
Stream& operator<<(Stream& out, const Outline& outline) {
    out << outline.places.size() / 2 << " points, area " << outline.area << ", perimeter " << outline.perimeter;
    return out;
}

inline std::vector<float> PlacesOf(const PixelContour& contour, const cv::Point& origin, const cv::Size& frame) {
    std::vector<float> places;
    places.reserve(2 * contour.size());
    for (const cv::Point& point : contour) {
        places.push_back(static_cast<float>(origin.x + point.x) / static_cast<float>(frame.width));
        places.push_back(static_cast<float>(origin.y + point.y) / static_cast<float>(frame.height));
    }
    return places;
}

/// The contour of a record.
inline Outline OutlineOf(const Contour& contour) {
    Outline outline{{}, contour.Area, contour.Perimeter};
    for (int i = 0; i < contour.Count; ++i) {
        outline.places.push_back(contour.Points[i].X);
        outline.places.push_back(contour.Points[i].Y);
    }
    return outline;
}

}  // namespace quarry::plain
