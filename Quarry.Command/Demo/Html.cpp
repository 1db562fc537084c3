#include "Demo/Html.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <vector>

namespace quarry::command::html {
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

std::string Address(const cv::Mat& picture, const std::string& format, const std::vector<int>& parameters) {
    std::vector<uint8_t> bytes;
    cv::imencode("." + format, picture, bytes, parameters);
    return "data:image/" + format + ";base64," + Base64(bytes);
}

std::string Embedded(const cv::Mat& picture, int width, const std::string& alt, const std::string& format,
                     const std::vector<int>& parameters) {
    cv::Mat shown = picture;
    if (picture.cols > width) {
        const int height = picture.rows * width / picture.cols;
        cv::resize(picture, shown, {width, height > 0 ? height : 1}, 0, 0, cv::INTER_AREA);
    }
    return "<img" + Attribute("alt", Escape(alt)) + Attribute("width", std::to_string(shown.cols)) +
           Attribute("height", std::to_string(shown.rows)) + Attribute("src", Address(shown, format, parameters)) + ">";
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

std::string PngAddress(const cv::Mat& picture) {
    return Address(picture, "png", {});
}

std::string Attribute(const std::string& name, const std::string& value) {
    return " " + name + "=\"" + value + "\"";
}

std::string Figure(const std::string& picture, const std::string& caption) {
    return "<figure>" + picture + "<figcaption>" + caption + "</figcaption></figure>\n";
}

std::string Time(double milliseconds) {
    if (milliseconds >= 100) return Number(milliseconds, 0) + "&nbsp;ms";
    if (milliseconds >= 0.1) return Number(milliseconds, 1) + "&nbsp;ms";
    return Number(milliseconds * 1000, 1) + "&nbsp;&micro;s";
}

std::string Fact(const std::string& value, const std::string& meaning) {
    return R"(<div class="fact"><b>)" + value + "</b><span>" + meaning + "</span></div>\n";
}

}  // namespace quarry::command::html
