/// @file
/// The operations of the library, with every field of their records.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace quarry::command {

struct Record;

/// A field of a record, as the public headers lay it out.
struct Field {
    const char* name;
    std::string type;     ///< as in C, without `struct`
    std::size_t offset;   ///< bytes from the record's beginning
    std::size_t size;     ///< bytes
    const char* meaning;  ///< with unit and range
    const Record* holds;  ///< the record that it is, points at or has an array of; null when there is none
};

struct Record {
    const char* name;
    const char* meaning;
    std::size_t length;  ///< bytes
    std::vector<Field> fields;
};

enum class Kind { Processor, Updater };

struct Error {
    const char* exception;  ///< its type, or "abort" when the process ends
    const char* when;
};

struct Operation {
    std::string name;  ///< the public name in words with hyphens: mosse-tracker
    const char* summary;
    Kind kind;
    const char* factory;
    std::string verb;    ///< the verb of the command that runs it
    const char* method;  ///< authors and year of the method; empty when it is plain arithmetic
    Record options;
    Record input;
    Record result;
    std::vector<Error> errors;
};

/// All operations, in the order of the table of operations.
const std::vector<Operation>& Catalogue();

/// @return null when there is no operation of that name
const Operation* FindOperation(const std::string& name);

/// The operations that somebody may have meant by an unknown name: similar ones, and those that the verb of that name
/// runs.
std::vector<std::string> NamesNear(const std::string& name);

/// The records that are fields of an operation's records, or of each other. Each is listed once.
std::vector<const Record*> SharedRecordsOf(const Operation& operation);

}  // namespace quarry::command
