#pragma once

#include <stdexcept>
#include <string>

#include "Quarry.Frame/Marshaler.h"
#include "Quarry/MarshalingException.h"

/// Checks the length word of a record of type T.
template <class T>
class DataChecker {
public:
    /// @throws MarshalingException  `size` is not in 1..120; no record has such a length
    static void Check(T* /*data*/, int size) {
        if (!Marshaler::IsSizeCorrect(size)) throw MarshalingException();
    }
};

namespace quarry {

/// Checks the envelope of a record of type T before the record is read: the range of the length word, the length
/// itself, then the tag. Each failure throws the same exception.
/// @param role  "options", "input" or "result", for the message about a null pointer
/// @throws std::invalid_argument  `record` is null
/// @throws MarshalingException    the envelope is wrong
template <class T>
void CheckRecord(T* record, int32_t tag, const char* role) {
    if (record == nullptr)
        throw std::invalid_argument(std::string(role) + " record is null; a framed record is needed");
    constexpr int length = sizeof(T);
    const int size = Marshaler::GetMarshalDataSize(record);
    DataChecker<T>::Check(record, size);
    if (size != length) throw MarshalingException();
    if (Marshaler::GetMarshalDataType(record, length) != tag) throw MarshalingException();
}

}  // namespace quarry
