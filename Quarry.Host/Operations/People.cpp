#include "Operations/People.h"

#include <cstdint>

#include "Operations/Call.h"
#include "Timing.h"

namespace quarry::host {

std::vector<cv::Rect> PlacesOf(const std::vector<Person>& people) {
    std::vector<cv::Rect> places;
    places.reserve(people.size());
    for (const Person& person : people) places.push_back(person.place);
    return places;
}

PeopleFinder::PeopleFinder(const PeopleSettings& settings)
    : handle(Create(CreateCVHogSvmHumanClassifier, ClassificationOptions{0, settings.sensitivity, settings.minHeight,
                                                                         settings.maxHeight, 0, nullptr})) {}

PeopleView PeopleFinder::Find(const cv::Mat& frame, const std::vector<cv::Rect2f>& areas) {
    std::vector<RelRect> relative;
    relative.reserve(areas.size());
    for (const cv::Rect2f& area : areas) relative.push_back({area.x, area.y, area.width, area.height});
    const uint8_t everywhere = areas.empty() ? 1 : 0;
    const Stopwatch watch;
    const Processed<ClassificationResult> result(
        handle,
        ClassificationData{0, ImageOf(frame), everywhere, {}, static_cast<int32_t>(relative.size()), relative.data()});
    PeopleView view{{}, watch.Milliseconds()};
    for (int i = 0; i < result->Count; ++i) {
        const Response& response = result->Responses[i];
        view.people.push_back({PixelsOf(response.Rect, {{0, 0}, frame.size()}), response.Weight});
    }
    return view;
}

}  // namespace quarry::host
