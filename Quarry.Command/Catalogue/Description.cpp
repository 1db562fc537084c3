#include "Description.h"

#include <Quarry/Framing.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <string_view>

#include "Options.h"

namespace quarry::command {
namespace {

/// A record in the part that it plays for an operation.
struct Part {
    const char* role;
    const Record* record;
    uint32_t tag;
};

std::array<Part, 3> PartsOf(const Operation& operation) {
    return {{{"options", &operation.options, QUARRY_OPTIONS_TAG},
             {"input", &operation.input, QUARRY_INPUT_TAG},
             {"result", &operation.result, QUARRY_RESULT_TAG}}};
}

const char* CallsOf(Kind kind) {
    return kind == Kind::Processor ? "Process, then DisposeResult" : "Update, then GetUpdateResult";
}

std::string TagText(uint32_t tag) {
    return Format("0x%08X", tag);
}

std::string Capitalized(std::string text) {
    text[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[0])));
    return text;
}

int Widest(const Record& record, std::string_view (*column)(const Field&)) {
    std::size_t widest = 0;
    for (const Field& field : record.fields) widest = std::max(widest, column(field).size());
    return static_cast<int>(widest);
}

std::string FieldsAsText(const Record& record) {
    const int names = Widest(record, [](const Field& field) { return std::string_view(field.name); });
    const int types = Widest(record, [](const Field& field) { return std::string_view(field.type); });
    std::string text = Format("  offset  size  %-*s  %-*s  meaning\n", names, "field", types, "type");
    for (const Field& field : record.fields) {
        text += Format("  %6zu  %4zu  %-*s  %-*s  %s\n", field.offset, field.size, names, field.name, types,
                       field.type.c_str(), field.meaning);
    }
    return text;
}

std::string ErrorsAsText(const Operation& operation) {
    std::size_t widest = 0;
    for (const Error& error : operation.errors) widest = std::max(widest, std::string_view(error.exception).size());
    std::string text = "\nErrors\n";
    for (const Error& error : operation.errors) {
        text += Format("  %-*s  %s\n", static_cast<int>(widest), error.exception, error.when);
    }
    return text;
}

/// Inside a table a bar would end the cell, and stars would be taken for emphasis.
std::string Escaped(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '|' || c == '*') escaped += '\\';
        escaped += c;
    }
    return escaped;
}

std::string Code(std::string_view text) {
    return "`" + std::string(text) + "`";
}

std::string FieldsAsMarkdown(const Record& record) {
    std::string text = "\n| Offset | Size | Field | Type | Meaning |\n|---:|---:|---|---|---|\n";
    for (const Field& field : record.fields) {
        text += Format("| %zu | %zu | ", field.offset, field.size) + Code(field.name) + " | " + Code(field.type) +
                " | " + Escaped(field.meaning) + " |\n";
    }
    return text;
}

std::string RecordAsMarkdown(const Record& record) {
    return "\n" + Escaped(record.meaning) + "\n" + FieldsAsMarkdown(record);
}

std::string FactsAsMarkdown(const Operation& operation) {
    std::string text = "\n| | |\n|---|---|\n";
    text += "| Kind | " + std::string(NameOf(operation.kind)) + ": " + CallsOf(operation.kind) + " |\n";
    text += "| Factory | " + Code(operation.factory) + " |\n";
    text += "| Command | " + Code(std::string("quarry ") + operation.verb) + " |\n";
    if (*operation.method != '\0') text += "| Method | " + Escaped(operation.method) + " |\n";
    return text;
}

std::string ErrorsAsMarkdown(const Operation& operation) {
    std::string text = "\n## Errors\n\n| Error | When |\n|---|---|\n";
    for (const Error& error : operation.errors) {
        text += "| " + Code(error.exception) + " | " + Escaped(error.when) + " |\n";
    }
    return text;
}

nlohmann::ordered_json RecordAsJson(const Record& record) {
    nlohmann::ordered_json fields = nlohmann::ordered_json::array();
    for (const Field& field : record.fields) {
        fields.push_back({{"name", field.name},
                          {"type", field.type},
                          {"offset", field.offset},
                          {"size", field.size},
                          {"meaning", field.meaning}});
    }
    return {{"name", record.name}, {"meaning", record.meaning}, {"length", record.length}, {"fields", fields}};
}

}  // namespace

const char* NameOf(Kind kind) {
    return kind == Kind::Processor ? "processor" : "updater";
}

std::string TextOf(const Operation& operation) {
    std::string text = operation.name + "\n" + operation.summary + "\n\n";
    text += Format("  kind     %s: %s\n  factory  %s\n  command  quarry %s\n", NameOf(operation.kind),
                   CallsOf(operation.kind), operation.factory, operation.verb);
    if (*operation.method != '\0') text += Format("  method   %s\n", operation.method);
    for (const Part& part : PartsOf(operation)) {
        text += Format("\n%s: %s, %zu bytes, tag %s\n  %s\n\n", Capitalized(part.role).c_str(), part.record->name,
                       part.record->length, TagText(part.tag).c_str(), part.record->meaning);
        text += FieldsAsText(*part.record);
    }
    text += ErrorsAsText(operation);
    for (const Record* record : SharedRecordsOf(operation)) {
        text += Format("\n%s, %zu bytes\n  %s\n\n", record->name, record->length, record->meaning);
        text += FieldsAsText(*record);
    }
    return text;
}

std::string MarkdownOf(const Operation& operation) {
    std::string text = "# " + operation.name + "\n\n" + Escaped(operation.summary) + ".\n";
    text += FactsAsMarkdown(operation);
    for (const Part& part : PartsOf(operation)) {
        text += "\n## " + Capitalized(part.role) + ": " + Code(part.record->name) +
                Format(", %zu bytes, tag %s\n", part.record->length, TagText(part.tag).c_str());
        text += RecordAsMarkdown(*part.record);
    }
    text += ErrorsAsMarkdown(operation);
    const std::vector<const Record*> shared = SharedRecordsOf(operation);
    if (!shared.empty()) text += "\n## Records inside these\n";
    for (const Record* record : shared) {
        text += "\n### " + Code(record->name) + Format(", %zu bytes\n", record->length) + RecordAsMarkdown(*record);
    }
    return text;
}

nlohmann::ordered_json JsonOf(const Operation& operation) {
    nlohmann::ordered_json json = {{"name", operation.name},         {"summary", operation.summary},
                                   {"kind", NameOf(operation.kind)}, {"factory", operation.factory},
                                   {"verb", operation.verb},         {"method", operation.method}};
    for (const Part& part : PartsOf(operation)) {
        json[part.role] = RecordAsJson(*part.record);
        json[part.role]["tag"] = part.tag;
    }
    json["errors"] = nlohmann::ordered_json::array();
    for (const Error& error : operation.errors) {
        json["errors"].push_back({{"error", error.exception}, {"when", error.when}});
    }
    json["records"] = nlohmann::ordered_json::array();
    for (const Record* record : SharedRecordsOf(operation)) json["records"].push_back(RecordAsJson(*record));
    return json;
}

}  // namespace quarry::command
