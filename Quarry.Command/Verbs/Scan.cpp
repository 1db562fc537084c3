#include <fmt/format.h>
#include <sysexits.h>
#include <unistd.h>

#include <climits>
#include <cmath>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <opencv2/core.hpp>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "Console.h"
#include "Fingerprint.h"
#include "Manifest.h"
#include "Numbers.h"
#include "Options.h"
#include "Progress.h"
#include "Scanning.h"
#include "SelectedFrames.h"
#include "Verbs.h"

namespace quarry::command {
namespace {

constexpr const char* kFooter =
    R"(The videos are those below the folder of --manifest (by their endings: .avi, .mp4, .mkv and
the like; links to folders are not followed), or those that a text file names, one per line,
relative to the folder where it stands. Empty lines and lines that begin with # are skipped.
With - the lines come from standard input, relative to the working directory.

DIR/NAME.jsonl gets the lines of the video NAME: first the version, the operation, its options
and the video's SHA-256, then an object per frame as --json of the verb gives it, without its
`milliseconds`, and last the number of frames. The last digits of flow and people depend on the
processor's instructions, which then stand among the options. The file appears when it is
complete. A video with such lines is skipped; one whose lines are of other options, of another
version or of other contents is done anew. So what was interrupted is simply started again.
A video that cannot be played has an `error` in its last line, and the others go on.

Where many processes share the work each takes a --shard; `quarry merge` makes one file of all.

Exit codes:
  0    all videos are done
  65   all are done, at least one is bad: running again will not help
  75   something could not be read or written, or memory ran out: run again
  70   an error in the command itself: report it
  2    wrong usage
  130, 143  interrupted by SIGINT or SIGTERM: what is finished stays
When several apply, 70 comes before 75, and 75 before 65.

Examples:
  quarry scan sharpness --manifest videos --out lines
  quarry scan people --sensitivity 0.6 --manifest videos.txt --out lines --every 25 --shard 2/16
  find . -name '*.mp4' | quarry scan flow --manifest - --out /data/lines --threads 4)";

constexpr const char* kOperationFooter =
    "`quarry scan --help` tells the other options, `quarry {} --help` what the numbers mean.";

struct Options {
    std::string manifest;
    std::string out;
    int shard = 1;   ///< the part of the videos that is scanned, from 1
    int shards = 1;  ///< the number of parts
    FrameRange frames;
    int threads = 1;
};

void SetShard(Options& options, const std::string& text) {
    const auto numbers = ReadNumbers<int, 2>(text, '/');
    if (numbers && numbers->front() >= 1 && numbers->front() <= numbers->back()) {
        options.shard = numbers->front();
        options.shards = numbers->back();
        return;
    }
    throw CLI::ValidationError("--shard", "must be I/N, whole numbers with I from 1 to N, not " + text);
}

/// A number when the text is one, so that 0.5, 0.50 and .5 are the same value, and so are 10 and 10.0. Otherwise the
/// text.
nlohmann::ordered_json ValueOf(const std::string& text) {
    const std::string written = text.rfind('.', 0) == 0 ? "0" + text : text;
    const nlohmann::ordered_json value = nlohmann::ordered_json::parse(written, nullptr, false);
    if (!value.is_number()) return text;
    const auto number = value.get<double>();
    constexpr double kMost = 1e15;  // all whole numbers up to here are exact
    const bool isWhole = std::abs(number) < kMost && std::trunc(number) == number;
    return isWhole ? nlohmann::ordered_json(static_cast<int64_t>(number)) : value;
}

/// A list of such values when the text has commas.
nlohmann::ordered_json ValuesOf(const std::string& text) {
    nlohmann::ordered_json values;
    std::istringstream parts(text);
    for (std::string part; std::getline(parts, part, ',');) values.push_back(ValueOf(part));
    return values.size() > 1 ? values : ValueOf(text);
}

/// The value of an option. It is null when the option was not given and has no fixed default, because the default
/// depends on the video or is the library's own.
nlohmann::ordered_json ValueOf(const CLI::Option& option) {
    if (option.get_expected_max() == 0) return option.as<bool>();
    if (option.get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll) {
        nlohmann::ordered_json all = nlohmann::ordered_json::array();
        for (const std::string& text : option.results()) all.push_back(ValuesOf(text));
        return all;
    }
    const std::string text = option.count() > 0 ? option.results().front() : option.get_default_str();
    if (option.get_type_name() == kFileType) {
        const std::string name = std::filesystem::path(text).filename().string();
        return {{"file", name}, {"sha256", FingerprintOf(text).sha256}};
    }
    return text.empty() ? nlohmann::ordered_json() : ValuesOf(text);
}

/// Whether OpenCV adds in another order, and so rounds differently, where the processor has AVX2.
bool DependsOnInstructions(const std::string& verb) {
    return verb == "flow" || verb == "people";
}

/// All that the results depend on: the options of the verb, in the order of its help, the selection of frames, and the
/// processor's instructions where they count.
nlohmann::ordered_json ResultOptions(const CLI::App& verb, const FrameRange& frames) {
    nlohmann::ordered_json values = nlohmann::ordered_json::object();
    for (const CLI::Option* const option : verb.get_options()) {
        if (option != verb.get_help_ptr()) values[option->get_lnames().front()] = ValueOf(*option);
    }
    values["first"] = frames.first;
    values["end"] = nullptr;
    if (frames.end != INT_MAX) values["end"] = frames.end;
    values["every"] = frames.every;
    if (DependsOnInstructions(verb.get_name())) {
        values["instructions"] = cv::checkHardwareSupport(CV_CPU_AVX2) ? "avx2" : "baseline";
    }
    return values;
}

/// Makes an analyser once, so that options with which no video could be scanned are refused before the first one.
void CheckOptions(const FrameAnalyserFactory& makeAnalyser) {
    try {
        makeAnalyser();
    } catch (const Failure& unusable) {
        throw CLI::ValidationError(unusable.what());
    }
}

int ScanAll(const Options& options, const Scanning& scanning) {
    const std::vector<ArchivedVideo> videos = ReadManifest(options.manifest);
    const auto first = static_cast<std::size_t>(options.shard - 1);
    const auto step = static_cast<std::size_t>(options.shards);
    const std::size_t mine = videos.size() > first ? (videos.size() - first + step - 1) / step : 0;
    std::map<Outcome, int> counts;
    Progress progress("scan", "videos", static_cast<int>(mine));
    for (std::size_t i = first; i < videos.size(); i += step) {
        const Scanned scanned = Scan(videos[i], scanning);
        ++counts[scanned.outcome];
        if (!scanned.trouble.empty()) {
            progress.Clear();
            PrintError(videos[i].name + ": " + scanned.trouble);
        }
        progress.Advance();
    }
    progress.Clear();
    PrintError(fmt::format("{} done, {} skipped, {} bad, {} failed", counts[Outcome::Done], counts[Outcome::Skipped],
                           counts[Outcome::Bad], counts[Outcome::Failed] + counts[Outcome::Bug]));
    if (counts[Outcome::Bug] > 0) return EX_SOFTWARE;
    if (counts[Outcome::Failed] > 0) return EX_TEMPFAIL;
    return counts[Outcome::Bad] > 0 ? EX_DATAERR : kExitFine;
}

void EndAtOnce(int signal) {
    _exit(128 + signal);
}

/// Makes SIGINT and SIGTERM end the command with the exit code that shells give for them. OutputFile takes the signals
/// over while there is an unfinished file, removes it and then calls this handler.
void EndOnSignals() {
    for (const int signal : {SIGINT, SIGTERM}) {
        if (std::signal(signal, EndAtOnce) == SIG_IGN) std::signal(signal, SIG_IGN);
    }
}

int Run(const Options& options, const CLI::App& command, const FrameAnalyserFactory& makeAnalyser) try {
    EndOnSignals();
    cv::setNumThreads(options.threads);
    const nlohmann::ordered_json values = ResultOptions(command, options.frames);
    CheckOptions(makeAnalyser);
    return ScanAll(options, {command.get_name(), values, makeAnalyser, options.frames, options.out});
} catch (const CLI::Error&) {
    throw;
} catch (...) {
    PrintError(CurrentReason());
    return CurrentOutcome() == Outcome::Bug ? EX_SOFTWARE : EX_TEMPFAIL;
}

}  // namespace

Verb AddScan(CLI::App& commandLine, const std::vector<Verb>& verbs) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command = commandLine.add_subcommand(
        "scan",
        "Does what a verb does with each of many videos; what is done is skipped, and processes can share the work");
    command->footer(kFooter);
    command->require_subcommand(0, 1);
    command->add_option("--manifest", options->manifest, "The videos: a folder, a text file with their names, or -")
        ->type_name("DIR|FILE|-")
        ->required();
    command->add_option("--out", options->out, "Folder for the lines of the videos")->type_name("DIR")->required();
    command
        ->add_option_function<std::string>(
            "--shard", [options](const std::string& text) { SetShard(*options, text); },
            "Take every N-th video only, beginning with the I-th")
        ->type_name("I/N");
    AddFrameOptions(*command, options->frames);
    command->add_option("--threads", options->threads, "Threads that OpenCV may use")
        ->type_name("N")
        ->check(Within(1, 1024))
        ->capture_default_str();
    std::vector<std::pair<CLI::App*, FrameAnalyserFactory>> scans;
    for (const Verb& verb : verbs) {
        if (!verb.overFrames) continue;
        CLI::App* const nested =
            AddCommand(*command, *verb.overFrames, fmt::format(kOperationFooter, verb.overFrames->name));
        nested->fallthrough();
        scans.emplace_back(nested, verb.overFrames->addOptions(*nested));
    }
    return {command, [options, scans] {
                for (const auto& [scan, makeAnalyser] : scans) {
                    if (scan->parsed()) return Run(*options, *scan, makeAnalyser);
                }
                throw CLI::ParseError("an operation is required; quarry scan --help lists them",
                                      CLI::ExitCodes::RequiredError);
            }};
}

}  // namespace quarry::command
