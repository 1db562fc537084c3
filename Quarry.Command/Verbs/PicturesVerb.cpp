#include "PicturesVerb.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <optional>

#include "Console.h"
#include "JsonLine.h"
#include "Media.h"
#include "Options.h"
#include "Progress.h"

namespace quarry::command {
namespace {

/// Writes a line per picture to the standard output.
class Output {
public:
    explicit Output(const PicturesOptions& options) : json(options.json) {
        for (const std::string& name : options.pictures) nameWidth = std::max(nameWidth, name.size());
    }

    void Write(const std::string& file, const cv::Mat& picture, const FrameAnalyser& analyser) {
        if (json) {
            nlohmann::ordered_json object = {{"file", file}, {"width", picture.cols}, {"height", picture.rows}};
            object.update(analyser.Fields());
            std::cout << JsonLine(object) << std::flush;
            return;
        }
        if (!hasHead) std::cout << Padded("file") << "   width  height" << analyser.TableHead() << '\n';
        hasHead = true;
        std::cout << Padded(file) << fmt::format("{:8}{:8}", picture.cols, picture.rows) << analyser.TableRow() << '\n'
                  << std::flush;
    }

private:
    std::string Padded(const std::string& name) const { return name + std::string(nameWidth - name.size(), ' '); }

    bool json;
    std::size_t nameWidth = 4;  ///< of the column, in bytes; at least that of its head
    bool hasHead = false;
};

/// Analyses one picture.
/// @return what went wrong, empty when nothing did
std::string Analyse(const std::string& file, FrameAnalyser& analyser, PictureFile* annotated, Output& output,
                    Progress& progress) {
    try {
        const cv::Mat picture = ReadPicture(file);
        analyser.Analyse({0, 0, 0, picture});
        if (annotated != nullptr) annotated->Write(analyser.Annotated());
        progress.MakeWay();
        output.Write(file, picture, analyser);
    } catch (const Failure& failure) {
        return failure.what();
    } catch (...) {
        return file + ": " + CurrentReason();
    }
    return "";
}

}  // namespace

void AddPicturesOptions(CLI::App& command, PicturesOptions& options, const std::string& read,
                        const std::string& shown) {
    command.add_option("IMAGE", options.pictures, read)->required();
    command.add_option("--out", options.annotated, "Write the picture, a single one, with " + shown + " here")
        ->check(EndsAsPicture());
    command.add_flag("--json", options.json, "Write one JSON object per picture and line instead of a table");
}

void CheckAnnotated(const PicturesOptions& options) {
    if (options.annotated.empty()) return;
    if (options.pictures.size() > 1) {
        throw CLI::ValidationError("--out",
                                   "goes with one picture, not with " + std::to_string(options.pictures.size()));
    }
    CheckIsNotAnInput("--out", options.annotated, options.pictures);
}

int RunOverPictures(const PicturesOptions& options, const std::string& label, FrameAnalyser& analyser) {
    std::optional<PictureFile> annotated;
    if (!options.annotated.empty()) annotated.emplace(options.annotated);
    Output output(options);
    Progress progress(label, "pictures", static_cast<int>(options.pictures.size()));
    int exitCode = kExitFine;
    for (const std::string& file : options.pictures) {
        const std::string trouble = Analyse(file, analyser, annotated ? &*annotated : nullptr, output, progress);
        if (!trouble.empty()) {
            progress.Clear();
            PrintError(trouble);
            exitCode = kExitFailure;
        }
        progress.Advance();
    }
    return exitCode;
}

}  // namespace quarry::command
