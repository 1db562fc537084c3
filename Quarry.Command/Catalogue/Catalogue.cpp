#include "Catalogue/Catalogue.h"

#include <algorithm>
#include <iterator>
#include <numeric>

#include "Catalogue/Families.h"

namespace quarry::command {
namespace {

std::vector<Operation> AllOperations() {
    std::vector<Operation> all;
    for (const auto chapter : {SharpnessOperations, PictureOperations, StreamOperations, FlowOperations,
                               ContourOperations, PersonOperations, ColourOperations, GeometryOperations}) {
        std::vector<Operation> operations = chapter();
        std::move(operations.begin(), operations.end(), std::back_inserter(all));
    }
    return all;
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
