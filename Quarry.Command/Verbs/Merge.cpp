#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <system_error>
#include <tuple>
#include <vector>

#include "Console.h"
#include "Options.h"
#include "OutputFile.h"
#include "Verbs.h"
#include "VideoLines.h"

namespace quarry::command {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFooter =
    R"(Writes all files *.jsonl below DIR, which come from `quarry scan`, one after the other in the
byte order of the videos' names. The result has the same bytes however the work was shared,
interrupted and started again. Files of different versions, operations or options are refused,
and for flow and people those of different instructions of the processor. So is any file that is
not the finished lines of a video. Temporary files that killed processes left are skipped.

Examples:
  quarry merge lines --out lines.jsonl
  quarry merge lines | jq 'select(.error) | .error')";

struct Options {
    std::string folder;
    std::string out;  ///< empty for standard output
};

/// The lines of one video.
struct Part {
    std::string video;
    fs::path path;
    std::string made;  ///< version, operation and options, which must be the same in all parts
};

Part PartOf(const fs::path& path) {
    const std::optional<FinishedLines> lines = ReadFinished(path);
    const nlohmann::ordered_json head = nlohmann::ordered_json::parse(lines ? lines->head : "", nullptr, false);
    const auto holds = [&head](const char* key) { return head.is_object() && head.contains(key); };
    if (!holds("quarry") || !holds("operation") || !holds("options") || !holds("video") || !head["video"].is_string()) {
        throw Failure(path.string() + ": not the finished lines of a video");
    }
    return {head["video"], path,
            "quarry " + head["quarry"].dump() + " " + head["operation"].dump() + " " + head["options"].dump()};
}

std::vector<Part> PartsBelow(const fs::path& folder) try {
    std::vector<fs::path> paths;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        const bool isPart = entry.path().extension() == ".jsonl" && !entry.is_directory();
        if (isPart && !IsTemporary(entry.path())) paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());
    std::vector<Part> parts;
    parts.reserve(paths.size());
    for (const fs::path& path : paths) parts.push_back(PartOf(path));
    std::stable_sort(parts.begin(), parts.end(), [](const Part& a, const Part& b) { return a.video < b.video; });
    return parts;
} catch (const fs::filesystem_error& refused) {
    throw Failure(refused.path1().string() + ": cannot be read: " + refused.code().message());
}

void CheckBelongTogether(const std::vector<Part>& parts) {
    for (std::size_t i = 1; i < parts.size(); ++i) {
        if (parts[i].made != parts[0].made) {
            throw Failure(parts[i].path.string() + ": is of " + parts[i].made + ", but " + parts[0].path.string() +
                          " is of " + parts[0].made);
        }
        if (parts[i].video == parts[i - 1].video) {
            throw Failure(parts[i].path.string() + ": is of the same video as " + parts[i - 1].path.string());
        }
    }
}

void Write(const std::vector<Part>& parts, std::ostream& out, const std::string& name) {
    for (const Part& part : parts) {
        std::ifstream stream(part.path, std::ios::binary);
        out << stream.rdbuf();
        if (!stream) throw Failure(part.path.string() + ": cannot be read in full");
        if (!out.flush()) throw Failure(name + ": cannot be written in full");
    }
}

bool IsBelow(const fs::path& path, const fs::path& folder) {
    const auto canonical = [](const fs::path& any) { return fs::weakly_canonical(fs::absolute(any)); };
    return *canonical(path).lexically_relative(canonical(folder)).begin() != "..";
}

int Run(const Options& options) {
    if (!options.out.empty() && IsBelow(options.out, options.folder)) {
        throw CLI::ValidationError("--out", options.out + " is below " + options.folder + ", which is read");
    }
    const std::vector<Part> parts = PartsBelow(options.folder);
    if (parts.empty()) throw Failure(options.folder + ": no finished lines of videos there");
    CheckBelongTogether(parts);
    if (options.out.empty()) {
        Write(parts, std::cout, "standard output");
        return kExitFine;
    }
    OutputFile file(options.out);
    std::ofstream stream(file.temporary(), std::ios::binary);
    Write(parts, stream, options.out);
    stream.close();
    file.Keep();
    return kExitFine;
}

}  // namespace

Verb AddMerge(CLI::App& commandLine) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command =
        commandLine.add_subcommand("merge", "Makes one file of what `quarry scan` wrote about many videos");
    command->footer(kFooter);
    command->add_option("DIR", options->folder, "Folder with the lines of the videos")->required();
    command->add_option("--out", options->out, "Write them here instead of to standard output");
    return {command, [options] { return Run(*options); }};
}

}  // namespace quarry::command
