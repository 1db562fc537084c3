/// @file
/// Handles and results that release what they own.
#pragma once

#include <memory>
#include <utility>

#include "Quarry/Host/Framed.hpp"
#include "Quarry/Memory.h"
#include "Quarry/Quarry.h"

namespace quarry {

/// Owns a handle of the library. `Dispose` ends it after the operation and all its results have been destroyed.
class Handle {
public:
    Handle() = default;
    /// @param created  the handle that a factory wrote; null is allowed
    explicit Handle(void* created) : owner(created, [](void* handle) { Dispose(handle); }) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    Handle(Handle&&) noexcept = default;
    Handle& operator=(Handle&&) noexcept = default;
    ~Handle() = default;

    void* get() const { return owner.get(); }
    /// A reference that keeps the handle alive.
    std::shared_ptr<void> Share() const { return owner; }

private:
    std::shared_ptr<void> owner;
};

/// A new handle from a factory of the library.
template <class Options>
Handle Create(void (*factory)(void**, Options*), const Options& options) {
    Framed<Options> framed(options);
    void* created = nullptr;
    factory(&created, &framed.record());
    return Handle(created);
}

namespace detail {

template <class Record>
void GiveBack(void* handle, Framed<Record>& result) {
    DisposeResult(handle, result.template As<ProcessResult>());
}

/// DisposeResult would leave the grid in place.
inline void GiveBack(void* /*handle*/, Framed<ContourMaskProcessorResult>& result) {
    DestroyContourMaskProcessorResult(&result.record());
}

}  // namespace detail

/// A result record that a processor filled. It gives its buffers back when it is destroyed, and keeps the handle alive
/// until then.
template <class Record>
class Owned {
public:
    /// Processes an input record.
    template <class Input>
    Owned(const Handle& handle, const Input& input) {
        Framed<Input> framedInput(input);
        Process(handle.get(), framedInput.template As<ProcessData>(), framed.template As<ProcessResult>());
        owner = handle.Share();
    }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    Owned(Owned&& other) noexcept : owner(std::move(other.owner)), framed(other.framed) {}
    Owned& operator=(Owned&& other) noexcept {
        Owned taken(std::move(other));
        std::swap(owner, taken.owner);
        std::swap(framed, taken.framed);
        return *this;
    }
    ~Owned() {
        if (owner != nullptr) detail::GiveBack(owner.get(), framed);
    }

    const Record& record() const { return framed.record(); }

private:
    std::shared_ptr<void> owner;  ///< null once moved from
    Framed<Record> framed;
};

/// A result record of an updater. Its buffers belong to the updater and are valid until its next `Update`. It keeps the
/// updater's handle alive.
template <class Record>
class Current {
public:
    explicit Current(const Handle& handle) : owner(handle.Share()) {
        Framed<Record> framed;
        GetUpdateResult(handle.get(), framed.template As<UpdateResult>());
        content = framed.record();
    }

    const Record& record() const { return content; }

private:
    std::shared_ptr<void> owner;
    Record content;
};

}  // namespace quarry
