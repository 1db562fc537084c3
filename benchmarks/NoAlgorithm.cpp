#include "NoAlgorithm.h"

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

}  // namespace

void CreateNoAlgorithm(void** handle, ProcessOptions* options) {
    *handle = new NoAlgorithmHandle(options);
}
