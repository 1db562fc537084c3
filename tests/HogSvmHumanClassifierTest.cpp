#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <opencv2/imgproc.hpp>
#include <opencv2/objdetect.hpp>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "Quarry.OpenCV/HogSvmHumanClassifier.h"
#include "Quarry/Quarry.h"
#include "plain/HogSvmHumanClassifier.h"
#include "support/Allocations.h"
#include "support/Footage.h"
#include "support/Framed.h"
#include "support/RefusedInput.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::test;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr int kNoLimit = std::numeric_limits<int>::max();
constexpr int kWindowHeight = 128;

struct Person {
    RelRect rect;
    double weight;

    bool operator==(const Person& other) const {
        return rect.X == other.rect.X && rect.Y == other.rect.Y && rect.Width == other.rect.Width &&
               rect.Height == other.rect.Height && weight == other.weight;
    }
};
using People = std::vector<Person>;

std::ostream& operator<<(std::ostream& out, const Person& person) {
    return out << person.rect.X << ", " << person.rect.Y << ", " << person.rect.Width << " x " << person.rect.Height
               << ": " << person.weight;
}

struct Settings {
    float sensitivity = 0.3F;
    double minSize = 0.1;
    double maxSize = 1.0;
};

/// One processor, called through the drivers.
class Detector {
public:
    explicit Detector(const Settings& settings = {}, unsigned char unread = 0xA5) {
        auto options = FramedOptions<ClassificationOptions>(unread);
        options->Sensitivity = settings.sensitivity;
        options->MinSize = settings.minSize;
        options->MaxSize = settings.maxSize;
        CreateCVHogSvmHumanClassifier(&handle, options.record());
    }
    Detector(const Detector&) = delete;
    Detector& operator=(const Detector&) = delete;
    ~Detector() { Dispose(handle); }

    static Framed<ClassificationData> Input(const Image& frame, const std::vector<RelRect>& areas,
                                            unsigned char unread = 0xA5) {
        auto input = FramedInput<ClassificationData>(unread);
        input->Frame = frame;
        input->WholeFrame = 0;
        input->AreasCount = static_cast<int32_t>(areas.size());
        input->Areas = areas.data();
        return input;
    }
    static Framed<ClassificationData> WholeFrame(const Image& frame) {
        auto input = Input(frame, {});
        input->WholeFrame = 1;
        return input;
    }

    People Find(Framed<ClassificationData> input) const {
        auto result = FramedResult<ClassificationResult>(0xA5);
        Process(handle, input.as<ProcessData>(), result.as<ProcessResult>());
        EXPECT_EQ(result->Status, 0);
        EXPECT_EQ(result->Responses == nullptr, result->Count == 0);
        People people;
        for (int i = 0; i < result->Count; ++i) {
            people.push_back({result->Responses[i].Rect, result->Responses[i].Weight});
        }
        DisposeResult(handle, result.as<ProcessResult>());
        return people;
    }
    People Find(const cv::Mat& frame) const { return Find(WholeFrame(ImageOf(frame))); }
    People Find(const cv::Mat& frame, const std::vector<RelRect>& areas) const {
        return Find(Input(ImageOf(frame), areas));
    }

    /// A call that must throw, and change nothing.
    template <class Exception>
    void ExpectRefusal(Framed<ClassificationData> input, const std::string& message = {}) const {
        const std::string said = RefusalOfInput<Exception, ClassificationResult>(handle, input);
        EXPECT_TRUE(message.empty() || said == message) << said;
    }

    void* handle = nullptr;
};

/// How the detector searches, and the heights of a person that are wanted.
struct Search {
    int stride = 8;
    double scale = 1.12;
    int minHeight = kWindowHeight;
    int maxHeight = kNoLimit;
};

People Reference(const cv::Mat& frame, const std::vector<cv::Rect>& areas, const Search& search = {}) {
    const cv::HOGDescriptor hog = quarry::plain::PeopleDescriptor();
    const double width = frame.cols;
    const double height = frame.rows;
    People people;
    for (const cv::Rect& area : areas) {
        for (const auto& [rect, weight] : quarry::plain::People(
                 hog, frame(area).clone(), {search.stride, search.scale, search.minHeight, search.maxHeight})) {
            people.push_back(
                {{static_cast<float>((rect.x + area.x) / width), static_cast<float>((rect.y + area.y) / height),
                  static_cast<float>(rect.width / width), static_cast<float>(rect.height / height)},
                 weight});
        }
    }
    return people;
}

People Reference(const cv::Mat& frame, const Search& search = {}) {
    return Reference(frame, {{0, 0, frame.cols, frame.rows}}, search);
}

/// The area as a host writes it: the middle of its first and last pixel, so that truncation gives it back.
RelRect Relative(const cv::Rect& area, const cv::Size& frame) {
    const auto part = [](int pixels, int whole) { return static_cast<float>((pixels + 0.5) / whole); };
    return {part(area.x, frame.width), part(area.y, frame.height), part(area.width, frame.width),
            part(area.height, frame.height)};
}

class Hog : public testing::Test {
protected:
    /// The detector gathers what its threads find in the order in which they end.
    static void SetUpTestSuite() { cv::setNumThreads(1); }
};

/// Tests that want the pedestrian clip.
class HogOnFootage : public Hog {
protected:
    static constexpr int kFrames = 13;

    void SetUp() override {
        frames = PedestrianFrames(kFrames);
        if (frames.size() < kFrames) GTEST_SKIP() << "no footage in " << MediaDirectory();
    }

    std::vector<cv::Mat> frames;
};

const cv::Rect kOnePerson(480, 140, 260, 260);

TEST_F(HogOnFootage, FindsPeopleInEachFrame) {
    const Detector detector;
    std::size_t found = 0;
    for (std::size_t i = 0; i < frames.size(); i += 2) {
        const People expected = Reference(frames[i]);
        EXPECT_EQ(detector.Find(frames[i]), expected) << "frame " << i;
        found += expected.size();
    }
    EXPECT_GT(found, 0U);
}

TEST_F(HogOnFootage, ReportsOfNestedDetectionsOnlyTheOuterOne) {
    const cv::HOGDescriptor hog = quarry::plain::PeopleDescriptor();
    std::vector<cv::Rect> found;
    hog.detectMultiScale(frames[3], found, 0.0, {8, 8}, {0, 0}, 1.12, 2.0, false);
    ASSERT_EQ(found.size(), 2U);
    const cv::Rect outer = found[0] | found[1];
    ASSERT_TRUE(outer == found[0] || outer == found[1]);
    const People people = Detector().Find(frames[3]);
    ASSERT_EQ(people.size(), 1U);
    EXPECT_EQ(people[0].rect.Height, static_cast<float>(outer.height) / 576.0F);
}

TEST_F(HogOnFootage, SearchesAsFinelyAsTheSensitivitySays) {
    const cv::Rect whole(0, 0, 768, 576);
    const struct {
        cv::Rect area;
        Search search;
        std::vector<float> sensitivities;
    } rows[] = {{whole, {16, 1.15}, {-1.0F, 0.2499F, -kInfinity}},
                {whole, {8, 1.12}, {0.25F, 0.4999F}},
                {kOnePerson, {8, 1.12}, {0.25F, 0.4999F}},
                {kOnePerson, {4, 1.1}, {0.5F, 0.7499F}},
                {kOnePerson, {2, 1.05}, {0.75F, 1.0F, kInfinity}}};
    const cv::Mat& frame = frames[8];
    People previous;
    for (const auto& [area, search, sensitivities] : rows) {
        const People expected = Reference(frame, {area}, search);
        EXPECT_NE(expected, previous) << "stride " << search.stride;
        previous = expected;
        for (const float sensitivity : sensitivities) {
            EXPECT_EQ(Detector({sensitivity}).Find(frame, {Relative(area, frame.size())}), expected) << sensitivity;
        }
    }
}

TEST_F(HogOnFootage, SearchesLikeTheLowestForASensitivityThatIsNotANumber) {
    EXPECT_EQ(Detector({kNan}).Find(frames[8]), Reference(frames[8], {16, 1.15}));
}

TEST_F(HogOnFootage, KeepsPeopleOfExactlyTheSmallestAndTheLargestHeight) {
    const cv::Mat frame = frames[8](kOnePerson).clone();
    const People all = Reference(frame);
    ASSERT_EQ(all.size(), 1U);
    const auto height = static_cast<int>(std::lround(all[0].rect.Height * 260.0F));
    const auto share = [](int rows) { return (rows + 0.9) / 260; };
    EXPECT_EQ(Detector({0.3F, share(height)}).Find(frame), all);
    EXPECT_EQ(Detector({0.3F, share(height + 1)}).Find(frame), People());
    EXPECT_EQ(Detector({0.3F, 0.1, share(height)}).Find(frame), all);
    EXPECT_EQ(Detector({0.3F, 0.1, share(height - 1)}).Find(frame), People());
}

TEST_F(HogOnFootage, RejectsEveryDetectionWhereTheLargestHeightIsNotPositive) {
    ASSERT_FALSE(Reference(frames[0]).empty());
    for (const double maxSize : {0.0, -0.5, -1.0, -1e300}) {
        EXPECT_EQ(Detector({0.3F, 0.1, maxSize}).Find(frames[0]), People()) << maxSize;
    }
}

TEST_F(HogOnFootage, SearchesTheAreasInTheirOrder) {
    const cv::Mat& frame = frames[0];
    // The last two overlap; each of the first three has a person.
    const std::vector<cv::Rect> areas = {{560, 120, 208, 260}, {180, 150, 200, 240}, {520, 100, 248, 300},
                                         {0, 300, 200, 276},   {100, 100, 300, 300}, {560, 120, 208, 260}};
    std::vector<RelRect> relative;
    relative.reserve(areas.size());
    for (const cv::Rect& area : areas) relative.push_back(Relative(area, frame.size()));
    const People expected = Reference(frame, areas);
    EXPECT_GE(expected.size(), 2U);
    EXPECT_EQ(Detector().Find(frame, relative), expected);
    std::reverse(relative.begin(), relative.end());
    EXPECT_EQ(Detector().Find(frame, relative), Reference(frame, {areas.rbegin(), areas.rend()}));
}

TEST_F(HogOnFootage, ReportsAPersonOncePerAreaThatHoldsIt) {
    const RelRect area = Relative(kOnePerson, frames[8].size());
    const People once = Reference(frames[8], {kOnePerson});
    ASSERT_EQ(once.size(), 1U);
    EXPECT_EQ(Detector().Find(frames[8], {area, area, area}), People(3, once[0]));
}

TEST_F(HogOnFootage, FollowsTheSizeOfTheFrame) {
    const cv::Mat& large = frames[0];
    const cv::Mat small = frames[11](kOnePerson).clone();
    // A quarter of the height: 144 rows, or 65, which the detection window raises to 128.
    const People inLarge = Reference(large, {8, 1.12, 144, 432});
    const People inSmall = Reference(small, {8, 1.12, 128, 195});
    ASSERT_NE(inSmall, Reference(small, {8, 1.12, 144, 432}));
    ASSERT_NE(inLarge, Reference(large, {8, 1.12, 128, 195}));
    const Detector detector({0.3F, 0.25, 0.75});
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(detector.Find(large), inLarge) << "round " << round;
        EXPECT_EQ(detector.Find(small), inSmall) << "round " << round;
    }
}

TEST_F(HogOnFootage, SearchesTheWholeFrameWithoutReadingTheAreas) {
    const Detector detector;
    const People expected = Reference(frames[0]);
    ASSERT_FALSE(expected.empty());
    for (const int count : {0, -5, 3}) {
        auto input = Detector::WholeFrame(ImageOf(frames[0]));
        input->AreasCount = count;
        input->Areas = nullptr;
        EXPECT_EQ(detector.Find(input), expected) << count << " areas";
    }
}

TEST_F(HogOnFootage, TakesOnlyOneForTheWholeFrame) {
    const Detector detector;
    const std::vector<RelRect> areas = {Relative(kOnePerson, frames[8].size())};
    const People expected = Reference(frames[8], {kOnePerson});
    const uint8_t words[] = {0, 2, 3, 128, 255};
    for (const uint8_t word : words) {
        auto input = Detector::Input(ImageOf(frames[8]), areas);
        input->WholeFrame = word;
        EXPECT_EQ(detector.Find(input), expected) << int{word};
        input->AreasCount = 0;
        input->Areas = nullptr;
        EXPECT_EQ(detector.Find(input), People()) << int{word};
    }
}

TEST_F(HogOnFootage, ForgetsWhatAFailedCallHadFound) {
    const Detector detector;
    const RelRect area = Relative(kOnePerson, frames[8].size());
    const std::vector<RelRect> areas = {area, {0.75F, 0.0F, 0.5F, 1.0F}};
    detector.ExpectRefusal<cv::Exception>(Detector::Input(ImageOf(frames[8]), areas));
    EXPECT_EQ(detector.Find(frames[8], {area}), Reference(frames[8], {kOnePerson}));
}

/// An area that is searched is refused when it lies outside the frame, one that is skipped is not.
bool IsSearched(const Detector& detector, const cv::Mat& frame, const cv::Size& size) {
    RelRect area = Relative({{0, 0}, size}, frame.size());
    area.X = 2.0F;
    try {
        EXPECT_EQ(detector.Find(frame, {area}), People());
        return false;
    } catch (const cv::Exception&) {
        return true;
    }
}

TEST_F(Hog, SkipsAreasThatAreNotWiderThanTheWindow) {
    const cv::Mat frame = RandomFrame(640, 480, 1);
    const Detector detector;
    for (const int width : {0, 1, 63, 64}) EXPECT_FALSE(IsSearched(detector, frame, {width, 300})) << width;
    for (const int width : {65, 66, 300}) EXPECT_TRUE(IsSearched(detector, frame, {width, 300})) << width;
}

TEST_F(Hog, SkipsAreasThatAreNotHigherThanTheSmallestPerson) {
    const struct {
        double minSize;
        int minHeight;
    } limits[] = {{0.1, 128}, {-1.0, 128}, {127.9 / 480, 128}, {0.27, 129}, {0.5, 240}, {240.9 / 480, 240}};
    const cv::Mat frame = RandomFrame(640, 480, 1);
    for (const auto& [minSize, minHeight] : limits) {
        const Detector detector({0.3F, minSize});
        EXPECT_FALSE(IsSearched(detector, frame, {300, minHeight - 1})) << minSize;
        EXPECT_FALSE(IsSearched(detector, frame, {300, minHeight})) << minSize;
        EXPECT_TRUE(IsSearched(detector, frame, {300, minHeight + 1})) << minSize;
    }
}

TEST_F(Hog, GivesNothingForAreasWithoutPeople) {
    const cv::Mat frame(300, 300, CV_8UC3, cv::Scalar::all(90));
    EXPECT_EQ(Detector().Find(frame), People());
    EXPECT_EQ(Detector().Find(frame, {}), People());
    const cv::Mat window = RandomFrame(64, 128, 1);
    EXPECT_EQ(Detector().Find(window), People());
}

TEST_F(Hog, GivesNothingForAnEmptyFrame) {
    EXPECT_EQ(Detector().Find(Detector::WholeFrame({nullptr, 0, 0, 0, 0})), People());
}

TEST_F(Hog, RefusesAnAreaOutsideTheFrame) {
    const cv::Mat frame = RandomFrame(320, 240, 1);
    const RelRect areas[] = {{-0.1F, 0.0F, 1.0F, 1.0F}, {0.0F, -0.1F, 1.0F, 1.0F}, {0.0F, 0.0F, 1.1F, 1.0F},
                             {0.0F, 0.0F, 1.0F, 1.1F},  {0.5F, 0.0F, 0.6F, 1.0F},  {kNan, 0.0F, 0.5F, 1.0F}};
    for (const RelRect& area : areas) {
        SCOPED_TRACE(testing::Message() << area.X << ", " << area.Y << ", " << area.Width << " x " << area.Height);
        const std::vector<RelRect> one = {area};
        Detector().ExpectRefusal<cv::Exception>(Detector::Input(ImageOf(frame), one));
    }
}

TEST_F(Hog, RefusesANegativeNumberOfAreas) {
    const cv::Mat frame = RandomFrame(320, 240, 1);
    const std::vector<RelRect> areas(1);
    for (const int count : {-1, std::numeric_limits<int>::min()}) {
        auto input = Detector::Input(ImageOf(frame), areas);
        input->AreasCount = count;
        Detector().ExpectRefusal<std::invalid_argument>(
            input, "ClassificationData.AreasCount is " + std::to_string(count) + "; 0 or more is allowed");
    }
}

TEST_F(Hog, RefusesNullAreasThatAreCounted) {
    const cv::Mat frame = RandomFrame(320, 240, 1);
    auto input = Detector::Input(ImageOf(frame), {});
    input->AreasCount = 2;
    input->Areas = nullptr;
    Detector().ExpectRefusal<std::invalid_argument>(input, "ClassificationData.Areas is null; 2 areas are needed");
}

TEST_F(Hog, RefusesNullPixelsOfAFrameThatIsNotEmpty) {
    Detector().ExpectRefusal<cv::Exception>(Detector::WholeFrame({nullptr, 320, 240, 960, 0}));
}

TEST_F(Hog, DoesNotReadThePixelsWhereNothingIsSearched) {
    const Image none{nullptr, 640, 480, 1920, 0};
    const std::vector<RelRect> tooSmall = {{0, 0, 0.1F, 0.1F}};
    EXPECT_TRUE(Detector().Find(Detector::Input(none, {})).empty());
    EXPECT_TRUE(Detector().Find(Detector::Input(none, tooSmall)).empty());
}

TEST_F(Hog, RefusesANegativeSize) {
    const cv::Mat frame = RandomFrame(320, 240, 1);
    for (const cv::Size& size : {cv::Size(-320, 240), cv::Size(320, -240), cv::Size(-320, -240)}) {
        SCOPED_TRACE(testing::Message() << size);
        Detector().ExpectRefusal<cv::Exception>(Detector::WholeFrame({frame.data, size.width, size.height, 960, 0}));
    }
}

TEST(HogContainment, EqualsThePairwiseRule) {
    // How far apart they lie, how wide and how high they are, and one in how many is very wide.
    const struct {
        int spread, width, height, oneWideIn;
    } kinds[] = {{1000, 60, 120, 1000}, {40, 8, 8, 1000},    {4, 3, 3, 1000},
                 {300, 5, 200, 20},     {1, 200, 200, 1000}, {700, 30, 60, 5}};
    for (const auto& kind : kinds) {
        for (uint64_t seed = 0; seed < 12; ++seed) {
            cv::RNG random(seed + 1);
            std::vector<cv::Rect> rectangles;
            for (int i = 0; i < 400; ++i) {
                const int wide = random.uniform(0, kind.oneWideIn) == 0 ? 20 : 1;
                rectangles.emplace_back(random.uniform(-kind.spread, kind.spread),
                                        random.uniform(-kind.spread, kind.spread), wide * random.uniform(1, kind.width),
                                        wide * random.uniform(1, kind.height));
            }
            EXPECT_EQ(HogSvmHumanClassifier::FindContained(rectangles), quarry::plain::Contained(rectangles))
                << "spread " << kind.spread << ", width " << kind.width << ", seed " << seed;
        }
    }
}

TEST(HogContainment, IsKnownForFewRectangles) {
    const struct {
        std::vector<cv::Rect> rectangles;
        std::vector<bool> contained;
    } cases[] = {{{}, {}},
                 {{{5, 5, 10, 10}}, {false}},
                 {{{0, 0, 10, 10}, {2, 2, 5, 5}}, {false, true}},
                 {{{2, 2, 5, 5}, {0, 0, 10, 10}}, {true, false}},
                 {{{0, 0, 10, 10}, {5, 5, 5, 5}}, {false, true}},      // they share a corner
                 {{{0, 0, 10, 10}, {5, 5, 6, 5}}, {false, false}},     // one column too many
                 {{{0, 0, 10, 10}, {10, 0, 10, 10}}, {false, false}},  // they touch
                 {{{3, 3, 7, 7}, {3, 3, 7, 7}}, {true, true}},         // identical ones reject each other
                 {{{0, 0, 9, 9}, {1, 1, 7, 7}, {2, 2, 5, 5}}, {false, true, true}},
                 {{{3, 3, 7, 7}, {3, 3, 7, 7}, {0, 0, 20, 20}}, {true, true, false}},
                 {{{0, 0, 1000, 50}, {900, 10, 5, 5}, {950, 10, 5, 60}}, {false, true, false}}};
    for (const auto& [rectangles, contained] : cases) {
        EXPECT_EQ(HogSvmHumanClassifier::FindContained(rectangles), contained) << testing::PrintToString(rectangles);
    }
}

}  // namespace
