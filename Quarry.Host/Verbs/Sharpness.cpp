#include "Operations/Sharpness.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "Console.h"
#include "Media.h"
#include "Progress.h"
#include "Verbs/Options.h"
#include "Verbs/Verbs.h"

namespace quarry::host {
namespace {

constexpr const char* kFooter =
    R"(The number is the variance of the Laplacian of the grey picture: a blurred photograph has
some tens, a sharp one some hundreds or thousands. Compare pictures of the same scene and
size only.

With --face everything outside an ellipse counts as black: X,Y is its centre, WIDTH and
HEIGHT are its half-axes, all in pixels. The number still is taken over the whole picture,
so the size of the ellipse counts. A centre left of or above the picture is written
--face=-20,40,60,80.

Examples:
  quarry sharpness *.jpg
  quarry sharpness --face 260,270,60,85 portrait.jpg --json)";

struct Options {
    std::vector<std::string> pictures;
    std::optional<FaceEllipse> face;
    bool json = false;
};

/// Measures whole pictures, or the face in them.
class Meter {
public:
    explicit Meter(const std::optional<FaceEllipse>& face_) : face(face_) {}

    float Measure(const cv::Mat& picture) { return face ? faceMeter.Measure(picture, *face) : meter.Measure(picture); }

private:
    std::optional<FaceEllipse> face;
    SharpnessMeter meter;
    FaceSharpnessMeter faceMeter;
};

/// One line per picture.
class Output {
public:
    explicit Output(const Options& options) : json(options.json), face(options.face) {
        for (const std::string& name : options.pictures) nameWidth = std::max(nameWidth, static_cast<int>(name.size()));
    }

    void Write(const std::string& file, const cv::Mat& picture, float variance) {
        if (json) {
            nlohmann::ordered_json object = {{"file", file}, {"width", picture.cols}, {"height", picture.rows}};
            if (face) object["face"] = {face->x, face->y, face->halfWidth, face->halfHeight};
            object["variance"] = variance;
            std::cout << JsonLine(object) << std::flush;
            return;
        }
        if (!headed) std::cout << Format("%-*s%8s%8s%12s\n", nameWidth, "file", "width", "height", "variance");
        headed = true;
        std::cout << Format("%-*s%8d%8d%12.2f\n", nameWidth, file.c_str(), picture.cols, picture.rows,
                            static_cast<double>(variance))
                  << std::flush;
    }

private:
    bool json;
    std::optional<FaceEllipse> face;
    int nameWidth = 4;  ///< at least that of the heading
    bool headed = false;
};

int Run(const Options& options) {
    Meter meter(options.face);
    Output output(options);
    Progress progress("sharpness", "pictures", static_cast<int>(options.pictures.size()));
    int exitCode = kExitFine;
    for (const std::string& file : options.pictures) {
        std::string trouble;
        try {
            const cv::Mat picture = ReadPicture(file);
            const float variance = meter.Measure(picture);
            progress.MakeWay();
            output.Write(file, picture, variance);
        } catch (const Failure& failure) {
            trouble = failure.what();
        } catch (...) {
            trouble = file + ": " + CurrentReason();
        }
        if (!trouble.empty()) {
            progress.Clear();
            PrintError(trouble);
            exitCode = kExitFailure;
        }
        progress.Advance();
    }
    return exitCode;
}

FaceEllipse FaceOf(const std::string& text) {
    const auto [x, y, halfWidth, halfHeight] = FourWholeNumbers("--face", text, "X,Y,WIDTH,HEIGHT");
    if (halfWidth < 0 || halfHeight < 0) throw CLI::ValidationError("--face", "a half-axis is negative in " + text);
    return {x, y, halfWidth, halfHeight};
}

}  // namespace

Verb AddSharpness(CLI::App& commandLine) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command = commandLine.add_subcommand(
        "sharpness",
        "How sharp pictures, or faces in them, are: the variance of their Laplacian, in squared grey levels");
    command->footer(kFooter);
    command->add_option("IMAGE", options->pictures, "Pictures to measure")->required();
    command
        ->add_option_function<std::string>(
            "--face", [options](const std::string& text) { options->face = FaceOf(text); },
            "Measure the ellipse with this centre and these half-axes, in pixels")
        ->type_name("X,Y,WIDTH,HEIGHT");
    command->add_flag("--json", options->json, "Write one JSON object per line instead of a table");
    return {command, [options] { return Run(*options); }};
}

}  // namespace quarry::host
