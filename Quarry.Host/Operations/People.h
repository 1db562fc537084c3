#pragma once

#include <opencv2/core.hpp>
#include <vector>

#include "Operations/Handle.h"

namespace quarry::host {

struct PeopleSettings {
    float sensitivity = 0.4F;  ///< 0..1, higher searches finer and slower
    double minHeight = 0;      ///< of a person, as a share of the frame's height
    double maxHeight = 1;      ///< the same
};

struct Person {
    cv::Rect place;  ///< in the frame, pixels; with a margin
    double weight;   ///< how sure, from 0
};

struct PeopleView {
    std::vector<Person> people;
    double milliseconds;  ///< that the library took for this frame
};

/// Where they are.
std::vector<cv::Rect> PlacesOf(const std::vector<Person>& people);

/// Finds standing people.
class PeopleFinder {
public:
    explicit PeopleFinder(const PeopleSettings& settings);

    /// Searches a packed 8-bit B, G, R frame.
    /// @param areas  where, in fractions of width and height; none: everywhere
    PeopleView Find(const cv::Mat& frame, const std::vector<cv::Rect2f>& areas = {});

private:
    Handle handle;
};

}  // namespace quarry::host
