#include "ClothingPicture.h"

#include <fmt/format.h>

#include <algorithm>
#include <opencv2/imgproc.hpp>

namespace quarry::command {
namespace {

const cv::Scalar kTorso(40, 120, 255);  // B, G, R: orange
const cv::Scalar kLegs(220, 180, 40);
const cv::Scalar kPoint(80, 220, 60);
constexpr int kPointRadius = 1;  // pixels
constexpr int kSmallestStrip = 16;

cv::Vec3b BytesOf(const RgbColor& colour) {
    const auto byte = [](float share) { return cv::saturate_cast<uchar>(share * 255); };
    return {byte(colour.blue), byte(colour.green), byte(colour.red)};
}

}  // namespace

cv::Mat MarkBody(const cv::Mat& picture, const Body& body) {
    cv::Mat marked = picture.clone();
    const ClothingAreas areas = AreasOf(body, picture.size());
    for (const Quadrilateral& limb : areas.legs) cv::polylines(marked, limb, true, kLegs, 1, cv::LINE_AA);
    cv::polylines(marked, areas.torso, true, kTorso, 1, cv::LINE_AA);
    for (const FloatPoint& point : body) {
        const cv::Point place(cvFloor(point.X * static_cast<float>(picture.cols)),
                              cvFloor(point.Y * static_cast<float>(picture.rows)));
        cv::circle(marked, place, kPointRadius, kPoint, cv::FILLED);
    }
    return marked;
}

cv::Mat WithSwatches(const cv::Mat& picture, const ClothingColorsResult& colours) {
    const int strip = std::max(kSmallestStrip, picture.rows / 10);
    cv::Mat whole(picture.rows + strip, picture.cols, CV_8UC3);
    picture.copyTo(whole.rowRange(0, picture.rows));
    const RgbColor swatches[] = {colours.torso(0), colours.torso(1), colours.legs(0), colours.legs(1)};
    for (int i = 0; i < 4; ++i) {
        const cv::Range columns(picture.cols * i / 4, picture.cols * (i + 1) / 4);
        if (columns.empty()) continue;
        whole(cv::Range(picture.rows, whole.rows), columns).setTo(BytesOf(swatches[i]));
    }
    return whole;
}

std::string HexOf(const RgbColor& colour) {
    const cv::Vec3b bytes = BytesOf(colour);
    return fmt::format("#{:02x}{:02x}{:02x}", bytes[2], bytes[1], bytes[0]);
}

}  // namespace quarry::command
