#include <Quarry/HostOpenCV.hpp>
#include <array>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "Verbs/Options.h"
#include "Verbs/OverPictures.h"
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
    PictureOptions pictures;
    std::optional<FaceEllipse> face;
};

/// Measures whole pictures, or the face in them.
class Sharpness : public PictureByPicture {
public:
    explicit Sharpness(const std::optional<FaceEllipse>& face_) : face(face_) {}

    void Take(const cv::Mat& picture) override {
        variance = face ? measureFace(ViewOf(picture), *face) : measure(ViewOf(picture));
    }

    std::string TableHead() const override { return Format("%12s", "variance"); }
    std::string TableRow() const override { return Format("%12.2f", static_cast<double>(variance)); }

    nlohmann::ordered_json Fields() const override {
        nlohmann::ordered_json fields;
        if (face) fields["face"] = {face->centerX, face->centerY, face->halfWidth, face->halfHeight};
        fields["variance"] = variance;
        return fields;
    }

private:
    std::optional<FaceEllipse> face;
    VarianceOfLaplacian measure;
    FaceVarianceOfLaplacian measureFace;
    float variance = 0;
};

int Run(const Options& options) {
    Sharpness verb(options.face);
    return RunOverPictures(options.pictures, "sharpness", verb);
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
    command->add_option("IMAGE", options->pictures.pictures, "Pictures to measure")->required();
    command
        ->add_option_function<std::string>(
            "--face", [options](const std::string& text) { options->face = FaceOf(text); },
            "Measure the ellipse with this centre and these half-axes, in pixels")
        ->type_name("X,Y,WIDTH,HEIGHT");
    command->add_flag("--json", options->pictures.json, "Write one JSON object per line instead of a table");
    return {command, [options] { return Run(*options); }};
}

}  // namespace quarry::host
