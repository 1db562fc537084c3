#include "Operations/Similarity.h"

#include <cmath>
#include <fstream>
#include <iostream>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "Console.h"
#include "Media.h"
#include "Verbs/Options.h"
#include "Verbs/Verbs.h"

namespace quarry::host {
namespace {

constexpr const char* kFooter =
    R"(An embedding is a list of 512 numbers by which some model describes a face, a person or
a picture. Each file holds one, as a JSON array: [0.0213, -0.117, ...].

The similarity is the cosine of the angle between the two: 1 same direction, 0 nothing in common, -1 opposite. It is
not a number (null in JSON) when an embedding is all zeros.

Example:
  quarry similarity anna-monday.json anna-friday.json)";

struct Options {
    std::string first;
    std::string second;
    bool json = false;
};

nlohmann::json ReadJson(const std::string& path) {
    CheckIsFile(path);
    std::ifstream stream(path, std::ios::binary);
    try {
        return nlohmann::json::parse(stream);
    } catch (const nlohmann::json::exception&) {
        throw Failure(path + (stream.bad() ? ": cannot be read" : ": not JSON"));
    }
}

float ValueOf(const nlohmann::json& value, std::size_t place, const std::string& path) {
    const std::string named = path + ": value " + std::to_string(place + 1) + " of " + std::to_string(kEmbeddingLength);
    if (!value.is_number()) throw Failure(named + " is not a number");
    const double number = value.get<double>();
    if (std::abs(number) > static_cast<double>(std::numeric_limits<float>::max())) {
        throw Failure(named + " is too large for single precision");
    }
    return static_cast<float>(number);
}

Embedding ReadEmbedding(const std::string& path) {
    const nlohmann::json values = ReadJson(path);
    if (!values.is_array())
        throw Failure(path + ": not a JSON array of " + std::to_string(kEmbeddingLength) + " numbers");
    if (values.size() != kEmbeddingLength) {
        throw Failure(path + ": holds " + std::to_string(values.size()) + " values; an embedding has " +
                      std::to_string(kEmbeddingLength));
    }
    Embedding embedding{};
    for (std::size_t i = 0; i < embedding.size(); ++i) embedding[i] = ValueOf(values[i], i, path);
    return embedding;
}

int Run(const Options& options) {
    const Embedding first = ReadEmbedding(options.first);
    const Embedding second = ReadEmbedding(options.second);
    const double similarity = SimilarityMeter().Measure(first, second);
    if (options.json) {
        std::cout << JsonLine({{"first", options.first}, {"second", options.second}, {"similarity", similarity}});
    } else if (std::isnan(similarity)) {
        std::cout << "similarity  not a number: an embedding is all zeros\n";
    } else {
        std::cout << Format("similarity  %.6f\n", similarity);
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

}  // namespace quarry::host
