#include <fmt/format.h>

#include <Quarry/Host.hpp>
#include <array>
#include <cmath>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "Console.h"
#include "JsonInput.h"
#include "JsonLine.h"
#include "Options.h"
#include "Verbs.h"

namespace quarry::command {
namespace {

constexpr const char* kFooter =
    R"(An embedding is a list of 512 numbers by which some model describes a face, a person or
a picture. Each file holds one, as a JSON array: [0.0213, -0.117, ...].

The similarity is the cosine of the angle between the two: 1 same direction, 0 nothing in common, -1 opposite. It is
not a number (null in JSON) when an embedding is all zeros.

Example:
  quarry similarity anna-monday.json anna-friday.json)";

constexpr std::size_t kLength = CosineSimilarity::kLength;
using Embedding = std::array<float, kLength>;

struct Options {
    std::string first;
    std::string second;
    bool json = false;
};

Embedding ReadEmbedding(const std::string& path) {
    const nlohmann::json values = ReadJson(path);
    if (!values.is_array()) throw Failure(path + ": not a JSON array of " + std::to_string(kLength) + " numbers");
    if (values.size() != kLength) {
        throw Failure(path + ": holds " + std::to_string(values.size()) + " values; an embedding has " +
                      std::to_string(kLength));
    }
    Embedding embedding{};
    for (std::size_t i = 0; i < embedding.size(); ++i) {
        embedding[i] =
            SinglePrecision(values[i], path + ": value " + std::to_string(i + 1) + " of " + std::to_string(kLength));
    }
    return embedding;
}

int Run(const Options& options) {
    const Embedding first = ReadEmbedding(options.first);
    const Embedding second = ReadEmbedding(options.second);
    const double similarity = CosineSimilarity()(first, second);
    if (options.json) {
        std::cout << JsonLine({{"first", options.first}, {"second", options.second}, {"similarity", similarity}});
    } else if (std::isnan(similarity)) {
        std::cout << "similarity  not a number: an embedding is all zeros\n";
    } else {
        std::cout << fmt::format("similarity  {:.6f}\n", similarity);
    }
    return kExitFine;
}

}  // namespace

Verb AddSimilarity(CLI::App& commandLine) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command =
        commandLine.add_subcommand("similarity", "How alike two embeddings are: the cosine of their angle");
    command->footer(kFooter);
    command->add_option("FIRST", options->first, "JSON file with 512 numbers")->required();
    command->add_option("SECOND", options->second, "JSON file with 512 numbers")->required();
    command->add_flag("--json", options->json, "Write one JSON object instead of text");
    return {command, [options] { return Run(*options); }};
}

}  // namespace quarry::command
