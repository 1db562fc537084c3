#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <iostream>
#include <new>
#include <opencv2/core.hpp>
#include <optional>
#include <stdexcept>
#include <tuple>
#include <typeinfo>

#include "Quarry.Frame/RecordFields.h"
#include "Quarry/Quarry.h"
#include "support/Framed.h"
#include "support/RawCalls.h"

namespace quarry::fuzz {

using test::Framed;
using test::FramedInput;
using test::FramedResult;
using test::RawHandle;

/// Ends the process, with what should hold, where it does not.
inline void Require(bool holds, const char* what) {
    if (holds) return;
    std::cerr << "does not hold: " << what << std::endl;  // NOLINT(performance-avoid-endl): the process ends here
    std::abort();
}

/// Whether a call on records in right frames goes through. What it throws otherwise must be documented; an exception of
/// any other type leaves this function and ends the process.
template <class Call>
bool Succeeds(Call call) {
    try {
        call();
        return true;
    } catch (const cv::Exception&) {
    } catch (const std::bad_alloc&) {
    } catch (const std::logic_error& error) {
        // No class below these two, which would come from a container's own checks.
        if (typeid(error) != typeid(std::invalid_argument) && typeid(error) != typeid(std::logic_error)) throw;
    }
    return false;
}

/// What plain steps give; nothing where OpenCV refuses one.
template <class Steps>
auto Plainly(Steps steps) -> std::optional<decltype(steps())> {
    try {
        return steps();
    } catch (const cv::Exception&) {
        return std::nullopt;
    }
}

/// A handle; null where the options are refused.
template <class Options>
RawHandle Created(void (*factory)(void**, Options*), const Options& options) {
    RawHandle handle;
    Succeeds([&] { handle = test::RawCreate(factory, options); });
    return handle;
}

constexpr unsigned char kUntouched = 0xA5;

/// Whether a result record holds what it held before the call: wherever nothing is written, and, when the call failed,
/// everywhere.
template <class Result>
bool KeepsTheRest(Framed<Result>& result, bool succeeded) {
    const auto bytes = result.Bytes();
    std::array<bool, sizeof(Result)> written = {};
    const auto* const record = reinterpret_cast<const unsigned char*>(result.record());
    const auto mark = [&](const auto& field) {
        const auto* const first = reinterpret_cast<const unsigned char*>(&field);
        // NOLINTNEXTLINE(bugprone-sizeof-expression): where a field is a pointer, the pointer is what is written
        std::fill_n(written.begin() + (first - record), sizeof(field), true);
    };
    if (succeeded) {
        std::apply([&](auto... field) { (mark((*result).*field), ...); }, RecordFields<Result>::value);
    }
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (!written[i] && bytes[i] != kUntouched) return false;
    }
    return true;
}

/// Fills a result by a call, and has it checked.
/// @return whether the call succeeded
template <class Result, class Call, class Check>
bool Filled(Call call, Check check) {
    Framed<Result> result = FramedResult<Result>(kUntouched);
    const bool succeeded = Succeeds([&] { call(result); });
    Require(KeepsTheRest(result, succeeded), "a call writes the fields of its result and nothing else");
    if (succeeded) check(result);
    return succeeded;
}

/// Runs a processor, has its result checked, and gives it back.
/// @return whether the processor succeeded
template <class Result, class Input, class Check>
bool Processed(const RawHandle& handle, const Input& input, Check check) {
    Framed<Input> framed = FramedInput<Input>();
    *framed = input;
    const auto process = [&](Framed<Result>& result) {
        Process(handle.get(), framed.template as<ProcessData>(), result.template as<ProcessResult>());
    };
    return Filled<Result>(process, [&](Framed<Result>& result) {
        check(*result);
        DisposeResult(handle.get(), result.template as<ProcessResult>());
    });
}

/// Feeds a frame to an updater.
/// @return whether the updater took it
template <class Input>
bool Updated(const RawHandle& handle, const Input& input) {
    Framed<Input> framed = FramedInput<Input>();
    *framed = input;
    return Succeeds([&] {
        const int32_t state = Update(handle.get(), framed.template as<UpdateData>());
        Require(NoResult <= state && state <= Ready, "a state is one of three");
    });
}

/// Asks an updater for its result and has it checked.
/// @return whether there was one
template <class Result, class Check>
bool GotResult(const RawHandle& handle, Check check) {
    const auto get = [&](Framed<Result>& result) { GetUpdateResult(handle.get(), result.template as<UpdateResult>()); };
    return Filled<Result>(get, [&](Framed<Result>& result) { check(*result); });
}

}  // namespace quarry::fuzz
