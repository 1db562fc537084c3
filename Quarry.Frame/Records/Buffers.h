#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

namespace quarry {

/// The product in 32 bits, wrapping, as the sizes of records are defined.
inline int32_t Product(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}

/// The count as the size of an array. A negative count is an impossible size and fails as a lack of memory does.
/// @throws std::bad_alloc
inline std::size_t ArraySize(int64_t count) {
    if (count < 0) throw std::bad_alloc();
    return static_cast<std::size_t>(count);
}

/// An array of `count` elements, not cleared.
/// @throws std::bad_alloc
template <class T>
std::unique_ptr<T[]> NewArray(int64_t count) {
    return std::unique_ptr<T[]>(new T[ArraySize(count)]);
}

/// The same, cleared to 0.
template <class T>
std::unique_ptr<T[]> NewZeroedArray(int64_t count) {
    return std::unique_ptr<T[]>(new T[ArraySize(count)]());
}

/// Releases an array that a record owns and sets the record's pointer to null.
template <class T>
void DeleteArray(T*& array) {
    delete[] array;
    array = nullptr;
}

/// Releases a record and sets the owner's pointer to null.
template <class T>
void DeleteRecord(T*& record) {
    delete record;
    record = nullptr;
}

}  // namespace quarry
