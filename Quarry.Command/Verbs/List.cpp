#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <memory>
#include <string>

#include "Catalogue.h"
#include "Console.h"
#include "Description.h"
#include "JsonLine.h"
#include "Verbs.h"

namespace quarry::command {
namespace {

constexpr const char* kFooter =
    R"(A processor makes a result of each input by itself; an updater takes a stream, one frame
after the other. The verb is the one of this command that shows the operation.

Example:
  quarry list --json | jq -r .factory)";

void WriteTable() {
    std::size_t names = 0;
    std::size_t verbs = 0;
    for (const Operation& operation : Catalogue()) {
        names = std::max(names, operation.name.size());
        verbs = std::max(verbs, operation.verb.size());
    }
    const auto write = [&](const std::string& name, const char* kind, const std::string& verb, const char* summary) {
        std::cout << fmt::format("{:<{}}  {:<9}  {:<{}}  {}\n", name, names, kind, verb, verbs, summary);
    };
    write("operation", "kind", "verb", "what it gives");
    for (const Operation& operation : Catalogue()) {
        write(operation.name, NameOf(operation.kind), operation.verb, operation.summary);
    }
}

void WriteJson() {
    for (const Operation& operation : Catalogue()) {
        std::cout << JsonLine({{"name", operation.name},
                               {"kind", NameOf(operation.kind)},
                               {"verb", operation.verb},
                               {"factory", operation.factory},
                               {"summary", operation.summary}});
    }
}

}  // namespace

Verb AddList(CLI::App& commandLine) {
    const auto json = std::make_shared<bool>(false);
    CLI::App* const command = commandLine.add_subcommand("list", "The operations of the library, one per line");
    command->footer(kFooter);
    command->add_flag("--json", *json, "Write one JSON object per operation and line instead of a table");
    return {command, [json] {
                *json ? WriteJson() : WriteTable();
                return kExitFine;
            }};
}

}  // namespace quarry::command
