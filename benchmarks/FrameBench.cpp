#include <benchmark/benchmark.h>

#include "Quarry.Frame/InvokableProcessor.h"
#include "Quarry.Frame/Processor.h"

namespace {

/// Keeps the frame's own DoProcess, which computes nothing.
class NoAlgorithm : public Processor<ProcessOptions, VoLInputData, VoLOutputData> {
public:
    using Processor::Processor;
};

class NoAlgorithmHandle : public InvokableProcessor {
public:
    explicit NoAlgorithmHandle(ProcessOptions* options) { target = new NoAlgorithm(options); }
    IProcessor* GetProcessor() override { return dynamic_cast<NoAlgorithm*>(target); }
};

/// The whole road of a call with a record pair of 40 and 8 bytes: driver, handle, both checks, copy in, fields out.
void ProcessWithoutAnAlgorithm(benchmark::State& state) {
    QUARRY_FRAMED(ProcessOptions) options = {0, sizeof(ProcessOptions), {}, QUARRY_OPTIONS_TAG};
    QUARRY_FRAMED(VoLInputData) input = {0, sizeof(VoLInputData), {}, QUARRY_INPUT_TAG};
    QUARRY_FRAMED(VoLOutputData) result = {0, sizeof(VoLOutputData), {}, QUARRY_RESULT_TAG};
    Invokable* const handle = new NoAlgorithmHandle(&options.Record);
    for ([[maybe_unused]] auto _ : state) {
        Process(handle, reinterpret_cast<ProcessData*>(&input.Record),
                reinterpret_cast<ProcessResult*>(&result.Record));
        benchmark::ClobberMemory();
    }
    Dispose(handle);
}
BENCHMARK(ProcessWithoutAnAlgorithm);

}  // namespace
