#include <fmt/format.h>

#include <Quarry/HostOpenCV.hpp>
#include <array>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "Options.h"
#include "PicturesVerb.h"
#include "Verbs.h"

namespace quarry::command {
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

/// Measures whole pictures, or the face in them.
class Sharpness : public FrameAnalyser {
public:
    explicit Sharpness(const std::optional<FaceEllipse>& face_) : face(face_) {}

    void Analyse(const VideoFrame& frame) override {
        const ImageView pixels = ViewOf(frame.pixels);
        variance = face ? measureFace(pixels, *face) : measure(pixels);
    }

    std::string TableHead() const override { return "    variance"; }
    std::string TableRow() const override { return fmt::format("{:12.2f}", variance); }

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

FaceEllipse FaceOf(const std::string& text) {
    const auto [x, y, halfWidth, halfHeight] = FourWholeNumbers("--face", text, "X,Y,WIDTH,HEIGHT");
    if (halfWidth < 0 || halfHeight < 0) throw CLI::ValidationError("--face", "a half-axis is negative in " + text);
    return {x, y, halfWidth, halfHeight};
}

FrameAnalyserFactory AddOwnOptions(CLI::App& command) {
    const auto face = std::make_shared<std::optional<FaceEllipse>>();
    command
        .add_option_function<std::string>(
            "--face", [face](const std::string& text) { *face = FaceOf(text); },
            "Measure the ellipse with this centre and these half-axes, in pixels")
        ->type_name("X,Y,WIDTH,HEIGHT");
    return [face] { return std::make_unique<Sharpness>(*face); };
}

}  // namespace

Verb AddSharpness(CLI::App& commandLine) {
    const FrameVerb overFrames = {
        "sharpness",
        "How sharp pictures, or faces in them, are: the variance of their Laplacian, in squared grey levels",
        AddOwnOptions};
    const auto options = std::make_shared<PicturesOptions>();
    CLI::App* const command = AddCommand(commandLine, overFrames, kFooter);
    command->add_option("IMAGE", options->pictures, "Pictures to measure")->required();
    const FrameAnalyserFactory makeAnalyser = overFrames.addOptions(*command);
    command->add_flag("--json", options->json, "Write one JSON object per line instead of a table");
    return {command, [options, makeAnalyser] { return RunOverPictures(*options, "sharpness", *makeAnalyser()); },
            overFrames};
}

}  // namespace quarry::command
