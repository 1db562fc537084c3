#include <algorithm>
#include <iomanip>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "Console.h"
#include "Library.h"
#include "Media.h"
#include "Progress.h"
#include "Verbs/Verbs.h"

namespace quarry::host {
namespace {

struct Options {
    std::vector<std::string> pictures;
    bool json = false;
};

/// One line per picture.
class Output {
public:
    explicit Output(const Options& options) : json(options.json), nameWidth(4) {
        for (const std::string& name : options.pictures) nameWidth = std::max(nameWidth, static_cast<int>(name.size()));
    }

    void Write(const std::string& file, const cv::Mat& picture, float variance) {
        if (json) {
            const nlohmann::ordered_json line = {
                {"file", file}, {"width", picture.cols}, {"height", picture.rows}, {"variance", variance}};
            std::cout << line.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) << std::endl;
            return;
        }
        if (!headed) std::cout << Row("file", "width", "height", "variance");
        headed = true;
        std::ostringstream value;
        value << std::fixed << std::setprecision(2) << variance;
        std::cout << Row(file, std::to_string(picture.cols), std::to_string(picture.rows), value.str()) << std::flush;
    }

private:
    std::string Row(const std::string& file, const std::string& width, const std::string& height,
                    const std::string& variance) const {
        std::ostringstream row;
        row << std::left << std::setw(nameWidth) << file << std::right << std::setw(8) << width << std::setw(8)
            << height << std::setw(12) << variance << '\n';
        return row.str();
    }

    bool json;
    int nameWidth;
    bool headed = false;
};

int Run(const Options& options) {
    SharpnessMeter meter;
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

}  // namespace

Verb AddSharpness(CLI::App& commandLine) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command = commandLine.add_subcommand(
        "sharpness", "How sharp pictures are: the variance of their Laplacian, in squared grey levels");
    command->add_option("IMAGE", options->pictures, "Pictures to measure")->required();
    command->add_flag("--json", options->json, "Write one JSON object per line instead of a table");
    return {command, [options] { return Run(*options); }};
}

}  // namespace quarry::host
