#include "Demo/Html.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <vector>

namespace quarry::host::html {
namespace {

constexpr int kJpegQuality = 85;

std::string Base64(const std::vector<uint8_t>& bytes) {
    constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t left = bytes.size() - i;
        uint32_t group = uint32_t{bytes[i]} << 16;
        if (left > 1) group |= uint32_t{bytes[i + 1]} << 8;
        if (left > 2) group |= bytes[i + 2];
        text += kDigits[group >> 18];
        text += kDigits[group >> 12 & 63];
        text += left > 1 ? kDigits[group >> 6 & 63] : '=';
        text += left > 2 ? kDigits[group & 63] : '=';
    }
    return text;
}

std::string Embedded(const cv::Mat& picture, int width, const std::string& alt, const std::string& format,
                     const std::vector<int>& parameters) {
    cv::Mat shown = picture;
    if (picture.cols > width) {
        const int height = picture.rows * width / picture.cols;
        cv::resize(picture, shown, {width, height > 0 ? height : 1}, 0, 0, cv::INTER_AREA);
    }
    std::vector<uint8_t> bytes;
    cv::imencode("." + format, shown, bytes, parameters);
    return "<img alt=\"" + Escape(alt) + "\" width=\"" + std::to_string(shown.cols) + "\" height=\"" +
           std::to_string(shown.rows) + "\" src=\"data:image/" + format + ";base64," + Base64(bytes) + "\">";
}

}  // namespace

std::string Escape(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            default:
                escaped += c;
        }
    }
    return escaped;
}

std::string Number(double value, int digits) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", digits, value);
    return text;
}

std::string Jpeg(const cv::Mat& picture, int width, const std::string& alt) {
    return Embedded(picture, width, alt, "jpeg", {cv::IMWRITE_JPEG_QUALITY, kJpegQuality});
}

std::string Png(const cv::Mat& picture, int width, const std::string& alt) {
    return Embedded(picture, width, alt, "png", {});
}

std::string Figure(const std::string& picture, const std::string& caption) {
    return "<figure>" + picture + "<figcaption>" + caption + "</figcaption></figure>\n";
}

std::string Fact(const std::string& value, const std::string& meaning) {
    return "<div class=\"fact\"><b>" + value + "</b><span>" + meaning + "</span></div>\n";
}

}  // namespace quarry::host::html
