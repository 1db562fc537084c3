#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "Console.h"
#include "Demo/Footage.h"
#include "Demo/Page.h"
#include "Demo/Section.h"
#include "Media.h"
#include "Verbs/Verbs.h"

namespace quarry::command {
namespace {

constexpr const char* kFooter = R"(Without footage it draws scenes of its own. The page is one file, pictures included.

Example:
  quarry demo --media media --out demo)";

struct Options {
    std::string media = "media";
    std::string out = "demo";
    std::string faceModel = "/usr/share/opencv4/haarcascades/haarcascade_frontalface_alt.xml";  ///< as Debian has it
};

void MakeFolder(const std::filesystem::path& folder) {
    std::error_code refused;
    std::filesystem::create_directories(folder, refused);
    if (refused) throw Failure(folder.string() + ": the folder cannot be made: " + refused.message());
}

std::string RunAllOperations(const Options& options) {
    const Footage footage = OpenFootage(options.media, options.faceModel);
    std::vector<Section> sections;
#define QUARRY_RUN_SECTION(Name) sections.push_back(Name##Section(footage));
    QUARRY_DEMO_SECTIONS(QUARRY_RUN_SECTION)
#undef QUARRY_RUN_SECTION
    return PageHtml(footage, sections);
}

int Run(const Options& options) {
    const std::filesystem::path path = std::filesystem::path(options.out) / "report.html";
    MakeFolder(options.out);
    TextFile file(path);
    file.Write(RunAllOperations(options));
    std::cout << path.string() << '\n';
    return kExitFine;
}

}  // namespace

Verb AddDemo(CLI::App& commandLine) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command = commandLine.add_subcommand(
        "demo", "Runs every operation on real footage and writes one page that shows what came out");
    command->footer(kFooter);
    command->add_option("--media", options->media, "Folder with vtest.avi and pictures")->capture_default_str();
    command->add_option("--out", options->out, "Folder to write report.html to")->capture_default_str();
    command->add_option("--cascade", options->faceModel, "Model of faces for the detector; without it, it does not run")
        ->capture_default_str();
    return {command, [options] { return Run(*options); }};
}

}  // namespace quarry::command
