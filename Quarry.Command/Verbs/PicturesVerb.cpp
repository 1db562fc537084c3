#include "PicturesVerb.h"

#include <algorithm>
#include <iostream>
#include <optional>

#include "Console.h"
#include "Media.h"
#include "Options.h"
#include "Progress.h"

namespace quarry::command {
namespace {

/// One line per picture.
class Output {
public:
    explicit Output(const PictureOptions& options) : json(options.json) {
        for (const std::string& name : options.pictures) nameWidth = std::max(nameWidth, static_cast<int>(name.size()));
    }

    void Write(const std::string& file, const cv::Mat& picture, const FrameByFrame& verb) {
        if (json) {
            nlohmann::ordered_json object = {{"file", file}, {"width", picture.cols}, {"height", picture.rows}};
            object.update(verb.Fields());
            std::cout << JsonLine(object) << std::flush;
            return;
        }
        if (!headed)
            std::cout << Format("%-*s%8s%8s", nameWidth, "file", "width", "height") << verb.TableHead() << '\n';
        headed = true;
        std::cout << Format("%-*s%8d%8d", nameWidth, file.c_str(), picture.cols, picture.rows) << verb.TableRow()
                  << '\n'
                  << std::flush;
    }

private:
    bool json;
    int nameWidth = 4;  ///< at least that of the heading
    bool headed = false;
};

/// What went wrong, empty when nothing did.
std::string TakeOne(const std::string& file, FrameByFrame& verb, PictureFile* annotated, Output& output,
                    Progress& progress) {
    try {
        const cv::Mat picture = ReadPicture(file);
        verb.Take({0, 0, 0, picture});
        if (annotated != nullptr) annotated->Write(verb.Annotated());
        progress.MakeWay();
        output.Write(file, picture, verb);
    } catch (const Failure& failure) {
        return failure.what();
    } catch (...) {
        return file + ": " + CurrentReason();
    }
    return "";
}

}  // namespace

void AddPictureOptions(CLI::App& command, PictureOptions& options, const std::string& read, const std::string& shown) {
    command.add_option("IMAGE", options.pictures, read)->required();
    command.add_option("--out", options.annotated, "Write the picture, a single one, with " + shown + " here")
        ->check(EndsAsPicture());
    command.add_flag("--json", options.json, "Write one JSON object per picture and line instead of a table");
}

void CheckAnnotated(const PictureOptions& options) {
    if (options.annotated.empty()) return;
    if (options.pictures.size() > 1) {
        throw CLI::ValidationError("--out",
                                   "goes with one picture, not with " + std::to_string(options.pictures.size()));
    }
    CheckIsNotAnInput("--out", options.annotated, options.pictures);
}

int RunOverPictures(const PictureOptions& options, const std::string& label, FrameByFrame& verb) {
    std::optional<PictureFile> annotated;
    if (!options.annotated.empty()) annotated.emplace(options.annotated);
    Output output(options);
    Progress progress(label, "pictures", static_cast<int>(options.pictures.size()));
    int exitCode = kExitFine;
    for (const std::string& file : options.pictures) {
        const std::string trouble = TakeOne(file, verb, annotated ? &*annotated : nullptr, output, progress);
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
