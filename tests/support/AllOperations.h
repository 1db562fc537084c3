#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Quarry/Framing.h"
#include "Quarry/SharedRecords.h"
#include "support/SampleInputs.h"

/// All operations alike, for tests of what must hold for every one of them.
namespace quarry::test {

using Buffer = std::vector<uint8_t>;

/// A record of any type in its frame.
struct AnyRecord {
    std::size_t size;
    uint32_t tag;
    uint8_t* bytes;

    /// The address as the opaque type that a driver takes.
    template <class Opaque>
    Opaque* as() const {
        return reinterpret_cast<Opaque*>(bytes);
    }
    Buffer Bytes() const { return {bytes, bytes + size}; }
    void Fill(uint8_t byte) const;
    void SetLength(int32_t length) const;
    void SetTag(uint32_t word) const;
};

/// An operation as a host meets it, with its options, an input and a record for the result. All calls go through the
/// exported functions. Each object is for one thread at a time.
class Operation {
public:
    Operation(std::string called, bool updates) : name(std::move(called)), isUpdater(updates) {}
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;
    virtual ~Operation() = default;

    virtual void CallFactory(void** handle, void* optionsRecord) = 0;
    virtual AnyRecord Options() = 0;
    virtual AnyRecord Input() = 0;
    virtual AnyRecord Record() = 0;

    /// Gives every byte of options and input that the operation has no business reading this value.
    virtual void FillUnread(uint8_t byte) = 0;
    /// Makes the input one that a processor refuses.
    virtual void SpoilInput() = 0;
    /// Which bytes of its result record the operation never writes.
    virtual std::vector<bool> Unwritten() = 0;
    /// What the record says, its buffers included; detections in an order of their own.
    virtual Buffer Result() = 0;
    /// Ends what `DisposeResult` leaves to the host.
    virtual void Release() {}

    /// A handle of its own options.
    void Create(void** handle) { CallFactory(handle, Options().bytes); }
    /// Calls `Update`; does nothing for a processor, whose input is always the same.
    virtual void Feed(void* handle, const Image& frame) = 0;
    /// Calls `Process` or `GetUpdateResult`, with OpenCV's random numbers started anew.
    void Fill(void* handle);
    /// Ends what the record holds: calls `DisposeResult` and whatever else the result asks of its host.
    void GiveBack(void* handle);

    /// A frame in, a result out.
    Buffer Run(void* handle, const Image& frame);
    /// What an updater shows between frames; nothing where it has no result.
    Buffer ResultIfAny(void* handle);

    const std::string name;
    const bool isUpdater;
};

/// One object of each operation, in the order of the table.
std::vector<std::unique_ptr<Operation>> AllOperations(FrameSize frames = FrameSize::Small);

/// One of them.
std::unique_ptr<Operation> OperationNamed(const std::string& name, FrameSize frames = FrameSize::Small);

std::vector<std::string> OperationNames();
std::vector<std::string> ProcessorNames();
std::vector<std::string> UpdaterNames();

}  // namespace quarry::test
