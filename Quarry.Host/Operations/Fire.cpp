#include "Operations/Fire.h"

#include <opencv2/imgproc.hpp>

#include "Operations/Call.h"
#include "Timing.h"

namespace quarry::host {

FireFinder::FireFinder() : handle(Create(CreateCVPixelwiseFireProcessor, ProcessOptions{})) {}

FireView FireFinder::Find(const cv::Mat& picture) {
    const Stopwatch watch;
    const Processed<FireOutputData> result(handle, FireInputData{0, ImageOf(picture)});
    const double milliseconds = watch.Milliseconds();
    const cv::Mat mask = PictureOf(*result->FireMask);
    const double share = cv::countNonZero(mask) / static_cast<double>(mask.total());
    return {mask, share, cv::boundingRect(mask), milliseconds};
}

}  // namespace quarry::host
