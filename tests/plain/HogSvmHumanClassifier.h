#pragma once

#include <opencv2/objdetect.hpp>
#include <vector>

/// People in a frame, in plain steps.
namespace quarry::plain {

/// How the detector searches, and the heights of a person that are wanted.
struct PeopleSearch {
    int stride;
    double scale;
    int minHeight;
    int maxHeight;
};

struct FoundPerson {
    cv::Rect rect;  ///< in pixels of the area
    double weight;
};

/// Another rectangle covers the whole of each of these.
inline std::vector<bool> Contained(const std::vector<cv::Rect>& rectangles) {
    std::vector<bool> contained(rectangles.size());
    for (std::size_t j = 0; j < rectangles.size(); ++j) {
        for (std::size_t k = 0; k < rectangles.size(); ++k) {
            if (k != j && (rectangles[j] & rectangles[k]) == rectangles[j]) contained[j] = true;
        }
    }
    return contained;
}

inline cv::HOGDescriptor PeopleDescriptor() {
    cv::HOGDescriptor hog;
    hog.setSVMDetector(cv::HOGDescriptor::getDefaultPeopleDetector());
    return hog;
}

inline std::vector<FoundPerson> People(const cv::HOGDescriptor& hog, const cv::Mat& area, const PeopleSearch& search) {
    std::vector<cv::Rect> found;
    std::vector<double> weights;
    hog.detectMultiScale(area, found, weights, 0.0, {search.stride, search.stride}, {}, search.scale, 2.0, false);
    const std::vector<bool> contained = Contained(found);
    std::vector<FoundPerson> people;
    for (std::size_t i = 0; i < found.size(); ++i) {
        const bool hasHeight = found[i].height >= search.minHeight && found[i].height <= search.maxHeight;
        if (hasHeight && weights[i] >= 0 && !contained[i]) people.push_back({found[i], weights[i]});
    }
    return people;
}

}  // namespace quarry::plain
