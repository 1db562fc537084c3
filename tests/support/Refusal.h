#pragma once

#include <stdexcept>
#include <string>

namespace quarry::test {

/// What a call says when it refuses its arguments.
template <class Call>
std::string RefusalOf(Call call) {
    try {
        call();
    } catch (const std::invalid_argument& refusal) {
        return refusal.what();
    }
    return "(nothing was refused)";
}

}  // namespace quarry::test
