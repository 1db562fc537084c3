#pragma once

#include <memory>

#include "Quarry/Quarry.h"
#include "support/Framed.h"

namespace quarry::test {

struct DisposeRaw {
    void operator()(void* handle) const { Dispose(handle); }
};
/// A handle by the library's own functions, to compare what is built above them with.
using RawHandle = std::unique_ptr<void, DisposeRaw>;

template <class Options>
RawHandle RawCreate(void (*factory)(void**, Options*), const Options& options) {
    Framed<Options> framed = FramedOptions<Options>();
    *framed = options;
    void* handle = nullptr;
    factory(&handle, framed.record());
    return RawHandle(handle);
}

/// What a processor makes of an input, until its end.
template <class Result>
class RawResult {
public:
    template <class Options, class Input>
    RawResult(void (*factory)(void**, Options*), const Options& options, const Input& input)
        : handle(RawCreate(factory, options)) {
        Framed<Input> framed = FramedInput<Input>();
        *framed = input;
        Process(handle.get(), framed.template as<ProcessData>(), result.template as<ProcessResult>());
    }
    RawResult(const RawResult&) = delete;
    RawResult& operator=(const RawResult&) = delete;
    ~RawResult() { DisposeResult(handle.get(), result.template as<ProcessResult>()); }

    Result* operator->() { return result.record(); }

private:
    RawHandle handle;
    Framed<Result> result = FramedResult<Result>();
};

/// Feeds a frame to an updater; its result is the updater's.
template <class Result, class Input>
Result RawUpdate(const RawHandle& handle, const Input& input, int32_t& state) {
    Framed<Input> framed = FramedInput<Input>();
    Framed<Result> result = FramedResult<Result>();
    *framed = input;
    state = Update(handle.get(), framed.template as<UpdateData>());
    GetUpdateResult(handle.get(), result.template as<UpdateResult>());
    return *result;
}

}  // namespace quarry::test
