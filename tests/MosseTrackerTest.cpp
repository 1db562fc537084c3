#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <functional>
#include <memory>
#include <opencv2/imgproc.hpp>
#include <opencv2/videoio.hpp>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "Quarry.OpenCV/MosseTracker.h"
#include "Quarry/Quarry.h"
#include "plain/MosseTracker.h"
#include "support/Footage.h"
#include "support/Framed.h"
#include "support/Scenes.h"

/// For messages; found by the name of the record, so it stands beside it.
std::ostream& operator<<(std::ostream& out, const PixelRect& rect) {
    return out << "(" << rect.X << ", " << rect.Y << ", " << rect.Width << " x " << rect.Height << ")";
}

bool operator==(const PixelRect& a, const PixelRect& b) {
    return a.X == b.X && a.Y == b.Y && a.Width == b.Width && a.Height == b.Height;
}

namespace {

using namespace quarry::test;
namespace plain = quarry::plain;

constexpr std::array<uint32_t, 2> kModes = {0, 1};

/// The tracker under test, driven as a host drives it.
class Tracker {
public:
    explicit Tracker(uint32_t mode = 0, unsigned char fill = 0xA5) : unread(fill) {
        auto options = FramedOptions<MosseTrackerOptions>(unread);
        options->TrackerMode = mode;
        CreateCVMosseTracker(&handle, options.record());
    }
    Tracker(const Tracker&) = delete;
    Tracker& operator=(const Tracker&) = delete;
    ~Tracker() { Dispose(handle); }

    int Update(const cv::Mat& frame, const PixelRect& rect) {
        Image image = ImageOf(frame);
        image.stride = -7;  // not consulted
        image.timestamp = unread;
        return UpdateImage(image, rect);
    }

    int UpdateImage(const Image& image, const PixelRect& rect) {
        auto input = FramedInput<MosseTrackerData>(unread);
        input->Image = image;
        input->InitialRect = rect;
        return ::Update(handle, input.as<UpdateData>());
    }

    MosseTrackerResult Result() {
        auto result = FramedResult<MosseTrackerResult>(unread);
        GetUpdateResult(handle, result.as<UpdateResult>());
        return *result;
    }

    PixelRect Rect() { return Result().TargetRect; }
    bool Found() { return Result().Found == 1; }

    void* handle = nullptr;

private:
    unsigned char unread;
};

/// A tracker and its reference, fed alike and compared after every frame.
class Pair {
public:
    Pair(uint32_t mode, const PixelRect& initialRect) : chosenMode(mode), rect(initialRect), tracker(mode) {}

    void Update(const cv::Mat& frame) {
        if (reference == nullptr) reference = std::make_unique<plain::MosseTracker>(chosenMode, frame, rect);
        reference->Update(frame);
        tracker.Update(frame, rect);
        const MosseTrackerResult result = tracker.Result();
        ASSERT_EQ(result.Found, reference->found ? 1 : 0) << "mode " << chosenMode << ", from " << rect;
        ASSERT_EQ(result.TargetRect, reference->Rect()) << "mode " << chosenMode << ", from " << rect;
        ++(reference->found ? found : lost);
    }

    int found = 0;
    int lost = 0;

private:
    uint32_t chosenMode;
    PixelRect rect;
    Tracker tracker;
    std::unique_ptr<plain::MosseTracker> reference;
};

/// Feeds a scene in both modes.
/// @return in how many frames the target was found
int ExpectSameOverScene(const std::function<cv::Mat(int)>& scene, int frames, const PixelRect& rect) {
    int found = 0;
    for (const uint32_t mode : kModes) {
        Pair pair(mode, rect);
        for (int i = 0; i < frames; ++i) {
            SCOPED_TRACE(testing::Message() << "frame " << i);
            pair.Update(scene(i));
            if (testing::Test::HasFatalFailure()) return found;
        }
        found += pair.found;
    }
    return found;
}

/// The picture behind noise.
/// @param share  of the noise, 0 to 1
cv::Mat Faded(const cv::Mat& picture, double share, uint64_t seed) {
    cv::Mat faded;
    cv::addWeighted(picture, 1 - share, RandomFrame(picture.cols, picture.rows, seed), share, 0, faded);
    return faded;
}

constexpr int kSide = 48;  // of the drawn target, pixels; its window has the same size

PixelRect RectAt(const cv::Point& place) {
    return {static_cast<int16_t>(place.x), static_cast<int16_t>(place.y), kSide, kSide};
}

/// The drawn target on its ground.
cv::Mat TargetAt(const cv::Point& place) {
    cv::Mat frame = Ground(200, 160);
    Draw(frame, Pattern(kSide, kSide, 3), place);
    return frame;
}

cv::Mat PlainFrame(int grey) {
    return {90, 120, CV_8UC3, cv::Scalar::all(grey)};
}

TEST(MosseTracker, EqualsThePlainStepsOverTheWholeClip) {
    cv::VideoCapture clip((MediaDirectory() / "vtest.avi").string());
    if (!clip.isOpened()) GTEST_SKIP() << "no footage in " << MediaDirectory();
    const PixelRect rects[] = {{252, 215, 32, 95}, {640, 238, 48, 85}, {498, 155, 34, 80}, {252, 215, 33, 50},
                               {400, 180, 61, 61}, {-10, 240, 50, 30}, {740, 500, 60, 100}};
    std::vector<std::unique_ptr<Pair>> pairs;
    for (const PixelRect& rect : rects) {
        for (const uint32_t mode : kModes) pairs.push_back(std::make_unique<Pair>(mode, rect));
    }
    int frames = 0;
    for (cv::Mat frame; clip.read(frame); ++frames) {
        SCOPED_TRACE(testing::Message() << "frame " << frames);
        for (const auto& pair : pairs) {
            pair->Update(frame);
            if (HasFatalFailure()) return;
        }
    }
    EXPECT_EQ(frames, 795);
    int found = 0;
    int lost = 0;
    for (const auto& pair : pairs) {
        found += pair->found;
        lost += pair->lost;
    }
    EXPECT_GT(found, 1000) << "the clip shows nothing that can be followed";
    EXPECT_GT(lost, 1000) << "the clip hides nothing";
}

TEST(MosseTracker, EqualsThePlainStepsForATargetThatCrosses) {
    const auto scene = [](int i) { return TargetAt({5 + 3 * i, 80 - 2 * i}); };
    EXPECT_GT(ExpectSameOverScene(scene, 60, RectAt({5, 80})), 60);
}

TEST(MosseTracker, EqualsThePlainStepsForATargetThatStopsAndGoes) {
    const auto scene = [](int i) { return Faded(TargetAt({40 + i / 3, 60 - i / 5}), 0.3, static_cast<uint64_t>(i)); };
    EXPECT_GT(ExpectSameOverScene(scene, 60, RectAt({40, 60})), 60);
}

TEST(MosseTracker, EqualsThePlainStepsForATargetThatFades) {
    // Somewhere on the way its peak passes the threshold, where the least deviation of the filter shows.
    int found = 0;
    for (uint64_t seed = 0; seed < 40; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        const auto scene = [seed](int i) {
            cv::Mat frame = Ground(120, 100);
            const cv::Mat target = Pattern(48, 45, seed);
            Draw(frame, Faded(target, i / 29.0, seed * 100 + static_cast<uint64_t>(i)), {20 + i, 30});
            return frame;
        };
        found += ExpectSameOverScene(scene, 30, {20, 30, 48, 45});
        if (HasFatalFailure()) return;
    }
    EXPECT_GT(found, 40 * 20);
    EXPECT_LT(found, 40 * 55);
}

TEST(MosseTracker, EqualsThePlainStepsInNoise) {
    for (uint64_t seed = 0; seed < 10; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        const auto scene = [seed](int i) { return RandomFrame(120, 90, seed * 1000 + static_cast<uint64_t>(i)); };
        ExpectSameOverScene(scene, 20, {40, 30, 40, 30});
        if (HasFatalFailure()) return;
    }
}

TEST(MosseTracker, EqualsThePlainStepsForWindowsOfAnySize) {
    const cv::Size sizes[] = {{2, 2}, {3, 2},  {2, 3},   {2, 9},   {3, 3},   {4, 3},   {5, 5},    {7, 7},
                              {9, 4}, {15, 9}, {13, 11}, {25, 27}, {50, 30}, {61, 61}, {64, 100}, {200, 160}};
    for (const cv::Size& size : sizes) {
        const auto scene = [](int i) { return MovingSquare(120, 90, i); };
        ExpectSameOverScene(scene, 12, {6, 30, static_cast<int16_t>(size.width), static_cast<int16_t>(size.height)});
        if (HasFatalFailure()) return;
    }
}

TEST(MosseTracker, EqualsThePlainStepsAcrossAndBeyondTheBorders) {
    const cv::Point places[] = {{-15, 40}, {105, 40},   {50, -15},  {50, 80},  {-20, -20},       {110, 82},
                                {-29, 30}, {-100, 300}, {500, 500}, {119, 89}, {-32768, -32768}, {32767, 32767}};
    for (const cv::Point& place : places) {
        const PixelRect rect = {static_cast<int16_t>(place.x), static_cast<int16_t>(place.y), 30, 24};
        ExpectSameOverScene([](int i) { return MovingSquare(120, 90, i); }, 12, rect);
        ExpectSameOverScene([](int i) { return RandomFrame(120, 90, static_cast<uint64_t>(i / 2)); }, 12, rect);
        if (HasFatalFailure()) return;
    }
}

TEST(MosseTracker, EqualsThePlainStepsForFramesOfAnySize) {
    for (const cv::Size& size : {cv::Size(1, 1), cv::Size(1, 50), cv::Size(50, 1), cv::Size(2, 2), cv::Size(17, 13),
                                 cv::Size(31, 33), cv::Size(101, 67)}) {
        SCOPED_TRACE(testing::Message() << "frame size " << size);
        const auto scene = [&](int i) { return MovingSquare(size.width, size.height, i / 2); };
        ExpectSameOverScene(scene, 8, {2, 3, 20, 15});
        if (HasFatalFailure()) return;
    }
}

TEST(MosseTracker, EqualsThePlainStepsWhenTheFramesSizeChanges) {
    const auto scene = [](int i) {
        const cv::Mat frame = TargetAt({40 + i, 40});
        return i % 3 == 1 ? frame(cv::Rect(0, 0, 90, 80)).clone() : frame;
    };
    EXPECT_GT(ExpectSameOverScene(scene, 20, RectAt({40, 40})), 20);
}

TEST(MosseTracker, FindsTheTargetInTheFrameThatTrainsIt) {
    for (const uint32_t mode : kModes) {
        Tracker tracker(mode);
        tracker.Update(TargetAt({60, 40}), RectAt({60, 40}));
        EXPECT_TRUE(tracker.Found()) << "mode " << mode;
        EXPECT_EQ(tracker.Rect(), RectAt({60, 40})) << "mode " << mode;
    }
}

TEST(MosseTracker, LearnsFromTheFrameThatTrainsItTwice) {
    // What is found in the first frame is blended in, upright, beside the turned samples. So the tracker still finds
    // faded targets that are lost to a filter which has only been trained.
    const cv::Mat frame = TargetAt({60, 40});
    int differences = 0;
    for (int i = 0; i < 50; ++i) {
        const cv::Mat faded = Faded(frame, i / 49.0, 1);
        Tracker tracker;
        tracker.Update(frame, RectAt({60, 40}));
        tracker.Update(faded, {});
        plain::MosseTracker trained(0, frame, RectAt({60, 40}));
        trained.Update(faded);
        if (tracker.Found() && !trained.found) ++differences;
    }
    EXPECT_GT(differences, 0);
}

TEST(MosseTracker, FollowsATargetThatMoves) {
    for (const uint32_t mode : kModes) {
        Tracker tracker(mode);
        for (int i = 0; i < 30; ++i) {
            const cv::Point place(20 + 3 * i, 70 - 2 * i);
            tracker.Update(TargetAt(place), RectAt(place));
            ASSERT_TRUE(tracker.Found()) << "mode " << mode << ", frame " << i;
            ASSERT_EQ(tracker.Rect(), RectAt(place)) << "mode " << mode << ", frame " << i;
        }
    }
}

TEST(MosseTracker, FollowsATargetAcrossTheLeftAndTheTopBorder) {
    Tracker tracker(1);
    for (int i = 0; i < 20; ++i) {
        const cv::Point place(10 - i, 10 - i);
        tracker.Update(TargetAt(place), RectAt(place));
        ASSERT_EQ(tracker.Rect(), RectAt(place)) << "frame " << i;
    }
}

/// A screen in front of the target.
cv::Mat Hidden(const cv::Point& place) {
    cv::Mat frame = TargetAt(place);
    cv::rectangle(frame, cv::Rect(place.x - 8, place.y - 8, kSide + 16, kSide + 16), cv::Scalar(90, 140, 60),
                  cv::FILLED);
    return frame;
}

TEST(MosseTracker, KeepsItsRectangleWhileTheTargetIsHidden) {
    for (const uint32_t mode : kModes) {
        Tracker tracker(mode);
        tracker.Update(TargetAt({60, 40}), RectAt({60, 40}));
        tracker.Update(TargetAt({63, 41}), {});
        for (int i = 0; i < 10; ++i) {
            tracker.Update(Hidden({64 + i / 4, 41}), {});
            ASSERT_FALSE(tracker.Found()) << "mode " << mode << ", frame " << i;
            ASSERT_EQ(tracker.Rect(), RectAt({63, 41})) << "mode " << mode << ", frame " << i;
        }
    }
}

TEST(MosseTracker, FindsATargetThatComesBackNearby) {
    for (const uint32_t mode : kModes) {
        Tracker tracker(mode);
        tracker.Update(TargetAt({60, 40}), RectAt({60, 40}));
        for (int i = 0; i < 5; ++i) tracker.Update(Hidden({60, 40}), {});
        tracker.Update(TargetAt({65, 37}), {});
        EXPECT_TRUE(tracker.Found()) << "mode " << mode;
        EXPECT_EQ(tracker.Rect(), RectAt({65, 37})) << "mode " << mode;
    }
}

TEST(MosseTracker, DoesNotFindATargetThatComesBackElsewhere) {
    Tracker tracker;
    tracker.Update(TargetAt({20, 20}), RectAt({20, 20}));
    for (int i = 0; i < 5; ++i) {
        tracker.Update(TargetAt({110, 70}), {});
        ASSERT_FALSE(tracker.Found()) << "frame " << i;
        ASSERT_EQ(tracker.Rect(), RectAt({20, 20})) << "frame " << i;
    }
}

TEST(MosseTracker, LearnsNothingWhileTheTargetIsHidden) {
    Tracker watched;
    Tracker spared;
    for (Tracker* tracker : {&watched, &spared}) tracker->Update(TargetAt({60, 40}), RectAt({60, 40}));
    for (int i = 0; i < 50; ++i) watched.Update(Hidden({60, 40}), {});
    for (int i = 0; i < 30; ++i) {
        const cv::Mat faded = Faded(TargetAt({60, 40}), i / 29.0, static_cast<uint64_t>(i));
        watched.Update(faded, {});
        spared.Update(faded, {});
        ASSERT_EQ(watched.Found(), spared.Found()) << "frame " << i;
        ASSERT_EQ(watched.Rect(), spared.Rect()) << "frame " << i;
    }
}

TEST(MosseTracker, AcceptsAFlatterPeakInModeOne) {
    const cv::Mat dim = Faded(TargetAt({60, 40}), 0.7, 1);
    std::array<bool, 2> found = {};
    for (const uint32_t mode : kModes) {
        Tracker tracker(mode);
        tracker.Update(TargetAt({60, 40}), RectAt({60, 40}));
        tracker.Update(dim, {});
        found[mode] = tracker.Found();
    }
    EXPECT_FALSE(found[0]);
    EXPECT_TRUE(found[1]);
}

TEST(MosseTracker, TakesAWindowThatSuitsTheTransform) {
    const std::pair<PixelRect, PixelRect> windows[] = {
        {{10, 20, 50, 30}, {10, 20, 50, 30}},  // suits it already
        {{10, 20, 61, 30}, {8, 20, 64, 30}},   // three more columns: one and a half, rounded down, to the left
        {{10, 20, 50, 31}, {10, 19, 50, 32}},
        {{-10, -20, 61, 97}, {-12, -22, 64, 100}},
    };
    for (const auto& [rect, window] : windows) {
        Tracker tracker;
        tracker.Update(PlainFrame(0), rect);
        EXPECT_EQ(tracker.Rect(), window) << rect;
    }
}

TEST(MosseTracker, CutsHalfAPixelTowardsZero) {
    // The left edge of an odd window lies half a pixel left of a whole one.
    for (const auto& [left, expected] : {std::pair(20, 19), {1, 0}, {0, 0}, {-1, -1}, {-5, -5}}) {
        Tracker tracker;
        tracker.Update(PlainFrame(0), {static_cast<int16_t>(left), static_cast<int16_t>(left), 15, 9});
        EXPECT_EQ(tracker.Rect().X, expected) << "from " << left;
        EXPECT_EQ(tracker.Rect().Y, expected) << "from " << left;
    }
}

TEST(MosseTracker, StoresTheLow16BitsOfItsRectangle) {
    Tracker tracker;
    tracker.Update(PlainFrame(0), {-32768, -32768, 61, 7});  // the window begins at -32770 and -32769
    EXPECT_EQ(tracker.Rect(), (PixelRect{32766, 32767, 64, 8}));
}

TEST(MosseTracker, DoesNotFindAPlainPatch) {
    for (const uint32_t mode : kModes) {
        for (int grey = 0; grey < 256; ++grey) {
            Tracker tracker(mode);
            tracker.Update(PlainFrame(grey), {20, 20, 40, 30});
            tracker.Update(PlainFrame(255 - grey), {});
            ASSERT_FALSE(tracker.Found()) << "mode " << mode << ", grey " << grey;
            ASSERT_EQ(tracker.Rect(), (PixelRect{20, 20, 40, 30})) << "mode " << mode << ", grey " << grey;
        }
    }
}

TEST(MosseTracker, LosesATargetThatVanishesIntoAPlainFrame) {
    for (const uint32_t mode : kModes) {
        for (int grey = 0; grey < 256; ++grey) {
            Tracker tracker(mode);
            tracker.Update(TargetAt({60, 40}), RectAt({60, 40}));
            ASSERT_TRUE(tracker.Found()) << "mode " << mode << ", grey " << grey;
            tracker.Update(PlainFrame(grey), {});
            ASSERT_FALSE(tracker.Found()) << "mode " << mode << ", grey " << grey;
        }
    }
}

TEST(MosseTracker, FindsNothingWhereTheSpectrumIsZero) {
    // Where the spectrum of the target is zero, so is the filter: the response is flat and the target lost. What is not
    // a number would pass for a peak, since it is below no threshold.
    const std::pair<cv::Mat, PixelRect> targets[] = {
        {PlainFrame(0), {20, 20, 40, 30}},          // black: the logarithm of 1 is 0
        {RandomFrame(120, 90, 1), {20, 20, 2, 2}},  // nothing is left of such windows by the taper
        {RandomFrame(120, 90, 1), {20, 20, 3, 2}},
        {RandomFrame(120, 90, 1), {20, 20, 2, 40}},
    };
    for (const auto& [frame, rect] : targets) {
        for (const uint32_t mode : kModes) {
            Tracker tracker(mode);
            for (int i = 0; i < 3; ++i) {
                tracker.Update(frame, rect);
                EXPECT_FALSE(tracker.Found()) << rect << ", mode " << mode << ", frame " << i;
                EXPECT_EQ(tracker.Rect().Width, rect.Width) << rect << ", mode " << mode << ", frame " << i;
            }
            const PixelRect before = tracker.Rect();
            tracker.Update(RandomFrame(120, 90, 2), rect);
            EXPECT_FALSE(tracker.Found()) << rect << ", mode " << mode;
            EXPECT_EQ(tracker.Rect(), before) << rect << ", mode " << mode;
        }
    }
}

TEST(MosseTracker, WarpsItsSamplesAroundTheirMiddle) {
    // The larger the window, the smaller the deviation of the warp that shows in a pixel.
    for (const cv::Size& size :
         {cv::Size(1, 1), cv::Size(2, 2), cv::Size(3, 2), cv::Size(45, 32), cv::Size(2000, 1500)}) {
        cv::Mat window;
        cv::cvtColor(RandomFrame(size.width, size.height, 4), window, cv::COLOR_BGR2GRAY);
        EXPECT_EQ(cv::norm(MosseTracker::randWarp(window), plain::MosseTracker::Warped(window), cv::NORM_INF), 0.0)
            << size;
    }
}

TEST(MosseTracker, WarpsEverySampleAlike) {
    cv::Mat window;
    cv::cvtColor(RandomFrame(48, 48, 4), window, cv::COLOR_BGR2GRAY);
    const cv::Mat first = MosseTracker::randWarp(window);
    for (int sample = 1; sample < 8; ++sample) {
        EXPECT_EQ(cv::norm(MosseTracker::randWarp(window), first, cv::NORM_INF), 0.0) << "sample " << sample;
    }
}

cv::Mat Complex(float real, float imaginary) {
    return {1, 1, CV_32FC2, cv::Scalar(real, imaginary)};
}

bool SameBits(const cv::Mat& a, const cv::Mat& b) {
    return a.size() == b.size() && a.type() == b.type() && a.isContinuous() && b.isContinuous() &&
           std::memcmp(a.data, b.data, a.total() * a.elemSize()) == 0;
}

cv::Mat RandomSpectrum(const cv::Size& size, uint64_t seed) {
    cv::Mat spectrum(size, CV_32FC2);
    cv::RNG(seed + 1).fill(spectrum, cv::RNG::UNIFORM, -100.0, 100.0);
    return spectrum;
}

TEST(MosseTracker, AddsEqualSamplesOneByOne) {
    for (const cv::Size& size : {cv::Size(1, 1), cv::Size(2, 3), cv::Size(45, 32), cv::Size(128, 128)}) {
        const cv::Mat sample = RandomSpectrum(size, 6);
        cv::Mat sum = cv::Mat::zeros(size, CV_32FC2);
        for (int i = 0; i < 8; ++i) cv::add(sum, sample, sum);
        EXPECT_TRUE(SameBits(MosseTracker::SumOfSamples(sample), sum)) << size;
    }
    const cv::Mat sample = RandomSpectrum({45, 32}, 6);
    cv::Mat product = sample * 8.0;
    EXPECT_FALSE(SameBits(MosseTracker::SumOfSamples(sample), product)) << "nothing tells a sum from a product";
    EXPECT_TRUE(SameBits(MosseTracker::SumOfSamples(Complex(-0.0F, -0.0F)), Complex(0.0F, 0.0F)));
}

cv::Vec2f Quotient(const cv::Mat& numerator, const cv::Mat& denominator) {
    return MosseTracker::divDFTs(numerator, denominator).at<cv::Vec2f>(0, 0);
}

TEST(MosseTracker, SumsTheCrossProductsOfItsDivision) {
    // (1 + 2i) / (3 + 4i): the real part is (1 * 3 + 2 * 4) / 25, the imaginary one -(2 * 3 + 1 * 4) / 25.
    EXPECT_EQ(Quotient(Complex(1, 2), Complex(3, 4)), cv::Vec2f(0.44F, -0.4F));
    EXPECT_EQ(Quotient(Complex(1, 2), Complex(4, 0)), cv::Vec2f(0.25F, -0.5F));
    EXPECT_EQ(Quotient(Complex(1, 2), Complex(0, 4)), cv::Vec2f(0.5F, -0.25F));
}

TEST(MosseTracker, AddsNothingToASmallDenominator) {
    const float small = 1.0F / 65536;
    EXPECT_EQ(Quotient(Complex(1, 2), Complex(small, 0)), cv::Vec2f(65536, -131072));
    EXPECT_EQ(Quotient(Complex(1, 2), Complex(0, small)), cv::Vec2f(131072, -65536));
}

TEST(MosseTracker, DividesAnythingByZeroToZero) {
    for (const auto& [real, imaginary] : {std::pair(0.0F, 0.0F), {1.0F, -2.0F}, {-3.0F, 0.0F}, {0.0F, 4.0F}}) {
        for (const float zero : {0.0F, -0.0F, 1e-30F}) {  // the square of the last one is 0 too
            EXPECT_EQ(Quotient(Complex(real, imaginary), Complex(zero, zero)), cv::Vec2f(0, 0))
                << real << " + " << imaginary << "i by " << zero;
        }
    }
}

TEST(MosseTracker, DividesSpectraAsThePlainStepsDo) {
    cv::RNG random(5);
    for (uint64_t round = 0; round < 200; ++round) {
        const cv::Size size(random.uniform(1, 40), random.uniform(1, 40));
        const cv::Mat numerator = RandomSpectrum(size, 2 * round);
        // Denominators from those whose squares vanish to those whose squares are infinite.
        cv::Mat denominator = RandomSpectrum(size, 2 * round + 1) * std::pow(10.0, random.uniform(-26.0, 18.0));
        for (int i = 0; i < size.height; ++i) denominator.at<cv::Vec2f>(i, i % size.width) = {0, 0};
        EXPECT_TRUE(SameBits(MosseTracker::divDFTs(numerator, denominator),
                             plain::MosseTracker::Divide(numerator, denominator)))
            << "round " << round;
    }
}

TEST(MosseTracker, NeedsARuleForZeroDenominators) {
    const cv::Mat zero = cv::Mat::zeros(1, 1, CV_32F);
    cv::Mat quotient;
    cv::divide(zero, zero, quotient);
    if (CV_VERSION_MAJOR >= 4) {
        EXPECT_TRUE(std::isnan(quotient.at<float>(0, 0))) << "the tests on zero denominators show nothing";
    } else {
        EXPECT_EQ(quotient.at<float>(0, 0), 0.0F);
    }
}

TEST(MosseTracker, StaysInTheStateNoResult) {
    Tracker tracker;
    EXPECT_EQ(tracker.Update(TargetAt({60, 40}), RectAt({60, 40})), NoResult);
    EXPECT_EQ(tracker.Update(TargetAt({61, 40}), {}), NoResult) << "found";
    EXPECT_EQ(tracker.Update(Hidden({61, 40}), {}), NoResult) << "lost";
}

TEST(MosseTracker, ReadsTheInitialRectangleOfTheFirstFrameOnly) {
    Tracker tracker;
    tracker.Update(TargetAt({60, 40}), RectAt({60, 40}));
    for (const PixelRect& rect : {PixelRect{0, 0, 20, 20}, PixelRect{0, 0, 0, 0}, PixelRect{-5, 3, -1, -1}}) {
        tracker.Update(TargetAt({60, 40}), rect);
        EXPECT_TRUE(tracker.Found()) << rect;
        EXPECT_EQ(tracker.Rect(), RectAt({60, 40})) << rect;
    }
}

TEST(MosseTracker, RefusesOtherModes) {
    for (const uint32_t mode : {2U, 3U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        auto options = FramedOptions<MosseTrackerOptions>();
        options->TrackerMode = mode;
        int host = 0;
        void* handle = &host;
        try {
            CreateCVMosseTracker(&handle, options.record());
            FAIL() << "no exception for mode " << mode;
        } catch (const std::invalid_argument& refusal) {
            EXPECT_EQ(refusal.what(),
                      "MosseTrackerOptions.TrackerMode is " + std::to_string(mode) + "; 0 or 1 is allowed");
        }
        EXPECT_EQ(handle, &host) << "mode " << mode;
    }
}

/// Frames that are refused.
std::vector<Image> BadImages() {
    static std::array<uint8_t, 3> pixel = {1, 2, 3};
    return {{nullptr, 160, 120, 480, 0},   {nullptr, 0, 0, 0, 0},         {nullptr, 0, 120, 0, 0},
            {nullptr, 160, 0, 480, 0},     {pixel.data(), 0, 0, 0, 0},    {pixel.data(), 0, 120, 0, 0},
            {pixel.data(), 160, 0, 0, 0},  {pixel.data(), -4, 5, -12, 0}, {pixel.data(), 4, -5, 12, 0},
            {pixel.data(), -4, -5, 12, 0}, {nullptr, -4, -5, 12, 0}};
}

TEST(MosseTracker, RefusesAFrameWithoutPixels) {
    for (const Image& image : BadImages()) {
        Tracker tracker;
        EXPECT_THROW(tracker.UpdateImage(image, RectAt({60, 40})), cv::Exception)
            << image.width << " x " << image.height << (image.data == nullptr ? ", null" : "");
    }
}

TEST(MosseTracker, RefusesATargetThatIsSmallerThanTwoByTwo) {
    const cv::Mat frame = TargetAt({60, 40});
    for (const cv::Size& size :
         {cv::Size(0, 0), cv::Size(1, 1), cv::Size(1, 20), cv::Size(20, 1), cv::Size(0, 20), cv::Size(20, 0),
          cv::Size(-4, 20), cv::Size(20, -4), cv::Size(-4, -4), cv::Size(-32768, -32768)}) {
        Tracker tracker;
        const PixelRect rect = {60, 40, static_cast<int16_t>(size.width), static_cast<int16_t>(size.height)};
        EXPECT_THROW(tracker.Update(frame, rect), cv::Exception) << size;
    }
}

TEST(MosseTracker, StartsWithTheFirstFrameThatIsNotRefused) {
    Tracker late;
    for (const Image& image : BadImages()) EXPECT_THROW(late.UpdateImage(image, RectAt({5, 5})), cv::Exception);
    for (const PixelRect& rect : {PixelRect{60, 40, 1, 20}, PixelRect{60, 40, -4, -4}}) {
        EXPECT_THROW(late.Update(TargetAt({5, 5}), rect), cv::Exception) << rect;
    }
    Tracker fresh;
    for (int i = 0; i < 20; ++i) {
        const cv::Point place(60 + 2 * i, 40 - i);
        for (Tracker* tracker : {&late, &fresh}) tracker->Update(TargetAt(place), RectAt(place));
        ASSERT_EQ(late.Rect(), RectAt(place)) << "frame " << i;
        ASSERT_EQ(late.Rect(), fresh.Rect()) << "frame " << i;
        ASSERT_EQ(late.Found(), fresh.Found()) << "frame " << i;
    }
}

TEST(MosseTracker, AFrameThatIsRefusedLaterChangesNothing) {
    Tracker disturbed;
    Tracker spared;
    for (int i = 0; i < 15; ++i) {
        cv::Mat frame = i % 4 == 3 ? Hidden({60, 40}) : TargetAt({60 + i / 2, 40});
        for (Tracker* tracker : {&disturbed, &spared}) tracker->Update(frame, RectAt({60, 40}));
        for (const Image& image : BadImages()) {
            EXPECT_THROW(disturbed.UpdateImage(image, RectAt({0, 0})), cv::Exception) << "frame " << i;
        }
        ASSERT_EQ(disturbed.Rect(), spared.Rect()) << "frame " << i;
        ASSERT_EQ(disturbed.Found(), spared.Found()) << "frame " << i;
    }
}

TEST(MosseTracker, AsksForAFrameBeforeAResult) {
    Tracker tracker;
    EXPECT_THROW(tracker.Result(), std::logic_error);
    EXPECT_THROW(tracker.UpdateImage({nullptr, 160, 120, 480, 0}, RectAt({60, 40})), cv::Exception);
    EXPECT_THROW(tracker.Result(), std::logic_error) << "a frame that is refused is none";
    tracker.Update(TargetAt({60, 40}), RectAt({60, 40}));
    EXPECT_NO_THROW(tracker.Result());
}

TEST(MosseTracker, AResultOutlivesTheTracker) {
    auto result = FramedResult<MosseTrackerResult>();
    {
        Tracker tracker;
        tracker.Update(TargetAt({60, 40}), RectAt({60, 40}));
        GetUpdateResult(tracker.handle, result.as<UpdateResult>());
        tracker.Update(TargetAt({63, 40}), {});
    }
    EXPECT_EQ(result->Found, 1);
    EXPECT_EQ(result->TargetRect, RectAt({60, 40}));
}

}  // namespace
