#include "Catalogue.h"

#include <Quarry/Operations.h>

#include <algorithm>

#include "NearestNames.h"
#include "OperationText.h"

namespace quarry::command {

#include "Descriptions.inc"

namespace {

/// MosseTracker becomes mosse-tracker.
std::string WithHyphens(const std::string& name) {
    std::string words;
    for (const char letter : name) {
        const bool isCapital = letter >= 'A' && letter <= 'Z';
        if (isCapital && !words.empty()) words += '-';
        words += isCapital ? static_cast<char>(letter - 'A' + 'a') : letter;
    }
    return words;
}

/// What every operation of a kind refuses, then what the operation itself refuses.
std::vector<Error> ErrorsOf(Kind kind, const std::vector<Error>& own) {
    std::vector<Error> errors = {
        {"MarshalingException", "a record's length word or tag is wrong; nothing has changed then"}};
    errors.insert(errors.end(), own.begin(), own.end());
    if (kind == Kind::Updater) {
        errors.push_back({"std::logic_error", "GetUpdateResult is called before a frame was taken in"});
    }
    return errors;
}

template <class Options, class Input, class Result>
Operation OperationOf(const char* name, const char* factory, Kind kind, const char* verb, const OperationText& text) {
    return {WithHyphens(name),
            text.summary,
            kind,
            factory,
            verb,
            text.method,
            RecordOf<Options>(),
            RecordOf<Input>(),
            RecordOf<Result>(),
            ErrorsOf(kind, text.errors)};
}

std::vector<Operation> AllOperations() {
#define QUARRY_OPERATION_OF(Name, Factory, Options, Input, Result, OperationKind, Handle, Source, Verb) \
    OperationOf<Options, Input, Result>(#Name, #Factory, Kind::OperationKind, Verb, TextOf##Factory()),
    return {QUARRY_OPERATIONS(QUARRY_OPERATION_OF)};
#undef QUARRY_OPERATION_OF
}

void AddSharedRecordsOf(const Record& record, std::vector<const Record*>& shared) {
    for (const Field& field : record.fields) {
        if (field.holds == nullptr || std::find(shared.begin(), shared.end(), field.holds) != shared.end()) continue;
        shared.push_back(field.holds);
        AddSharedRecordsOf(*field.holds, shared);
    }
}

}  // namespace

const std::vector<Operation>& Catalogue() {
    static const std::vector<Operation> kAll = AllOperations();
    return kAll;
}

const Operation* FindOperation(const std::string& name) {
    const auto& all = Catalogue();
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const Operation& operation) { return name == operation.name; });
    return found == all.end() ? nullptr : &*found;
}

std::vector<std::string> NamesNear(const std::string& name) {
    std::vector<std::string> near;
    for (const Operation& operation : Catalogue()) {
        if (name == operation.verb || IsNear(name, operation.name)) near.push_back(operation.name);
    }
    return near;
}

std::vector<const Record*> SharedRecordsOf(const Operation& operation) {
    std::vector<const Record*> shared;
    for (const Record* record : {&operation.options, &operation.input, &operation.result}) {
        AddSharedRecordsOf(*record, shared);
    }
    return shared;
}

}  // namespace quarry::command
