#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <opencv2/objdetect.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "Quarry.OpenCV/CascadeClassifier.h"
#include "Quarry/Quarry.h"
#include "support/Allocations.h"
#include "support/Footage.h"
#include "support/Framed.h"
#include "support/RefusedInput.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::test;

using Rects = std::vector<cv::Rect2f>;

const char* const kFaces = "/usr/share/opencv4/haarcascades/haarcascade_frontalface_alt.xml";
const RelRect kWhole = {0.0F, 0.0F, 1.0F, 1.0F};
void* const kUntouched = reinterpret_cast<void*>(0x5EED);
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

struct Settings {
    uint32_t mode = 1;
    double minSize = 40;  // small faces cost the most time
    double maxSize = -1;
    const char* path = kFaces;
};

Framed<ClassificationOptions> OptionsOf(const Settings& settings, unsigned char unread = 0xA5) {
    auto options = FramedOptions<ClassificationOptions>(unread);
    options->Mode = settings.mode;
    options->MinSize = settings.minSize;
    options->MaxSize = settings.maxSize;
    options->CascadePath = settings.path;
    return options;
}

/// One processor, called through the drivers.
class Detector {
public:
    explicit Detector(const Settings& settings = {}, unsigned char unread = 0xA5) {
        auto options = OptionsOf(settings, unread);
        CreateCVCascadeClassifier(&handle, options.record());
    }
    Detector(const Detector&) = delete;
    Detector& operator=(const Detector&) = delete;
    ~Detector() { Dispose(handle); }

    Rects Find(Framed<ClassificationData> input) const {
        auto result = FramedResult<ClassificationResult>(0xA5);
        Process(handle, input.as<ProcessData>(), result.as<ProcessResult>());
        EXPECT_EQ(result->Status, 0);
        Rects rects;
        for (int i = 0; i < result->Count; ++i) {
            const RelRect& rect = result->Responses[i].Rect;
            rects.emplace_back(rect.X, rect.Y, rect.Width, rect.Height);
        }
        DisposeResult(handle, result.as<ProcessResult>());
        return rects;
    }
    Rects Find(const cv::Mat& frame, const RelRect& area = kWhole) const { return Find(Input(frame, &area)); }

    static Framed<ClassificationData> Input(const cv::Mat& frame, const RelRect* areas, unsigned char unread = 0xA5) {
        auto input = FramedInput<ClassificationData>(unread);
        input->Frame = ImageOf(frame);
        input->Areas = areas;
        return input;
    }

    /// A call that must throw, and change nothing.
    template <class Exception>
    void ExpectRefusal(const Image& frame, const RelRect* areas, const std::string& message = {}) const {
        auto input = FramedInput<ClassificationData>(0xA5);
        input->Frame = frame;
        input->Areas = areas;
        const std::string said = RefusalOfInput<Exception, ClassificationResult>(handle, input);
        EXPECT_TRUE(message.empty() || said == message) << said;
    }

    void* handle = nullptr;
};

/// What a factory call that must throw leaves behind.
template <class Exception>
void ExpectNoDetector(const Settings& settings, const std::string& message = {}) {
    auto options = OptionsOf(settings);
    for (int attempt = 0; attempt < 2; ++attempt) {  // what the first one leaves may be OpenCV's own
        void* handle = kUntouched;
        const std::size_t before = LiveBlocks();
        try {
            CreateCVCascadeClassifier(&handle, options.record());
            ADD_FAILURE() << "no exception";
        } catch (const Exception& refusal) {
            if (!message.empty()) {
                EXPECT_EQ(refusal.what(), message);
            }
        }
        EXPECT_EQ(handle, kUntouched);
        if (attempt > 0) {
            EXPECT_EQ(LiveBlocks(), before);
        }
    }
}

/// What the detector finds in an area, in its order, as fractions of that area.
Rects Reference(const cv::Mat& frame, const cv::Rect& area, int minSize = 40, int maxSize = 0, int minNeighbors = 1,
                int flags = cv::CASCADE_SCALE_IMAGE) {
    static cv::CascadeClassifier faces(kFaces);
    cv::Mat grey;
    cv::cvtColor(frame(area).clone(), grey, cv::COLOR_BGR2GRAY);
    std::vector<cv::Rect> objects;
    faces.detectMultiScale(grey, objects, 1.1, minNeighbors, flags, {minSize, minSize}, {maxSize, maxSize});
    Rects rects;
    for (const cv::Rect& object : objects) {
        rects.emplace_back(static_cast<float>(object.x) / static_cast<float>(area.width),
                           static_cast<float>(object.y) / static_cast<float>(area.height),
                           static_cast<float>(object.width) / static_cast<float>(area.width),
                           static_cast<float>(object.height) / static_cast<float>(area.height));
    }
    return rects;
}

cv::Rect Whole(const cv::Mat& frame) {
    return {0, 0, frame.cols, frame.rows};
}

class Cascade : public testing::Test {
protected:
    /// The detector gathers what its threads find in the order in which they end.
    static void SetUpTestSuite() { cv::setNumThreads(1); }

    void SetUp() override {
        if (!std::filesystem::exists(kFaces)) GTEST_SKIP() << "no " << kFaces;
    }
};

/// Tests that want a picture in which there are faces: 640 x 480, three of them where few neighbours are asked for.
class CascadeOnFaces : public Cascade {
protected:
    void SetUp() override {
        Cascade::SetUp();
        if (IsSkipped()) return;
        faces = cv::imread((MediaDirectory() / "left14.jpg").string());
        if (faces.empty()) GTEST_SKIP() << "no pictures in " << MediaDirectory();
    }

    cv::Mat faces;
};

TEST_F(CascadeOnFaces, FindsWhatTheDetectorFindsWithEachPreset) {
    const struct {
        int minNeighbors, flags;
    } presets[] = {{5, cv::CASCADE_SCALE_IMAGE},
                   {1, cv::CASCADE_SCALE_IMAGE},
                   {2, cv::CASCADE_DO_CANNY_PRUNING + cv::CASCADE_FIND_BIGGEST_OBJECT}};
    std::vector<std::vector<Rects>> found(3);
    for (const char* const name : {"left14.jpg", "left07.jpg", "basketball1.png"}) {
        const cv::Mat frame = cv::imread((MediaDirectory() / name).string());
        ASSERT_FALSE(frame.empty()) << name;
        for (uint32_t mode = 0; mode < 3; ++mode) {
            const auto& [minNeighbors, flags] = presets[mode];
            const Rects expected = Reference(frame, Whole(frame), 40, 0, minNeighbors, flags);
            EXPECT_EQ(Detector({mode}).Find(frame), expected) << name << ", mode " << mode;
            found[mode].push_back(expected);
        }
    }
    // Else a preset could be taken for another one.
    EXPECT_NE(found[0], found[1]);
    EXPECT_NE(found[0], found[2]);
    EXPECT_NE(found[1], found[2]);
}

TEST_F(CascadeOnFaces, HasNoLimitsWhereTheyAreNegative) {
    const cv::Mat frame = faces(cv::Rect(100, 180, 200, 120)).clone();
    const Rects expected = Reference(frame, Whole(frame), 0, 0);
    ASSERT_FALSE(expected.empty());
    for (const double none : {-1.0, -0.5, -1e300}) {
        EXPECT_EQ(Detector({1, none, none}).Find(frame), expected) << none;
    }
}

TEST_F(CascadeOnFaces, TruncatesTheSmallestSizeTowardZero) {
    ASSERT_NE(Reference(faces, Whole(faces), 52), Reference(faces, Whole(faces), 53));
    EXPECT_EQ(Detector({1, 52.9}).Find(faces), Reference(faces, Whole(faces), 52));
    EXPECT_EQ(Detector({1, 53.0}).Find(faces), Reference(faces, Whole(faces), 53));
}

TEST_F(CascadeOnFaces, TakesASmallestSizeOf30Point9For30) {
    const cv::Mat frame = cv::imread((MediaDirectory() / "messi5.jpg").string());
    ASSERT_FALSE(frame.empty());
    ASSERT_NE(Reference(frame, Whole(frame), 29), Reference(frame, Whole(frame), 30));
    EXPECT_EQ(Detector({1, 30.9}).Find(frame), Reference(frame, Whole(frame), 30));
    EXPECT_EQ(Detector({1, 29.9}).Find(frame), Reference(frame, Whole(frame), 29));
}

TEST_F(CascadeOnFaces, TruncatesTheLargestSizeTowardZero) {
    ASSERT_NE(Reference(faces, Whole(faces), 40, 56), Reference(faces, Whole(faces), 40, 57));
    EXPECT_EQ(Detector({1, 40, 56.9}).Find(faces), Reference(faces, Whole(faces), 40, 56));
    EXPECT_EQ(Detector({1, 40, 57.0}).Find(faces), Reference(faces, Whole(faces), 40, 57));
}

TEST_F(CascadeOnFaces, SearchesTheArea) {
    const struct {
        RelRect relative;
        cv::Rect pixels;
    } areas[] = {{{0.0F, 0.0F, 1.0F, 1.0F}, {0, 0, 640, 480}},
                 {{0.125F, 0.25F, 0.5F, 0.5F}, {80, 120, 320, 240}},
                 {{0.5F, 0.25F, 0.5F, 0.75F}, {320, 120, 320, 360}},
                 {{0.0F, 0.375F, 0.5F, 0.625F}, {0, 180, 320, 300}}};
    const Detector detector;
    for (const auto& [relative, pixels] : areas) {
        const Rects expected = Reference(faces, pixels);
        EXPECT_FALSE(expected.empty()) << pixels;
        EXPECT_EQ(detector.Find(faces, relative), expected) << pixels;
    }
}

TEST_F(CascadeOnFaces, GivesFractionsOfTheAreaNotShiftedByIt) {
    cv::Mat wide(480, 1280, CV_8UC3, cv::Scalar::all(90));
    faces.copyTo(wide(cv::Rect(640, 0, 640, 480)));
    const Rects expected = Reference(faces, Whole(faces));
    ASSERT_FALSE(expected.empty());
    EXPECT_EQ(Detector().Find(wide, {0.5F, 0.0F, 0.5F, 1.0F}), expected);
}

TEST_F(CascadeOnFaces, ReadsTheFirstAreaAloneWhateverTheCount) {
    const RelRect areas[] = {{0.125F, 0.25F, 0.5F, 0.5F}, {5.0F, 5.0F, 5.0F, 5.0F}};
    const Rects expected = Reference(faces, {80, 120, 320, 240});
    const Detector detector;
    for (const int count : {0, 1, 2, -7, std::numeric_limits<int>::max()}) {
        auto input = Detector::Input(faces, areas);
        input->AreasCount = count;
        EXPECT_EQ(detector.Find(input), expected) << count << " areas";
    }
}

TEST_F(CascadeOnFaces, DoesNotConsultWholeFrame) {
    const RelRect area = {0.125F, 0.25F, 0.5F, 0.5F};
    const Rects expected = Reference(faces, {80, 120, 320, 240});
    const Detector detector;
    const uint8_t words[] = {0, 1, 2, 255};
    for (const uint8_t word : words) {
        auto input = Detector::Input(faces, &area);
        input->WholeFrame = word;
        EXPECT_EQ(detector.Find(input), expected) << int{word};
    }
}

TEST_F(CascadeOnFaces, TruncatesTheAreaToPixels) {
    cv::Mat odd(481, 641, CV_8UC3, cv::Scalar::all(90));
    faces(cv::Rect(80, 120, 400, 300)).copyTo(odd(cv::Rect(0, 0, 400, 300)));
    const Rects expected = Reference(odd, {0, 0, 320, 240});
    ASSERT_FALSE(expected.empty());
    EXPECT_EQ(Detector().Find(odd, {0.0F, 0.0F, 0.5F, 0.5F}), expected);
}

TEST_F(CascadeOnFaces, TakesTheAreaFromProductsInSinglePrecision) {
    // 0.7F x 640 is 448 as a float; before it is rounded it is just below.
    ASSERT_LT(static_cast<double>(0.7F) * 640, 448.0);
    const Rects expected = Reference(faces, {0, 0, 448, 480});
    ASSERT_FALSE(expected.empty());
    EXPECT_EQ(Detector().Find(faces, {0.0F, 0.0F, 0.7F, 1.0F}), expected);
}

TEST_F(Cascade, GivesNothingWhereThereAreNoFaces) {
    const Detector detector;
    const RelRect area = kWhole;
    for (const cv::Mat& frame : {cv::Mat(120, 160, CV_8UC3, cv::Scalar::all(128)), RandomFrame(160, 120, 1)}) {
        auto input = Detector::Input(frame, &area);
        auto result = FramedResult<ClassificationResult>(0xA5);
        Process(detector.handle, input.as<ProcessData>(), result.as<ProcessResult>());
        EXPECT_EQ(result->Status, 0);
        EXPECT_EQ(result->Count, 0);
        EXPECT_EQ(result->Responses, nullptr);
    }
}

TEST_F(Cascade, GivingBackAResultThatCountsNothingKeepsItsArray) {
    const Detector detector;
    Response shared = {};
    for (Response* const array : {&shared, static_cast<Response*>(nullptr)}) {
        auto result = FramedResult<ClassificationResult>(0x5A);
        result->Count = 0;
        result->Responses = array;
        const auto before = result.Bytes();
        DisposeResult(detector.handle, result.as<ProcessResult>());
        EXPECT_EQ(result.Bytes(), before);
    }
}

TEST_F(Cascade, WithoutAModelIsCreatedAndFailsAtEveryCall) {
    const Detector detector({1, 40, -1, "/nowhere/there/is/no/such/model.xml"});
    ASSERT_NE(detector.handle, nullptr);
    const cv::Mat frame = RandomFrame(160, 120, 1);
    for (int call = 0; call < 3; ++call) detector.ExpectRefusal<cv::Exception>(ImageOf(frame), &kWhole);
}

TEST_F(Cascade, RefusesAModelThatItCannotParse) {
    const std::string path = testing::TempDir() + "quarry-cascade-that-is-none.xml";
    std::ofstream(path) << "no model at all\n";
    ExpectNoDetector<cv::Exception>({1, 40, -1, path.c_str()});
    std::filesystem::remove(path);
}

TEST_F(Cascade, RefusesAnEmptyPath) {
    ExpectNoDetector<cv::Exception>({1, 40, -1, ""});
}

TEST_F(Cascade, RefusesANullPath) {
    ExpectNoDetector<std::invalid_argument>(
        {1, 40, -1, nullptr}, "ClassificationOptions.CascadePath is null; the path of a model file is needed");
}

TEST_F(Cascade, RefusesAnUnknownMode) {
    for (const uint32_t mode : {3U, 4U, 256U, 0x80000000U, 0xFFFFFFFFU}) {
        ExpectNoDetector<std::invalid_argument>(
            {mode}, "ClassificationOptions.Mode is " + std::to_string(mode) + "; 0, 1 or 2 is allowed");
    }
}

TEST_F(Cascade, RefusesNullAreas) {
    const cv::Mat frame = RandomFrame(40, 40, 1);
    Detector().ExpectRefusal<std::invalid_argument>(ImageOf(frame), nullptr,
                                                    "ClassificationData.Areas is null; one area is needed");
}

TEST_F(Cascade, RefusesAnAreaOutsideTheFrame) {
    const Detector detector;
    const cv::Mat frame = RandomFrame(40, 40, 1);
    const RelRect areas[] = {{-0.1F, 0.0F, 1.0F, 1.0F},     {0.0F, -0.1F, 1.0F, 1.0F},  {0.0F, 0.0F, 1.1F, 1.0F},
                             {0.0F, 0.0F, 1.0F, 1.1F},      {0.5F, 0.0F, 0.6F, 1.0F},   {0.0F, 0.5F, 1.0F, 0.6F},
                             {0.5F, 0.5F, -0.25F, 0.25F},   {0.0F, 0.0F, -1.0F, -1.0F}, {2.0F, 2.0F, 0.5F, 0.5F},
                             {kNan, 0.0F, 0.5F, 0.5F},      {0.0F, 0.0F, kNan, kNan},   {0.0F, 0.0F, kInfinity, 1.0F},
                             {-kInfinity, 0.0F, 0.5F, 0.5F}};
    for (const RelRect& area : areas) {
        SCOPED_TRACE(testing::Message() << area.X << ", " << area.Y << ", " << area.Width << " x " << area.Height);
        detector.ExpectRefusal<cv::Exception>(ImageOf(frame), &area);
    }
}

TEST_F(Cascade, RefusesAnAreaWithoutPixels) {
    const Detector detector;
    const cv::Mat frame = RandomFrame(40, 40, 1);
    const RelRect areas[] = {{0.5F, 0.5F, 0.0F, 0.0F}, {0.0F, 0.0F, 1.0F, 0.02F}};
    for (const RelRect& area : areas) detector.ExpectRefusal<cv::Exception>(ImageOf(frame), &area);
    detector.ExpectRefusal<cv::Exception>({nullptr, 0, 0, 0, 0}, &kWhole);
}

TEST_F(Cascade, TurnsRectanglesIntoFractionsInTheirOrder) {
    const auto rects = CascadeClassifier::GetRects({{640, 120, 320, 48}, {0, 0, 0, 0}, {1, 1, 3, 7}}, {1280, 480});
    const Rects expected = {
        {0.5F, 0.25F, 0.25F, 0.1F}, {0, 0, 0, 0}, {1.0F / 1280.0F, 1.0F / 480.0F, 3.0F / 1280.0F, 7.0F / 480.0F}};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(cv::Rect2f(rects[i].X, rects[i].Y, rects[i].Width, rects[i].Height), expected[i])
            << "rectangle " << i;
    }
}

}  // namespace
