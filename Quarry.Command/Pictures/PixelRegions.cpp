#include "PixelRegions.h"

namespace quarry::command {

cv::Point PixelOf(const FloatPoint& point, const cv::Size& size) {
    return {cvRound(point.X * static_cast<float>(size.width)), cvRound(point.Y * static_cast<float>(size.height))};
}

std::vector<cv::Point> PixelsOf(Span<FloatPoint> polygon, const cv::Size& size) {
    std::vector<cv::Point> pixels;
    pixels.reserve(polygon.size());
    for (const FloatPoint& point : polygon) pixels.push_back(PixelOf(point, size));
    return pixels;
}

cv::Rect PixelsOf(const RelRect& area, const cv::Size& size) {
    const auto pixels = [](float share, int side) { return static_cast<int>(share * static_cast<float>(side)); };
    return {pixels(area.X, size.width), pixels(area.Y, size.height), pixels(area.Width, size.width),
            pixels(area.Height, size.height)};
}

RelRect RelativeOf(const cv::Rect& pixels, const cv::Size& size) {
    // Half a pixel more, so that rounding down never loses a whole pixel.
    const auto share = [](int part, int side) { return static_cast<float>((part + 0.5) / static_cast<double>(side)); };
    return {share(pixels.x, size.width), share(pixels.y, size.height), share(pixels.width, size.width),
            share(pixels.height, size.height)};
}

std::vector<cv::Rect> RectanglesOf(const Detections& found, const cv::Rect& searched) {
    std::vector<cv::Rect> rectangles;
    rectangles.reserve(found.size());
    for (const Response& one : found) {
        const cv::Point corner = PixelOf({one.Rect.X, one.Rect.Y}, searched.size());
        const cv::Point extent = PixelOf({one.Rect.Width, one.Rect.Height}, searched.size());
        rectangles.emplace_back(searched.tl() + corner, cv::Size(extent));
    }
    return rectangles;
}

}  // namespace quarry::command
