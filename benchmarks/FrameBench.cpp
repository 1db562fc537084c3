#include "Comparison.h"
#include "NoAlgorithm.h"

namespace {

using namespace quarry::bench;

/// What no interface can do without: the input copied in, the result copied out.
VoLOutputData Copy(VoLInputData input) {
    return {0, static_cast<float>(input.Header)};
}

/// The whole road of a call: driver, handle, both checks, copy in, fields out. The result holds nothing to give back.
Way ThroughTheFrame() {
    using Call = ProcessorCall<ProcessOptions, VoLInputData, VoLOutputData>;
    const auto call = std::make_shared<Call>(CreateNoAlgorithm, ProcessOptions{}, VoLInputData{});
    return {[call] { call->Process(); }, [call] { return BytesOf(call->Process()); }};
}

}  // namespace

int main(int argc, char** argv) {
    Compare("Frame", {"", "40 and 8 bytes", 0.0, 20.0}, Computed([] {
                VoLInputData input{};
                benchmark::DoNotOptimize(input);
                return Copy(input);
            }),
            ThroughTheFrame());
    return Run(argc, argv);
}
