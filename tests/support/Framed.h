#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "Quarry/Framing.h"

namespace quarry::test {

/// A record in its frame, as a host lays it out: on the heap's terms, so that a sanitizer sees a byte read beside it.
template <class Record>
class Framed {
public:
    /// @param fill  every byte of the record before it is given a value, padding included
    explicit Framed(uint32_t tag, unsigned char fill = 0) {
        bytes.fill(std::byte{0xEE});
        std::memset(record(), fill, sizeof(Record));
        SetLength(sizeof(Record));
        SetTag(tag);
    }

    Record* operator->() { return record(); }
    Record& operator*() { return *record(); }
    Record* record() { return reinterpret_cast<Record*>(bytes.data() + kStart); }

    /// The address as the opaque type that a driver takes.
    template <class Opaque>
    Opaque* as() {
        return reinterpret_cast<Opaque*>(record());
    }

    void SetLength(int32_t length) { std::memcpy(bytes.data() + kStart - sizeof(length), &length, sizeof(length)); }
    void SetTag(uint32_t tag) { std::memcpy(bytes.data() + kStart + sizeof(Record), &tag, sizeof(tag)); }

    /// The record's bytes, to compare what a call wrote.
    std::array<unsigned char, sizeof(Record)> Bytes() {
        std::array<unsigned char, sizeof(Record)> copy;
        std::memcpy(copy.data(), record(), sizeof(Record));
        return copy;
    }

private:
    static constexpr std::size_t kStart = 8;
    alignas(8) std::array<std::byte, kStart + sizeof(Record) + sizeof(uint32_t)> bytes;
};

template <class Record>
Framed<Record> FramedOptions(unsigned char fill = 0) {
    return Framed<Record>(QUARRY_OPTIONS_TAG, fill);
}

template <class Record>
Framed<Record> FramedInput(unsigned char fill = 0) {
    return Framed<Record>(QUARRY_INPUT_TAG, fill);
}

template <class Record>
Framed<Record> FramedResult(unsigned char fill = 0) {
    return Framed<Record>(QUARRY_RESULT_TAG, fill);
}

}  // namespace quarry::test
