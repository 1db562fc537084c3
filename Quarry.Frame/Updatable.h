#pragma once

#include <stdexcept>

#include "Quarry.Frame/DataChecker.h"
#include "Quarry.Frame/IUpdatable.h"
#include "Quarry.Frame/Initializable.h"
#include "Quarry.Frame/Optioned.h"
#include "Quarry.Frame/RecordFields.h"

/// An algorithm that keeps state from frame to frame: options O, one frame D at a time in, its own result R out on
/// demand.
///
/// A concrete updater overrides NeedInitialize, DoInitialize, DoUpdate, InitResult and AssignResultData, sets `state`,
/// owns `result`, and releases it in its destructor.
template <class O, class D, class R>
class Updatable : public IUpdatable, public Optioned<O>, public Initializable<D> {
public:
    explicit Updatable(O* source) : Optioned<O>(source) {}

    /// Checks the record, initialises when NeedInitialize says so, then takes the frame in. Each step gets its own copy
    /// of the record, so that it does not see changes that the other made.
    void Update(UpdateData* data) override {
        D* const frame = reinterpret_cast<D*>(data);
        quarry::CheckRecord(frame, QUARRY_INPUT_TAG, "input");
        this->ReInitialize(*frame);
        DoUpdate(*frame);
    }

    int32_t GetState() override { return state; }

    /// Brings the updater's own result up to date and writes its fields into the host's record. Pointers are copied,
    /// not what they point at.
    /// @throws std::logic_error  there is no result yet
    void GetResult(UpdateResult* out) override {
        R* const record = reinterpret_cast<R*>(out);
        quarry::CheckRecord(record, QUARRY_RESULT_TAG, "result");
        if (result == nullptr) throw std::logic_error("GetUpdateResult: no result yet; call Update with a frame first");
        AssignResultData();
        quarry::WriteFields(*result, record);
    }

    virtual void DoUpdate(D /*data*/) {}
    virtual void InitResult() {}
    virtual void AssignResultData() {}
    ~Updatable() override = default;

protected:
    int32_t state = NoResult;  ///< an UpdaterState
    R* result = nullptr;
};
