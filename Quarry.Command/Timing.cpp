#include "Timing.h"

#include <algorithm>
#include <cstddef>

namespace quarry::command {

double Quantile(std::vector<double> values, double rank) {
    if (values.empty()) return 0;
    const auto place = static_cast<std::ptrdiff_t>(rank * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), values.begin() + place, values.end());
    return values[static_cast<std::size_t>(place)];
}

}  // namespace quarry::command
