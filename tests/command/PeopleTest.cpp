#include <algorithm>
#include <opencv2/objdetect.hpp>
#include <utility>

#include "command/CommandFixture.h"
#include "support/Footage.h"

using namespace quarry::test;

namespace {

constexpr int kFrames = 4;
constexpr int kApart = 15;  // frames of the footage between those of the clip

struct Search {
    int stride;
    double scale;
    int minHeight = 128;
    int maxHeight = 100'000;
};

/// From left to right: the detector's threads come upon them in no fixed order.
json Sorted(json people) {
    std::sort(people.begin(), people.end(), [](const json& left, const json& right) {
        return std::pair(left.at("x"), left.at("y")) < std::pair(right.at("x"), right.at("y"));
    });
    return people;
}

/// What the clip's frame shows, with those dropped that lie within another one or are too low or too high.
json Expected(const cv::Mat& frame, const cv::Rect& area, const Search& search) {
    cv::HOGDescriptor descriptor;
    descriptor.setSVMDetector(cv::HOGDescriptor::getDefaultPeopleDetector());
    std::vector<cv::Rect> found;
    std::vector<double> weights;
    descriptor.detectMultiScale(frame(area), found, weights, 0, {search.stride, search.stride}, {}, search.scale, 2);
    json people = json::array();
    for (std::size_t i = 0; i < found.size(); ++i) {
        const cv::Rect& rect = found[i];
        const auto holders =
            std::count_if(found.begin(), found.end(), [&](const cv::Rect& other) { return (other & rect) == rect; });
        if (holders > 1 || rect.height < search.minHeight || rect.height > search.maxHeight) continue;
        people.push_back({{"x", rect.x + area.x},
                          {"y", rect.y + area.y},
                          {"width", rect.width},
                          {"height", rect.height},
                          {"weight", weights[i]}});
    }
    return people;
}

class PeopleCommand : public QuarryCommand {
protected:
    /// Some frames of the footage. They are read back, because the clip's codec changes them a little.
    void SetUp() override {
        QuarryCommand::SetUp();
        const std::vector<cv::Mat> footage = PedestrianFrames(kFrames * kApart);
        if (footage.empty()) GTEST_SKIP() << "no footage";
        cv::VideoWriter writer((folder / "clip.avi").string(), cv::VideoWriter::fourcc('M', 'J', 'P', 'G'), 10,
                               footage[0].size());
        for (std::size_t i = 0; i < footage.size(); i += kApart) writer.write(footage[i]);
        writer.release();
        frames = FramesOf(folder / "clip.avi");
        ASSERT_EQ(frames.size(), static_cast<std::size_t>(kFrames));
    }

    std::vector<json> People(const Arguments& more = {}) const {
        return RunJson(Arguments{"people", "clip.avi"} + more);
    }

    cv::Rect whole() const { return {{0, 0}, frames[0].size()}; }

    /// @return how many there are
    std::size_t ExpectPeople(const std::vector<json>& lines, const Search& search) const {
        std::size_t count = 0;
        EXPECT_EQ(lines.size(), frames.size());
        for (std::size_t i = 0; i < std::min(lines.size(), frames.size()); ++i) {
            EXPECT_EQ(Sorted(lines[i].at("people")), Sorted(Expected(frames[i], whole(), search))) << i;
            count += lines[i].at("people").size();
        }
        return count;
    }

    std::vector<cv::Mat> frames;
};

TEST_F(PeopleCommand, FindsThePeopleOfEveryFrame) {
    EXPECT_GE(ExpectPeople(People(), {8, 1.12}), static_cast<std::size_t>(kFrames));
}

TEST_F(PeopleCommand, SensitivitySearchesMoreFinely) {
    ExpectPeople(People({"--sensitivity", "0.1"}), {16, 1.15});
    ExpectPeople(People({"--sensitivity", "0.5"}), {4, 1.1});
}

TEST_F(PeopleCommand, SizesAreSharesOfTheFramesHeight) {
    const int height = frames[0].rows;
    const auto inPixels = [&](double share) { return static_cast<int>(share * height); };
    const std::size_t all = ExpectPeople(People(), {8, 1.12});
    EXPECT_LT(ExpectPeople(People({"--min-size", "0.24"}), {8, 1.12, inPixels(0.24)}), all);
    EXPECT_LT(ExpectPeople(People({"--max-size", "0.24"}), {8, 1.12, 128, inPixels(0.24)}), all);
}

TEST_F(PeopleCommand, SearchesTheAreasAlone) {
    const cv::Size size = frames[0].size();
    const cv::Rect left(0, 0, size.width / 2, size.height);
    const cv::Rect right(size.width / 2, size.height / 4, size.width / 2, size.height / 2);
    const std::vector<json> lines = People({"--area", "0,0,0.5,1", "--area", "0.5,0.25,0.5,0.5"});
    ASSERT_EQ(lines.size(), frames.size());
    for (std::size_t i = 0; i < frames.size(); ++i) {
        json expected = Expected(frames[i], left, {8, 1.12});
        for (const json& person : Expected(frames[i], right, {8, 1.12})) expected.push_back(person);
        EXPECT_EQ(Sorted(lines[i].at("people")), Sorted(expected)) << i;
    }
    for (const json& line : People({"--area", "0,0,0.05,1"})) {
        EXPECT_EQ(line.at("people"), json::array()) << "too narrow for a person";
    }
}

TEST_F(PeopleCommand, AreDrawnInGreen) {
    const std::vector<json> lines = People({"--out", "people.avi"});
    const std::vector<cv::Mat> annotated = FramesOf(folder / "people.avi");
    ASSERT_EQ(annotated.size(), frames.size());
    int sides = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        for (const json& person : lines[i].at("people")) {
            const cv::Point side(person.at("x"), person.at("y").get<int>() + person.at("height").get<int>() / 2);
            if (side.x < 0 || side.y >= frames[i].rows) continue;
            const auto colour = annotated[i].at<cv::Vec3b>(side);
            EXPECT_GT(colour[1], colour[2] + 40) << "green " << i << person;
            ++sides;
        }
    }
    EXPECT_GT(sides, 0);
}

TEST_F(PeopleCommand, TableHasALinePerFrameAndASummary) {
    const std::vector<std::string> lines = Lines(Run({"people", "clip.avi"}).out);
    ASSERT_EQ(lines.size(), kFrames + 2U);
    EXPECT_NE(lines[0].find("people"), std::string::npos);
    std::size_t most = 0;
    for (std::size_t i = 0; i < frames.size(); ++i) {
        std::istringstream row(lines[i + 1]);
        std::size_t index = 0;
        double seconds = 0;
        std::size_t count = 0;
        row >> index >> seconds >> count;
        EXPECT_EQ(index, i);
        EXPECT_EQ(count, Expected(frames[i], whole(), {8, 1.12}).size());
        most = std::max(most, count);
    }
    EXPECT_EQ(lines.back().rfind("4 frames, " + std::to_string(most) + " people at most", 0), 0U) << lines.back();
}

class PeopleUsage : public QuarryCommand {};

TEST_F(PeopleUsage, FramesLowerThanAPersonShowNobody) {
    WriteVideo("clip.avi", 3);
    const std::vector<json> lines = RunJson({"people", "clip.avi"});
    ASSERT_EQ(lines.size(), 3U);
    for (const json& line : lines) EXPECT_EQ(line.at("people"), json::array());
}

TEST_F(PeopleUsage, RefusesOptionsThatContradictEachOther) {
    WriteVideo("clip.avi", 2);
    ExpectRefusal({"people", "clip.avi", "--min-size", "0.5", "--max-size", "0.25"}, 2,
                  "--max-size: must be at least --min-size, 0.5, not 0.25");
}

}  // namespace
