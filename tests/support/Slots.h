#pragma once

#include <cstddef>

namespace quarry::test {

/// Calls the virtual function in a slot of an object's table, as the C++ ABI of this platform lays both out: the
/// table's address comes first in the object, and a member function takes the object as its first argument.
template <class Result, class... Arguments>
Result CallSlot(void* object, std::size_t slot, Arguments... arguments) {
    using Function = Result (*)(void*, Arguments...);
    // NOLINTNEXTLINE(clang-analyzer-core.uninitialized.Assign): the analyzer does not see the tables of objects
    const auto* const table = *static_cast<void* const* const*>(object);
    return reinterpret_cast<Function>(table[slot])(object, arguments...);
}

}  // namespace quarry::test
