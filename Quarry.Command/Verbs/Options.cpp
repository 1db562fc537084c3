#include "Options.h"

#include <fmt/format.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <optional>
#include <system_error>

#include "Numbers.h"

namespace quarry::command {
namespace {

constexpr int kLowest = std::numeric_limits<int16_t>::min();
constexpr int kHighest = std::numeric_limits<int16_t>::max();

/// Reads numbers from `low` to `high`.
/// @return nothing when the text is anything else
template <typename Number, std::size_t kCount>
std::optional<std::array<Number, kCount>> NumbersWithin(Number low, Number high, const std::string& text,
                                                        char separator) {
    const auto numbers = ReadNumbers<Number, kCount>(text, separator);
    const auto isWithin = [&](Number number) {
        return low <= number && number <= high;
    };  // false for what is not a number
    return numbers && std::all_of(numbers->begin(), numbers->end(), isWithin) ? numbers : std::nullopt;
}

template <std::size_t kCount>
std::array<int, kCount> WholeNumbers(const std::string& option, const std::string& text, const std::string& form) {
    if (const auto numbers = NumbersWithin<int, kCount>(kLowest, kHighest, text, ',')) return *numbers;
    throw CLI::ValidationError(
        option, fmt::format("must be {}, whole numbers from {} to {}, not {}", form, kLowest, kHighest, text));
}

void SetRange(FrameRange& range, const std::string& text) {
    const std::size_t colon = text.find(':');
    if (colon != std::string::npos) {
        const std::string from = text.substr(0, colon);
        const std::string to = text.substr(colon + 1);
        const std::optional<int> first = from.empty() ? 0 : ReadIndex(from);
        const std::optional<int> end = to.empty() ? INT_MAX : ReadIndex(to);
        if (first && end && *first < *end) {
            range.first = *first;
            range.end = *end;
            return;
        }
    }
    throw CLI::ValidationError("--frames", "must be A:B, A: or :B with indexes from 0 and A below B, not " + text);
}

}  // namespace

CLI::Validator Within(double low, double high) {
    const std::string range = fmt::format("{:g} to {:g}", low, high);
    const auto check = [isInRange = CLI::Range(low, high), range](const std::string& text) -> std::string {
        // CLI::Range lets through what is not a number, because it compares as neither lower nor higher.
        const bool fits = isInRange(text).empty() && !std::isnan(std::strtod(text.c_str(), nullptr));
        return fits ? "" : "must be a number from " + range + ", not " + text;
    };
    return {check, range};
}

CLI::Validator EndsIn(const std::vector<std::string>& extensions) {
    const std::string patterns = "*" + fmt::to_string(fmt::join(extensions, ", *"));
    const std::string names = fmt::to_string(fmt::join(extensions, " or "));
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
    if (const auto shares = NumbersWithin<float, 4>(0, 1, text, ',')) return *shares;
    throw CLI::ValidationError(option, "must be " + form + ", numbers from 0 to 1, not " + text);
}

RelRect AreaOf(const std::string& option, const std::string& text) {
    const auto [x, y, width, height] = FourShares(option, text, "X,Y,WIDTH,HEIGHT");
    // In single precision 0.7 + 0.3 is a little more than 1, which must pass.
    constexpr float kWhole = 1 + 1e-6F;
    if (width > 0 && height > 0 && x + width <= kWhole && y + height <= kWhole) return {x, y, width, height};
    throw CLI::ValidationError(option,
                               "must be wider and higher than 0, with X + WIDTH and Y + HEIGHT at most 1, not " + text);
}

cv::Size WidthAndHeight(const std::string& option, const std::string& text, const std::string& form) {
    if (const auto sides = NumbersWithin<int, 2>(1, kHighest, text, 'x')) return {sides->front(), sides->back()};
    throw CLI::ValidationError(option,
                               fmt::format("must be {}, whole numbers from 1 to {}, not {}", form, kHighest, text));
}

void CheckIsNotAnInput(const std::string& option, const std::string& written, const std::vector<std::string>& read) {
    for (const std::string& input : read) {
        std::error_code ignored;
        if (!written.empty() && std::filesystem::equivalent(written, input, ignored)) {
            throw CLI::ValidationError(option, written + " is what is read");
        }
    }
}

void AddFrameOptions(CLI::App& command, FrameRange& range) {
    command
        .add_option_function<std::string>(
            "--frames", [&range](const std::string& text) { SetRange(range, text); },
            "Take the frames from index A up to, not including, B")
        ->type_name("A:B");
    command.add_option("--every", range.every, "Take every N-th of them")
        ->type_name("N")
        ->check(Within(1, 1'000'000))
        ->capture_default_str();
}

}  // namespace quarry::command
