#include <cmath>
#include <opencv2/imgproc.hpp>
#include <opencv2/video/background_segm.hpp>
#include <utility>
#include <vector>

#include "Comparison.h"
#include "Quarry/Quarry.h"
#include "support/Footage.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::bench;

constexpr BackgroundOptions kOptions{0, 0.5F, 100, 10.0F, 5.0F};
constexpr float kThreshold = 50.0F;
constexpr uint64_t kTicksPerSecond = 10'000'000;
constexpr uint64_t kTicksPerFrame = kTicksPerSecond / 10;

/// The model in plain steps.
class PlainModel {
public:
    void Update(const cv::Mat& next, uint64_t timestamp) {
        const float seconds = static_cast<float>(timestamp - last) / static_cast<float>(kTicksPerSecond);
        const bool learning = learnt / kTicksPerSecond < static_cast<uint64_t>(period);
        const auto constant =
            static_cast<float>(static_cast<double>(learning ? period : kOptions.AdaptationTime) / 2.15);
        subtractor->apply(next, mask, static_cast<double>(1.0F - std::exp(-seconds / constant)));
        frame = next;
        if (last != 0) learnt += timestamp - last;
        last = timestamp;
    }

    void GetResult() {
        subtractor->getBackgroundImage(background);
        cv::absdiff(frame, background, difference);
        cv::cvtColor(difference, mask, cv::COLOR_BGR2GRAY);
        cv::threshold(mask, mask, static_cast<double>(kThreshold), 255.0, cv::THRESH_BINARY);
    }

    std::string Bytes() const { return BytesOf(mask) + BytesOf(background); }

private:
    cv::Ptr<cv::BackgroundSubtractorMOG2> subtractor =
        cv::createBackgroundSubtractorMOG2(kOptions.HistoryLength, 16.0, true);
    float period = kOptions.AdaptationTime / kOptions.LearningSpeedup;
    uint64_t last = 0;
    uint64_t learnt = 0;
    cv::Mat frame, mask, background, difference;
};

/// The library's model as a host drives it.
class LibraryModel {
public:
    void Update(const cv::Mat& next, uint64_t timestamp) {
        data->Image = quarry::test::ImageOf(next, timestamp);
        ::Update(handle.get(), data.as<UpdateData>());
    }

    void GetResult() { GetUpdateResult(handle.get(), result.as<UpdateResult>()); }

    std::string Bytes() {
        const Image& image = *result->BackgroundImage;
        return BytesOf(cv::Mat(image.height, image.width, CV_8U, result->ForegroundMask)) +
               BytesOf(cv::Mat(image.height, image.width, CV_8UC3, image.data));
    }

private:
    quarry::test::RawHandle handle = quarry::test::RawCreate(CreateCVBackgroundModel, kOptions);
    quarry::test::Framed<BackgroundData> data = quarry::test::FramedInput<BackgroundData>();
    quarry::test::Framed<BackgroundResult> result = quarry::test::FramedResult<BackgroundResult>();
};

/// A model in the middle of a stream of frames, which begins again and again.
template <class Model>
class Stream {
public:
    explicit Stream(std::vector<cv::Mat> given) : frames(std::move(given)) {
        for (std::size_t i = 0; i < frames.size(); ++i) Next();
    }

    void Next() {
        clock += kTicksPerFrame;
        model.Update(frames[taken++ % frames.size()], clock);
    }

    void GetResult() { model.GetResult(); }

    std::string Bytes() {
        model.GetResult();
        return model.Bytes();
    }

private:
    std::vector<cv::Mat> frames;
    Model model;
    std::size_t taken = 0;
    uint64_t clock = 1000 * kTicksPerSecond;
};

template <class Model>
Way Running(const std::vector<cv::Mat>& frames, void (Stream<Model>::*step)()) {
    const auto stream = std::make_shared<Stream<Model>>(frames);
    return {[stream, step] { (*stream.*step)(); }, [stream] { return stream->Bytes(); }};
}

void CompareOn(const std::vector<cv::Mat>& frames, const std::string& input) {
    Compare("BackgroundUpdating", {"Update", input, 1.0}, Running(frames, &Stream<PlainModel>::Next),
            Running(frames, &Stream<LibraryModel>::Next));
    Compare("BackgroundUpdating", {"GetUpdateResult", input, 1.0}, Running(frames, &Stream<PlainModel>::GetResult),
            Running(frames, &Stream<LibraryModel>::GetResult));
}

std::vector<cv::Mat> MovingSquares(int width, int height) {
    std::vector<cv::Mat> frames(12);
    for (std::size_t i = 0; i < frames.size(); ++i) {
        frames[i] = quarry::test::MovingSquare(width, height, static_cast<int>(i));
    }
    return frames;
}

}  // namespace

int main(int argc, char** argv) {
    CompareOn(MovingSquares(640, 480), "640x480");
    CompareOn(MovingSquares(1920, 1080), "1920x1080");
    const std::vector<cv::Mat> footage = quarry::test::PedestrianFrames(40);
    if (!footage.empty()) CompareOn(footage, "768x576 footage");
    return Run(argc, argv);
}
