/// @file
/// Operations that find objects and people.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <system_error>

#include "Quarry/Host/Operation.hpp"
#include "Quarry/Host/Results.hpp"

namespace quarry {

using Detections = ListResult<ClassificationResult>;  ///< elements of type Response

namespace detail {

/// A limit of sizes. The library truncates it, or its product with the frame's height, to 32 bits.
/// @param most  above all sizes that there are: larger limits, infinity among them, change nothing
inline double SizeLimit(const char* what, double limit, double most) {
    if (std::isnan(limit)) Refuse(std::string(what) + " is nan; a number, or infinity, is needed");
    return std::min(limit, most);
}

}  // namespace detail

/// How thoroughly a CascadeDetector looks.
enum class CascadeMode : uint32_t {
    Careful = 0,  ///< six overlapping hits make a detection
    Eager = 1,    ///< two overlapping hits make a detection
    Biggest = 2   ///< three overlapping hits; with models of OpenCV 1, only the biggest object
};

/// Finds objects of one kind with a cascade of boosted features.
class CascadeDetector : public detail::Processor<CreateCVCascadeClassifier, ClassificationData, ClassificationResult> {
public:
    struct Options {
        std::string modelPath;  ///< an OpenCV cascade file
        double minSide = -1;    ///< smallest side of an object in pixels; negative: no limit
        double maxSide = -1;    ///< largest side of an object in pixels; negative or infinity: no limit
        CascadeMode mode = CascadeMode::Careful;
    };

    /// @throws std::invalid_argument  `modelPath` is empty or names no readable file, or a limit of the side is not a
    ///                                number
    /// @throws cv::Exception          OpenCV cannot parse the file
    explicit CascadeDetector(const Options& options)
        : Processor({0, 0.0F,
                     detail::SizeLimit("quarry::CascadeDetector::Options.minSide", options.minSide, kMostPixels),
                     detail::SizeLimit("quarry::CascadeDetector::Options.maxSide", options.maxSide, kMostPixels),
                     static_cast<uint32_t>(options.mode), Readable(options.modelPath).c_str()}) {}

    /// @param area  the area to search, relative to the frame
    /// @return rectangles as fractions of the **area**, not of the frame; weights are not set
    /// @throws cv::Exception  the area does not lie inside the frame or has no pixels, or the file holds no cascade
    Detections operator()(const ImageArgument& frame, const RelRect& area = kWholeFrame) {
        return {handle(), ClassificationData{0, frame.record(), 0, {}, 1, &area}};
    }

private:
    static constexpr double kMostPixels = std::numeric_limits<int32_t>::max();

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
        double minHeight = 0;      ///< of a person, as a fraction of the frame's height; at least 128 pixels count
        double maxHeight = 1;      ///< of a person, as a fraction of the frame's height; infinity: no limit
    };

    PeopleDetector() : PeopleDetector(Options{}) {}
    /// @throws std::invalid_argument  `sensitivity` is not in 0..1, or a limit of the height is not a number
    explicit PeopleDetector(const Options& options)
        : Processor({0, detail::Fraction("quarry::PeopleDetector::Options.sensitivity", options.sensitivity),
                     detail::SizeLimit("quarry::PeopleDetector::Options.minHeight", options.minHeight, kMostFrames),
                     detail::SizeLimit("quarry::PeopleDetector::Options.maxHeight", options.maxHeight, kMostFrames), 0,
                     nullptr}) {}

    /// Searches the whole frame.
    /// @return rectangles relative to the frame
    Detections operator()(const ImageArgument& frame) {
        return {handle(), ClassificationData{0, frame.record(), 1, {}, 0, nullptr}};
    }

    /// Searches areas of the frame, one by one.
    /// @param areas  relative to the frame; an area no wider than 64 pixels or no higher than `minHeight` is skipped
    /// @return rectangles relative to the frame
    /// @throws cv::Exception  an area that is searched does not lie inside the frame
    Detections operator()(const ImageArgument& frame, Span<RelRect> areas) {
        const int32_t count = detail::CountOf("quarry::PeopleDetector: areas", areas.size());
        return {handle(), ClassificationData{0, frame.record(), 0, {}, count, areas.data()}};
    }

private:
    /// A detection may be a little higher than the frame, since it is scaled in whole pixels.
    static constexpr double kMostFrames = 2;
};

}  // namespace quarry
