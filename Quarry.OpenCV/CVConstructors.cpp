#include <stdexcept>

#include "Quarry.OpenCV/Handles.h"
#include "Quarry/Operations.h"
#include "Quarry/Quarry.h"

namespace {

/// Builds a handle and stores it only when everything has succeeded.
template <class Handle, class Options>
void Create(void** handle, Options* options) {
    if (handle == nullptr) throw std::invalid_argument("handle is null; the address to write the handle to is needed");
    Invokable* const created = new Handle(options);
    *handle = created;
}

}  // namespace

extern "C" {

// NOLINTBEGIN(bugprone-macro-parentheses): types do not stand in parentheses
#define QUARRY_DEFINE_FACTORY(Name, Factory, Options, Input, Result, Kind, Handle, ...) \
    void Factory(void** handle, Options* options) {                                     \
        Create<Handle>(handle, options);                                                \
    }
QUARRY_OPERATIONS(QUARRY_DEFINE_FACTORY)
#undef QUARRY_DEFINE_FACTORY
// NOLINTEND(bugprone-macro-parentheses)

}  // extern "C"
