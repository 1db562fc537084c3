/// @file
/// What the library offers: its operations, with every field of their records.
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
    const Record* holds;  ///< the shared record that it is, points at or counts several of; null otherwise
};

struct Record {
    const char* name;
    const char* meaning;
    std::size_t length;  ///< bytes
    std::vector<Field> fields;
};

enum class Kind { Processor, Updater };

struct Error {
    const char* exception;  ///< its type, or "abort" where the process ends
    const char* when;
};

struct Operation {
    std::string name;  ///< the public name in words with hyphens: "contour-grid"
    const char* summary;
    Kind kind;
    const char* factory;
    const char* verb;    ///< of the command, that shows it
    const char* method;  ///< authors and year of what it follows; empty: plain arithmetic
    Record options;
    Record input;
    Record result;
    std::vector<Error> errors;
};

/// All operations, related ones together.
const std::vector<Operation>& Catalogue();

/// @return null: there is none of that name
const Operation* FindOperation(const std::string& name);

/// The names that someone may have meant: misspelt, shortened, or given as a verb.
std::vector<std::string> NamesNear(const std::string& name);

/// The records that an operation's records are built from, each once, in the order in which they are met.
std::vector<const Record*> SharedRecordsOf(const Operation& operation);

}  // namespace quarry::command
