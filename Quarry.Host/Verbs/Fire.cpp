#include "Operations/Fire.h"

#include <memory>
#include <string>

#include "Annotation.h"
#include "Verbs/Options.h"
#include "Verbs/OverPictures.h"
#include "Verbs/Verbs.h"

namespace quarry::host {
namespace {

constexpr const char* kFooter =
    R"(A pixel is flame when its colour is: bright orange, yellow or nearly white. Of all these pixels
the largest connected region is kept, without its holes, and grown by up to 10 pixels. Per
picture it gives the share of the pixels that are in it and the rectangle around it,
X,Y,WIDTH,HEIGHT in pixels. Colour alone decides: an orange or a pale wall counts too.

Example:
  quarry fire stove.jpg --out stove-outlined.jpg)";

class Fire : public PictureByPicture {
public:
    void Take(const cv::Mat& picture) override {
        last = picture;
        view = finder.Find(picture);
    }

    std::string TableHead() const override { return "   flame %        ms  rectangle"; }

    std::string TableRow() const override {
        const cv::Rect& rect = view.bounds;
        const std::string row = Format("%10.3f%10.1f", view.share * 100, view.milliseconds);
        return rect.empty() ? row : row + Format("  %d,%d,%d,%d", rect.x, rect.y, rect.width, rect.height);
    }

    nlohmann::ordered_json Fields() const override {
        const nlohmann::ordered_json rectangle = view.bounds.empty() ? nullptr : JsonOf(view.bounds);
        return {{"flame", view.share}, {"rectangle", rectangle}, {"milliseconds", view.milliseconds}};
    }

    cv::Mat Annotated() const override { return OutlineRegion(last, view.mask); }

private:
    FireFinder finder;
    cv::Mat last;
    FireView view{};
};

int Run(const PictureOptions& options) {
    CheckAnnotated(options);
    Fire verb;
    return RunOverPictures(options, "fire", verb);
}

}  // namespace

Verb AddFire(CLI::App& commandLine) {
    const auto options = std::make_shared<PictureOptions>();
    CLI::App* const command =
        commandLine.add_subcommand("fire", "Finds the region of pictures that has the colours of a flame");
    command->footer(kFooter);
    AddPictureOptions(*command, *options, "Pictures to search", "the region outlined");
    return {command, [options] { return Run(*options); }};
}

}  // namespace quarry::host
