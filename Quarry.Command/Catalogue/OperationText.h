/// @file
/// How the catalogue lays out what describe.py takes from the public headers. Offsets, sizes and types of fields come
/// from the compiler, so that a description cannot differ from the record.
#pragma once

#include <Quarry/Quarry.h>

#include <cstddef>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "Catalogue.h"

/// A field of a record. Its type and the record that it holds follow from its declaration.
#define QUARRY_FIELD(RecordType, field, meaning) \
    ::quarry::command::FieldOf<decltype(RecordType::field)>(#field, offsetof(RecordType, field), meaning)

/// A record; its fields follow in the order of the declaration.
#define QUARRY_RECORD(RecordType, meaning, ...) \
    ::quarry::command::LaidOut<RecordType>(#RecordType, meaning, {__VA_ARGS__})

namespace quarry::command {

/// What the comment of a factory says.
struct OperationText {
    const char* summary;
    const char* method;  ///< authors and year of the method; empty when it is plain arithmetic
    std::vector<Error> errors;
};

/// The description of a record of the public headers; there is one for each of them.
template <class RecordType>
const Record& RecordOf();

/// A type without its pointers, arrays and qualifiers.
template <class T>
using Bare = std::remove_cv_t<std::remove_pointer_t<std::remove_all_extents_t<T>>>;

template <class T>
const Record* HeldBy() {
    if constexpr (std::is_class_v<Bare<T>>) return &RecordOf<Bare<T>>();
    return nullptr;
}

/// The name of a number's type; every number of the interface has one of these.
template <class Number>
constexpr const char* NumberName() {
    if constexpr (std::is_same_v<Number, char>) return "char";
    if constexpr (std::is_same_v<Number, uint8_t>) return "uint8_t";
    if constexpr (std::is_same_v<Number, int16_t>) return "int16_t";
    if constexpr (std::is_same_v<Number, uint16_t>) return "uint16_t";
    if constexpr (std::is_same_v<Number, int32_t>) return "int32_t";
    if constexpr (std::is_same_v<Number, uint32_t>) return "uint32_t";
    if constexpr (std::is_same_v<Number, uint64_t>) return "uint64_t";
    if constexpr (std::is_same_v<Number, float>) return "float";
    if constexpr (std::is_same_v<Number, double>) return "double";
}

template <class T>
std::string TypeName() {
    if constexpr (std::is_array_v<T>) {
        return TypeName<std::remove_extent_t<T>>() + "[" + std::to_string(std::extent_v<T>) + "]";
    } else if constexpr (std::is_pointer_v<T>) {
        return TypeName<std::remove_pointer_t<T>>() + "*";
    } else if constexpr (std::is_const_v<T>) {
        return "const " + TypeName<std::remove_const_t<T>>();
    } else if constexpr (std::is_class_v<T>) {
        return RecordOf<T>().name;
    } else {
        return NumberName<T>();
    }
}

template <class T>
Field FieldOf(const char* name, std::size_t offset, const char* meaning) {
    // NOLINTNEXTLINE(bugprone-sizeof-expression): for a pointer, the size of the pointer is meant
    return {name, TypeName<T>(), offset, sizeof(T), meaning, HeldBy<T>()};
}

template <class T>
Record LaidOut(const char* name, const char* meaning, std::vector<Field> fields) {
    return {name, meaning, sizeof(T), std::move(fields)};
}

}  // namespace quarry::command
