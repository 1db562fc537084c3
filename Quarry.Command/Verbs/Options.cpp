#include "Options.h"

#include <algorithm>
#include <charconv>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <system_error>

namespace quarry::command {
namespace {

/// The numbers between the commas.
/// @return false when they are not as many as wanted, or one of them is out of range
template <typename Number, std::size_t kCount>
bool Parse(const std::string& text, Number low, Number high, std::array<Number, kCount>& numbers) {
    const char* at = text.data();
    const char* const end = at + text.size();
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (i > 0 && (at == end || *at++ != ',')) return false;
        const auto [next, error] = std::from_chars(at, end, numbers[i]);
        if (error != std::errc() || !(low <= numbers[i] && numbers[i] <= high)) return false;
        at = next;
    }
    return at == end;
}

template <std::size_t kCount>
std::array<int, kCount> WholeNumbers(const std::string& option, const std::string& text, const std::string& form) {
    constexpr int kLow = std::numeric_limits<int16_t>::min();
    constexpr int kHigh = std::numeric_limits<int16_t>::max();
    std::array<int, kCount> numbers{};
    if (Parse(text, kLow, kHigh, numbers)) return numbers;
    throw CLI::ValidationError(option, "must be " + form + ", whole numbers from " + std::to_string(kLow) + " to " +
                                           std::to_string(kHigh) + ", not " + text);
}

}  // namespace

CLI::Validator Within(double low, double high) {
    const std::string range = CLI::detail::to_string(low) + " to " + CLI::detail::to_string(high);
    const auto check = [low, high, range](const std::string& text) -> std::string {
        double value = 0;
        const bool fits = CLI::detail::lexical_cast(text, value) && value >= low && value <= high;
        return fits ? "" : "must be a number from " + range + ", not " + text;
    };
    return {check, range};
}

CLI::Validator EndsIn(const std::vector<std::string>& extensions) {
    std::string patterns;
    std::string names;
    for (const std::string& extension : extensions) {
        patterns += (patterns.empty() ? "*" : ", *") + extension;
        names += (names.empty() ? "" : " or ") + extension;
    }
    const auto check = [extensions, names](const std::string& text) -> std::string {
        const std::string extension = std::filesystem::path(text).extension().string();
        const bool fits = std::find(extensions.begin(), extensions.end(), extension) != extensions.end();
        return fits ? "" : "must end in " + names + ", not be " + text;
    };
    return {check, patterns};
}

CLI::Validator EndsAsPicture() {
    return EndsIn({".png", ".jpg"});
}

std::array<int, 2> TwoWholeNumbers(const std::string& option, const std::string& text, const std::string& form) {
    return WholeNumbers<2>(option, text, form);
}

std::array<int, 4> FourWholeNumbers(const std::string& option, const std::string& text, const std::string& form) {
    return WholeNumbers<4>(option, text, form);
}

std::array<float, 4> FourShares(const std::string& option, const std::string& text, const std::string& form) {
    std::array<float, 4> numbers{};
    if (Parse(text, 0.0F, 1.0F, numbers)) return numbers;
    throw CLI::ValidationError(option, "must be " + form + ", numbers from 0 to 1, not " + text);
}

RelRect AreaOf(const std::string& option, const std::string& text) {
    const auto [x, y, width, height] = FourShares(option, text, "X,Y,WIDTH,HEIGHT");
    // 0.7 and 0.3 make a little more than 1; that is still within.
    constexpr float kWhole = 1 + 1e-6F;
    if (width > 0 && height > 0 && x + width <= kWhole && y + height <= kWhole) return {x, y, width, height};
    throw CLI::ValidationError(option,
                               "must be wider and higher than 0, with X + WIDTH and Y + HEIGHT at most 1, not " + text);
}

void CheckIsNotAnInput(const std::string& option, const std::string& written, const std::vector<std::string>& read) {
    for (const std::string& input : read) {
        std::error_code ignored;
        if (!written.empty() && std::filesystem::equivalent(written, input, ignored)) {
            throw CLI::ValidationError(option, written + " is what is read");
        }
    }
}

cv::Size WidthAndHeight(const std::string& option, const std::string& text, const std::string& form) {
    constexpr int kHigh = std::numeric_limits<int16_t>::max();
    cv::Size size;
    const char* const end = text.data() + text.size();
    const auto [between, noWidth] = std::from_chars(text.data(), end, size.width);
    if (noWidth == std::errc() && between != end && *between == 'x') {
        const auto [after, noHeight] = std::from_chars(between + 1, end, size.height);
        const bool fits = size.width >= 1 && size.width <= kHigh && size.height >= 1 && size.height <= kHigh;
        if (noHeight == std::errc() && after == end && fits) return size;
    }
    throw CLI::ValidationError(
        option, "must be " + form + ", whole numbers from 1 to " + std::to_string(kHigh) + ", not " + text);
}

std::string Format(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
    std::string text(length > 0 ? static_cast<std::size_t>(length) + 1 : 1, '\0');
    std::vsnprintf(text.data(), text.size(), format, again);
    va_end(again);
    text.pop_back();
    return text;
}

nlohmann::ordered_json JsonOf(const cv::Rect& rect) {
    return {{"x", rect.x}, {"y", rect.y}, {"width", rect.width}, {"height", rect.height}};
}

std::string JsonLine(const nlohmann::ordered_json& object) {
    return object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

}  // namespace quarry::command
