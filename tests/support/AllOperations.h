#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Quarry/SharedRecords.h"
#include "support/SampleInputs.h"

/// All 22 operations alike, for tests of what must hold for every one of them.
namespace quarry::test {

using Buffer = std::vector<uint8_t>;

/// An operation as a host meets it, with its options, an input and a record for the result. All calls go through the
/// exported functions. Each object is for one thread at a time.
class Operation {
public:
    Operation(std::string called, bool updates) : name(std::move(called)), isUpdater(updates) {}
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;
    virtual ~Operation() = default;

    /// Calls the factory.
    virtual void Create(void** handle) = 0;
    /// Calls `Update`; does nothing for a processor, whose input is always the same.
    virtual void Feed(void* handle, const Image& frame) = 0;
    /// Calls `Process` or `GetUpdateResult`, with OpenCV's random numbers started anew.
    virtual void Fill(void* handle) = 0;
    /// Ends what the record holds: calls `DisposeResult` and whatever else the result asks of its host.
    virtual void GiveBack(void* handle) = 0;

    /// The record, byte by byte.
    virtual Buffer Record() = 0;
    /// What the record says, its buffers included; detections in an order of their own.
    virtual Buffer Result() = 0;

    /// A frame in, a result out.
    Buffer Run(void* handle, const Image& frame);
    /// What an updater shows between frames; nothing where it has no result.
    Buffer ResultIfAny(void* handle);

    const std::string name;
    const bool isUpdater;
};

/// One object of each operation, in the order of Quarry.h.
std::vector<std::unique_ptr<Operation>> AllOperations(FrameSize frames = FrameSize::Small);

/// One of them.
std::unique_ptr<Operation> OperationNamed(const std::string& name, FrameSize frames = FrameSize::Small);

std::vector<std::string> OperationNames();
std::vector<std::string> UpdaterNames();

}  // namespace quarry::test
