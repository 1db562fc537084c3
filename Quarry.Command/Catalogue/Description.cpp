#include "Description.h"

#include <Quarry/Framing.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <string_view>

namespace quarry::command {
namespace {

/// One of the three records of an operation.
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
    return fmt::format("0x{:08X}", tag);
}

std::string Capitalized(std::string text) {
    text[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[0])));
    return text;
}

std::size_t Widest(const Record& record, std::string_view (*column)(const Field&)) {
    std::size_t widest = 0;
    for (const Field& field : record.fields) widest = std::max(widest, column(field).size());
    return widest;
}

std::string FieldsAsText(const Record& record) {
    const std::size_t names = Widest(record, [](const Field& field) { return std::string_view(field.name); });
    const std::size_t types = Widest(record, [](const Field& field) { return std::string_view(field.type); });
    std::string text = fmt::format("  offset  size  {:<{}}  {:<{}}  meaning\n", "field", names, "type", types);
    for (const Field& field : record.fields) {
        text += fmt::format("  {:6}  {:4}  {:<{}}  {:<{}}  {}\n", field.offset, field.size, field.name, names,
                            field.type, types, field.meaning);
    }
    return text;
}

std::string ErrorsAsText(const Operation& operation) {
    std::size_t widest = 0;
    for (const Error& error : operation.errors) widest = std::max(widest, std::string_view(error.exception).size());
    std::string text = "\nErrors\n";
    for (const Error& error : operation.errors) {
        text += fmt::format("  {:<{}}  {}\n", error.exception, widest, error.when);
    }
    return text;
}

/// Escapes bars, which would end a cell of a table, and stars, which would be read as emphasis.
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
        text += fmt::format("| {} | {} | ", field.offset, field.size) + Code(field.name) + " | " + Code(field.type) +
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
    text += "| Command | " + Code("quarry " + operation.verb) + " |\n";
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
    text += fmt::format("  kind     {}: {}\n  factory  {}\n  command  quarry {}\n", NameOf(operation.kind),
                        CallsOf(operation.kind), operation.factory, operation.verb);
    if (*operation.method != '\0') text += fmt::format("  method   {}\n", operation.method);
    for (const Part& part : PartsOf(operation)) {
        text += fmt::format("\n{}: {}, {} bytes, tag {}\n  {}\n\n", Capitalized(part.role), part.record->name,
                            part.record->length, TagText(part.tag), part.record->meaning);
        text += FieldsAsText(*part.record);
    }
    text += ErrorsAsText(operation);
    for (const Record* record : SharedRecordsOf(operation)) {
        text += fmt::format("\n{}, {} bytes\n  {}\n\n", record->name, record->length, record->meaning);
        text += FieldsAsText(*record);
    }
    return text;
}

std::string MarkdownOf(const Operation& operation) {
    std::string text = "# " + operation.name + "\n\n" + Escaped(operation.summary) + ".\n";
    text += FactsAsMarkdown(operation);
    for (const Part& part : PartsOf(operation)) {
        text += "\n## " + Capitalized(part.role) + ": " + Code(part.record->name) +
                fmt::format(", {} bytes, tag {}\n", part.record->length, TagText(part.tag));
        text += RecordAsMarkdown(*part.record);
    }
    text += ErrorsAsMarkdown(operation);
    const std::vector<const Record*> shared = SharedRecordsOf(operation);
    if (!shared.empty()) text += "\n## Records inside these\n";
    for (const Record* record : shared) {
        text += "\n### " + Code(record->name) + fmt::format(", {} bytes\n", record->length) + RecordAsMarkdown(*record);
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
