/// @file
/// Operations that find objects and people.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include "Quarry/Host/Operation.hpp"
#include "Quarry/Host/Results.hpp"

namespace quarry {

using Detections = ListResult<ClassificationResult>;  ///< of Response

/// How thoroughly a CascadeDetector looks.
enum class CascadeMode : uint32_t {
    Careful = 0,  ///< six overlapping hits make a detection
    Eager = 1,    ///< two overlapping hits make a detection
    Biggest = 2   ///< three; with models of OpenCV 1, the biggest object alone
};

/// Finds objects of one kind with a cascade of boosted features.
class CascadeDetector : public detail::Processor<CreateCVCascadeClassifier, ClassificationData, ClassificationResult> {
public:
    struct Options {
        std::string modelPath;  ///< an OpenCV cascade file
        double minSide = -1;    ///< smallest side of an object in pixels; negative: no limit
        double maxSide = -1;    ///< largest side of an object in pixels; negative: no limit
        CascadeMode mode = CascadeMode::Careful;
    };

    /// @throws std::invalid_argument  there is no file that can be read at `modelPath`, or it is empty
    /// @throws cv::Exception          OpenCV cannot parse the file
    explicit CascadeDetector(const Options& options)
        : Processor({0, 0.0F, options.minSide, options.maxSide, static_cast<uint32_t>(options.mode),
                     Readable(options.modelPath).c_str()}) {}

    /// @param area  where to look, relative to the frame
    /// @return rectangles as fractions of the **area**, not of the frame; weights are not set
    /// @throws cv::Exception  the area does not lie inside the frame or has no pixels, or the file holds no cascade
    Detections operator()(const ImageArgument& frame, const RelRect& area = kWholeFrame) {
        return {handle(), ClassificationData{0, frame.record(), 0, {}, 1, &area}};
    }

private:
    static const std::string& Readable(const std::string& path) {
        constexpr const char* kField = "quarry::CascadeDetector::Options.modelPath";
        if (path.empty()) detail::Refuse(std::string(kField) + " is empty; the path of a cascade file is needed");
        std::error_code ignored;
        if (std::filesystem::is_directory(path, ignored) || !std::ifstream(path).is_open()) {
            detail::Refuse(std::string(kField) + " is \"" + path + "\"; no file can be read there");
        }
        return path;
    }
};

/// Finds standing people with histograms of oriented gradients.
class PeopleDetector
    : public detail::Processor<CreateCVHogSvmHumanClassifier, ClassificationData, ClassificationResult> {
public:
    struct Options {
        float sensitivity = 0.5F;  ///< 0..1, higher searches finer and slower
        double minHeight = 0;      ///< of a person, as a fraction of the frame's height; 128 pixels at least
        double maxHeight = 1;      ///< of a person, as a fraction of the frame's height
    };

    PeopleDetector() : PeopleDetector(Options{}) {}
    /// @throws std::invalid_argument  `sensitivity` is not in 0..1
    explicit PeopleDetector(const Options& options)
        : Processor({0, detail::Fraction("quarry::PeopleDetector::Options.sensitivity", options.sensitivity),
                     options.minHeight, options.maxHeight, 0, nullptr}) {}

    /// Searches the whole frame.
    /// @return rectangles relative to the frame
    Detections operator()(const ImageArgument& frame) {
        return {handle(), ClassificationData{0, frame.record(), 1, {}, 0, nullptr}};
    }

    /// Searches some areas of the frame, one by one.
    /// @param areas  relative to the frame; one no wider than 64 pixels or no higher than `minHeight` is not searched
    /// @return rectangles relative to the frame
    /// @throws cv::Exception  an area that is searched does not lie inside the frame
    Detections operator()(const ImageArgument& frame, Span<RelRect> areas) {
        const int32_t count = detail::CountOf("quarry::PeopleDetector: areas", areas.size());
        return {handle(), ClassificationData{0, frame.record(), 0, {}, count, areas.data()}};
    }
};

}  // namespace quarry
