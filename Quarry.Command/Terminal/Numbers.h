#pragma once

#include <array>
#include <charconv>
#include <cstddef>
#include <optional>
#include <string>
#include <system_error>

namespace quarry::command {

/// Reads numbers with a separator between them, such as "16,12", "640x480" or "2/16".
/// @return nothing when the text is anything else, such as another count of numbers, or holds a space
template <typename Number, std::size_t kCount>
std::optional<std::array<Number, kCount>> ReadNumbers(const std::string& text, char separator) {
    std::array<Number, kCount> numbers{};
    const char* at = text.data();
    const char* const end = at + text.size();
    for (std::size_t i = 0; i < kCount; ++i) {
        if (i > 0 && (at == end || *at++ != separator)) return std::nullopt;
        const auto [next, error] = std::from_chars(at, end, numbers[i]);
        if (error != std::errc()) return std::nullopt;
        at = next;
    }
    return at == end ? std::optional(numbers) : std::nullopt;
}

/// Reads a whole number of 0 or more.
/// @return nothing when the text is anything else
inline std::optional<int> ReadIndex(const std::string& text) {
    const auto number = ReadNumbers<int, 1>(text, '\0');
    return number && number->front() >= 0 ? std::optional(number->front()) : std::nullopt;
}

}  // namespace quarry::command
