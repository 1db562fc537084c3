#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "Catalogue.h"
#include "Console.h"
#include "Description.h"
#include "JsonLine.h"
#include "NearestNames.h"
#include "Verbs.h"

namespace quarry::command {
namespace {

constexpr const char* kFooter =
    R"(Offsets and sizes are in bytes, as hosts in any language lay out the records. A field that is
one of the shared records (Image, Contour, ...), or points at one, is followed by its own
description. Gaps between fields are padding.

Example:
  quarry describe mosse-tracker)";

struct Options {
    std::string operation;
    bool json = false;
    bool markdown = false;
};

std::string Unknown(const std::string& name) {
    const std::vector<std::string> near = NamesNear(name);
    return "there is no operation " + name + (near.empty() ? "; quarry list names them all" : DidYouMean(near));
}

int Run(const Options& options) {
    if (options.json && options.markdown) throw CLI::ExcludesError("--json", "--markdown");
    const Operation* const operation = FindOperation(options.operation);
    if (operation == nullptr) throw CLI::ValidationError("OPERATION", Unknown(options.operation));
    if (options.json) {
        std::cout << JsonLine(JsonOf(*operation));
    } else {
        std::cout << (options.markdown ? MarkdownOf(*operation) : TextOf(*operation));
    }
    return kExitFine;
}

}  // namespace

Verb AddDescribe(CLI::App& commandLine) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command =
        commandLine.add_subcommand("describe", "What an operation takes, gives and throws: every field of its records");
    command->footer(kFooter);
    command->add_option("OPERATION", options->operation, "One of those that `quarry list` names")->required();
    command->add_flag("--json", options->json, "Write one JSON object instead of text");
    command->add_flag("--markdown", options->markdown, "Write a page in Markdown instead of text");
    return {command, [options] { return Run(*options); }};
}

}  // namespace quarry::command
