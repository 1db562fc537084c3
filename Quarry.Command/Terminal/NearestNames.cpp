#include "NearestNames.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace quarry::command {
namespace {

/// How many letters only one of the two has. Their order does not count.
std::size_t DifferentLetters(std::string first, std::string second) {
    std::sort(first.begin(), first.end());
    std::sort(second.begin(), second.end());
    std::string different;
    std::set_symmetric_difference(first.begin(), first.end(), second.begin(), second.end(),
                                  std::back_inserter(different));
    return different.size();
}

}  // namespace

bool IsNear(const std::string& written, const std::string& name) {
    constexpr std::size_t kShortest = 3;  // a shorter text is a part of almost any name
    constexpr std::size_t kMostDifferent = 2;
    if (written.size() < kShortest) return false;
    return name.find(written) != std::string::npos || DifferentLetters(written, name) <= kMostDifferent;
}

std::string DidYouMean(const std::vector<std::string>& names) {
    return names.empty() ? "" : "; did you mean " + fmt::to_string(fmt::join(names, " or ")) + "?";
}

}  // namespace quarry::command
