/// @file
/// The library against the plain step-by-step pipeline: same input, same bytes out, timed in turns in one run.
#pragma once

#include <benchmark/benchmark.h>

#include <cstring>
#include <functional>
#include <memory>
#include <opencv2/core.hpp>
#include <string>
#include <utility>

#include "support/Framed.h"
#include "support/RawCalls.h"

namespace quarry::bench {

/// One way to get a result.
struct Way {
    /// What is timed: all that a host pays for one result, giving it back included.
    std::function<void()> run;
    /// The bytes of the result, to see that both ways give the same.
    std::function<std::string()> result;
    /// How many results one run gives; times are those of one.
    int results = 1;
};

/// What one row of the table compares.
struct Case {
    std::string name;   ///< what is done, when the operation has several: "first frame"; may be empty
    std::string input;  ///< "640x480"
    double floor;       ///< the least ratio plain / library that is expected here
    double ceiling{};   ///< the most nanoseconds of the library that are expected here; 0: no matter
};

/// Adds a row. All rows run on one thread; those whose ways differ in one byte fail.
/// @param operation  the source's name, "VarianceOfLaplacian"
void Compare(const std::string& operation, const Case& row, Way plain, Way library);

/// Runs the rows: the whole of a benchmark's `main` after its calls of Compare.
int Run(int argc, char** argv);

/// The bytes of a value without padding.
template <class Value>
std::string BytesOf(const Value& value) {
    std::string bytes(sizeof(Value), '\0');
    std::memcpy(bytes.data(), &value, sizeof(Value));
    return bytes;
}

/// Size, type and pixels of a matrix.
std::string BytesOf(const cv::Mat& matrix);

/// The plain steps, as a function that returns the result.
template <class Compute>
Way Computed(Compute compute) {
    return {[compute] { benchmark::DoNotOptimize(compute()); }, [compute] { return BytesOf(compute()); }};
}

/// A processor as a host drives it: one handle, its records framed once.
template <class Options, class Input, class Result>
class ProcessorCall {
public:
    ProcessorCall(void (*factory)(void**, Options*), const Options& options, const Input& given)
        : handle(test::RawCreate(factory, options)) {
        *input = given;
    }

    const Result& Process() {
        ::Process(handle.get(), input.template as<ProcessData>(), result.template as<ProcessResult>());
        return *result;
    }

    void DisposeResult() { ::DisposeResult(handle.get(), result.template as<ProcessResult>()); }

private:
    test::RawHandle handle;
    test::Framed<Input> input = test::FramedInput<Input>();
    test::Framed<Result> result = test::FramedResult<Result>();
};

/// An updater as a host drives it: one handle, its records framed once.
template <class Options, class Data, class Result>
class UpdaterCall {
public:
    UpdaterCall(void (*factory)(void**, Options*), const Options& options)
        : handle(test::RawCreate(factory, options)) {}

    /// Takes a frame in and the result out, which stays the updater's.
    const Result& Update(const Data& given) {
        *data = given;
        ::Update(handle.get(), data.template as<UpdateData>());
        GetUpdateResult(handle.get(), result.template as<UpdateResult>());
        return *result;
    }

private:
    test::RawHandle handle;
    test::Framed<Data> data = test::FramedInput<Data>();
    test::Framed<Result> result = test::FramedResult<Result>();
};

/// An updater that is fed the same frames over and over; its result is what a new one makes of every frame.
/// @param begin  makes a new updater: a function that takes a frame, an element of `frames`, and returns its result
/// @param read   turns that result into bytes
template <class Frames, class Begin, class Read>
Way Fed(const Frames& frames, Begin begin, Read read) {
    return {[frames, update = begin()] {
                for (const auto& frame : frames) benchmark::DoNotOptimize(update(frame));
            },
            [frames, begin, read] {
                const auto update = begin();
                std::string bytes;
                for (const auto& frame : frames) bytes += read(update(frame));
                return bytes;
            },
            static_cast<int>(frames.size())};
}

/// A processor's result, given back each time.
/// @param read  turns the result record into bytes
template <class Options, class Input, class Result>
Way Called(void (*factory)(void**, Options*), const Options& options, const Input& input,
           std::function<std::string(const Result&)> read) {
    const auto call = std::make_shared<ProcessorCall<Options, Input, Result>>(factory, options, input);
    return {[call] {
                call->Process();
                call->DisposeResult();
            },
            [call, read = std::move(read)] {
                std::string bytes = read(call->Process());
                call->DisposeResult();
                return bytes;
            }};
}

}  // namespace quarry::bench
