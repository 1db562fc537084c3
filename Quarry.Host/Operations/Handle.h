#pragma once

#include <Quarry/Quarry.h>

#include <memory>

namespace quarry::host {

/// A handle of the library, disposed of at its end.
struct DisposeHandle {
    void operator()(void* handle) const { Dispose(handle); }
};
using Handle = std::unique_ptr<void, DisposeHandle>;

}  // namespace quarry::host
