/// @file
/// The `quarry` command: the library's operations on pictures and videos.
#include <Quarry/Version.h>
#include <fcntl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <iostream>
#include <opencv2/core/utils/logger.hpp>
#include <string>
#include <vector>

#include "Console.h"
#include "NearestNames.h"
#include "Verbs.h"

namespace quarry::command {
namespace {

constexpr const char* kFooter = R"(Examples:
  quarry sharpness *.jpg
  quarry background street.avi --out street-marked.avi
  quarry track street.avi --rect 310,140,40,90 --out street-tracked.avi
  quarry scan sharpness --manifest videos --out lines --shard 2/16
  quarry describe mosse-tracker

`quarry VERB --help` tells more about a verb.
Exit codes: 0 fine, 1 something failed, 2 wrong usage, 130 interrupted by Ctrl-C (what was
written until then is complete); `quarry scan --help` tells those of scan. Each error is one
line on stderr.)";

std::string WrongUsage(const CLI::ParseError& error, const CLI::App& app) {
    const std::vector<std::string> unexpected = app.remaining();
    const bool isVerb = app.get_subcommands().empty() && !unexpected.empty() && unexpected[0].rfind('-', 0) != 0;
    if (!isVerb) return error.what();
    std::vector<std::string> near;
    for (const CLI::App* const verb : app.get_subcommands(nullptr)) {
        if (IsNear(unexpected[0], verb->get_name())) near.push_back(verb->get_name());
    }
    return "there is no verb " + unexpected[0] + (near.empty() ? "; quarry --help lists them" : DidYouMean(near));
}

int RunChosen(const std::vector<Verb>& verbs) {
    for (const Verb& verb : verbs) {
        if (!verb.command->parsed()) continue;
        const int exitCode = verb.run();
        if (!std::cout.flush()) throw Failure("standard output: cannot be written");
        return exitCode;
    }
    throw CLI::ParseError("a verb is required; quarry --help lists them", CLI::ExitCodes::RequiredError);
}

/// Opens the standard streams that are closed. Otherwise a video that is opened next would get the number of one of
/// them, and would be closed with it when stderr is silenced.
void OccupyStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // The descriptor is opened in the other direction, so that reading from it or writing to it still fails as it
        // does with a closed one.
        if (fcntl(stream, F_GETFD) < 0) open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
}

int Main(int argc, char** argv) {
    OccupyStandardStreams();
    cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);
    CLI::App app{"Quarry: computer vision on pictures and videos", "quarry"};
    app.set_version_flag("--version", "quarry " QUARRY_VERSION);
    app.require_subcommand(0, 1);
    app.footer(kFooter);
    const std::vector<Verb> verbs = AddVerbs(app);
    try {
        app.parse(argc, argv);
        return RunChosen(verbs);
    } catch (const CLI::Success& helpOrVersion) {
        return app.exit(helpOrVersion);
    } catch (const CLI::ParseError& wrongUsage) {
        PrintError(WrongUsage(wrongUsage, app));
        return kExitUsage;
    } catch (...) {
        PrintError(CurrentReason());
        return kExitFailure;
    }
}

}  // namespace
}  // namespace quarry::command

// Only a lack of memory for the command line or for the error line itself escapes, and then the command must end.
// NOLINTNEXTLINE(bugprone-exception-escape)
int main(int argc, char** argv) {
    return quarry::command::Main(argc, argv);
}
