#pragma once

#include "Quarry.Frame/DataChecker.h"
#include "Quarry.Frame/Disposer.h"
#include "Quarry.Frame/IProcessor.h"
#include "Quarry.Frame/Optioned.h"
#include "Quarry.Frame/RecordFields.h"

/// A stateless algorithm: options O, one input record I in, one result record R out.
///
/// A concrete processor overrides DoProcess and, when its results hold buffers, DoDisposeData.
template <class O, class I, class R>
class Processor : public IProcessor, public Optioned<O>, public Disposer<R> {
public:
    explicit Processor(O* source) : Optioned<O>(source) {}

    /// Checks both records, runs the algorithm on a copy of the input and writes the result's fields.
    /// Nothing is written to `*result` unless everything succeeded; what it held before is overwritten, not released.
    void Process(ProcessData* input, ProcessResult* result) override {
        I* const data = reinterpret_cast<I*>(input);
        quarry::CheckRecord(data, QUARRY_INPUT_TAG, "input");
        R* const out = CheckedResult(result);
        quarry::WriteFields(DoProcess(*data), out);
    }

    /// Releases the buffers of a result, not the record, which is the host's.
    void DisposeResult(ProcessResult* result) override { this->DisposeData(CheckedResult(result)); }

    virtual R DoProcess(I /*data*/) { return R{}; }
    void DoDisposeData(R* /*result*/) override {}
    ~Processor() override = default;

private:
    static R* CheckedResult(ProcessResult* result) {
        R* const out = reinterpret_cast<R*>(result);
        quarry::CheckRecord(out, QUARRY_RESULT_TAG, "result");
        return out;
    }
};
