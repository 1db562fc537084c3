#include "Detection.h"

#include <Quarry/HostOpenCV.hpp>
#include <stdexcept>

#include "Console.h"
#include "Media.h"
#include "PixelRegions.h"
#include "Stopwatch.h"

namespace quarry::command {

CascadeDetector OpenDetector(const CascadeDetector::Options& options) try {
    CheckIsFile(options.modelPath);
    CascadeDetector detector(options);
    // The library does not say that it could not read the file until it searches a picture.
    constexpr int kSmallPicture = 64;
    Search(detector, cv::Mat(kSmallPicture, kSmallPicture, CV_8UC3, cv::Scalar::all(0)));
    return detector;
} catch (const cv::Exception&) {
    throw Failure(options.modelPath + ": not a cascade model that can be read");
} catch (const std::invalid_argument&) {
    throw Failure(options.modelPath + ": not a file that can be read");
}

DetectionResult Search(CascadeDetector& detector, const cv::Mat& picture, const RelRect& area) {
    const cv::Rect searched = PixelsOf(area, picture.size());
    if (searched.empty()) throw std::invalid_argument("the area is less than a pixel wide or high");
    const ImageView view = ViewOf(picture);
    const Stopwatch watch;
    const Detections found = detector(view, area);
    const double milliseconds = watch.Milliseconds();
    return {RectanglesOf(found, searched), milliseconds};
}

}  // namespace quarry::command
