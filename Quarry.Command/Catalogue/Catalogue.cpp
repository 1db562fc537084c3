#include "Catalogue.h"

#include <Quarry/Operations.h>

#include <algorithm>
#include <cctype>
#include <iterator>
#include <numeric>

#include "Describing.h"

namespace quarry::command {

#include "Descriptions.inc"

namespace {

/// "ContourGrid" as "contour-grid".
std::string WithHyphens(const std::string& publicName) {
    std::string name;
    for (const char c : publicName) {
        const bool isCapital = std::isupper(static_cast<unsigned char>(c)) != 0;
        if (isCapital && !name.empty()) name += '-';
        name += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return name;
}

/// What every operation of a kind refuses, before what the operation itself refuses.
std::vector<Error> ErrorsOf(Kind kind, const std::vector<Error>& own) {
    std::vector<Error> errors = {
        {"MarshalingException", "a record's length word or tag is wrong; nothing has changed then"}};
    errors.insert(errors.end(), own.begin(), own.end());
    if (kind == Kind::Updater) {
        errors.push_back({"std::logic_error", "GetUpdateResult is called before a frame was taken in"});
    }
    return errors;
}

Operation Entry(const std::string& publicName, Kind kind, const char* factory, const char* verb,
                const OperationText& text, const Record& options, const Record& input, const Record& result) {
    return {WithHyphens(publicName),    text.summary, kind, factory, verb, text.method, options, input, result,
            ErrorsOf(kind, text.errors)};
}

std::vector<Operation> AllOperations() {
#define QUARRY_ENTRY(Name, Factory, Options, Input, Result, Kind_, Handle, Source, Verb)                 \
    Entry(#Name, Kind::Kind_, #Factory, Verb, TextOf##Factory(), RecordOf<Options>(), RecordOf<Input>(), \
          RecordOf<Result>()),
    return {QUARRY_OPERATIONS(QUARRY_ENTRY)};
#undef QUARRY_ENTRY
}

/// How many letters must be put in, left out or replaced to make one word of the other.
std::size_t EditDistance(const std::string& a, const std::string& b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (const char letter : a) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (letter == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

bool IsNear(const std::string& name, const Operation& operation) {
    constexpr std::size_t kTypingErrors = 3;
    constexpr std::size_t kShortest = 3;  // shorter ones are part of almost any name
    const std::string candidate = operation.name;
    return name == operation.verb || EditDistance(name, candidate) <= kTypingErrors ||
           (name.size() >= kShortest && candidate.find(name) != std::string::npos);
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
        if (IsNear(name, operation)) near.emplace_back(operation.name);
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
