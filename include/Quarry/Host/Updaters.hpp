/// @file
/// Operations that keep state from frame to frame of one stream. Their results show the updater's buffers, which its
/// next `Update` changes.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

#include "Quarry/Host/Operation.hpp"

namespace quarry {

/// The result of a BackgroundModel after its last frame; valid until its next `Update`.
class BackgroundPictures : public Current<BackgroundResult> {
public:
    using Current::Current;

    /// One byte per pixel: 255 foreground, 0 background.
    MaskView foreground() const { return {record().ForegroundMask, image().width, image().height}; }
    /// The background picture, with the last frame's timestamp.
    ImageView background() const { return {image().data, image().width, image().height, image().timestamp}; }

private:
    const Image& image() const { return *record().BackgroundImage; }
};

/// Background picture and foreground mask of a stream of frames. A frame of another size begins a new model.
class BackgroundModel : public detail::Updater<CreateCVBackgroundModel, BackgroundData> {
public:
    struct Options {
        /// 0..1: pixels that differ from the background by more than 60 - 20 x `sensitivity` grey levels are foreground
        float sensitivity = 0.5F;
        int historyLength = 500;       ///< frames; used only if no rate follows from the times
        float adaptationSeconds = 10;  ///< in which a learnt background takes over 88 % of a change
        float learningSpeedup = 4;     ///< divides `adaptationSeconds` while the background is being learnt; 0 does not
    };

    BackgroundModel() : BackgroundModel(Options{}) {}
    /// @throws std::invalid_argument  `sensitivity` is not in 0..1
    explicit BackgroundModel(const Options& options)
        : Updater({0, detail::Fraction("quarry::BackgroundModel::Options.sensitivity", options.sensitivity),
                   options.historyLength, options.adaptationSeconds, options.learningSpeedup}) {}

    /// Takes the next frame. Its pixels need not live longer than this call.
    /// @param frame  its timestamp is used: it must not be 0, nor earlier than that of the frame before it
    /// @return Accumulating while the background is being learnt, then Ready
    /// @throws std::invalid_argument  the timestamp is 0 or goes back
    /// @throws cv::Exception          the frame is empty
    UpdaterState Update(const ImageArgument& frame) {
        CheckClock(frame);
        pictures.reset();  // a frame that fails may have released the buffers
        const UpdaterState state = Take({0, frame.record(), 0});
        lastTimestamp = frame.timestamp();
        lastWidth = frame.width();
        lastHeight = frame.height();
        // The library reads the frame again when it makes the result, so ask for it while the frame still exists.
        pictures.emplace(handle());
        return state;
    }

    /// Valid until the next Update.
    /// @throws std::logic_error  there was no Update, or the last one failed
    BackgroundPictures Result() const {
        if (!pictures) throw std::logic_error("quarry::BackgroundModel: no frame was taken in; call Update first");
        return *pictures;
    }

private:
    void CheckClock(const ImageView& frame) const {
        if (frame.timestamp() == 0) {
            detail::Refuse(
                "quarry::BackgroundModel: the frame's timestamp is 0; 1 or more, in ticks of 100 ns, is "
                "needed");
        }
        const bool sameStream = frame.width() == lastWidth && frame.height() == lastHeight;
        if (sameStream && frame.timestamp() < lastTimestamp) {
            detail::Refuse("quarry::BackgroundModel: the frame's timestamp is " + std::to_string(frame.timestamp()) +
                           "; at least that of the frame before it, " + std::to_string(lastTimestamp) + ", is needed");
        }
    }

    uint64_t lastTimestamp = 0;  ///< ticks
    int lastWidth = 0;
    int lastHeight = 0;
    std::optional<BackgroundPictures> pictures;
};

/// The motion field that a DenseOpticalFlow found; valid until its next `Update`.
class FlowResult : public Current<OFCResult> {
public:
    using Current::Current;

    FlowView view() const { return {field().data, field().width, field().height}; }
    operator FlowView() const { return view(); }

    int width() const { return field().width; }
    int height() const { return field().height; }
    const AbsVector* data() const { return field().data; }
    /// @param x, y  inside the field; they are not checked
    const AbsVector& At(int x, int y) const { return view().At(x, y); }

private:
    const AbsVectorMatrix& field() const { return *record().FlowMatrix; }
};

/// How far every pixel moved from the previous frame to the current one. A frame of another size begins anew.
class DenseOpticalFlow : public detail::Updater<CreateCVDenseOpticalFlowCalculator, OFCData> {
public:
    struct Options {
        /// 0..1: side of the averaging window, from 27 down to 7 pixels; -1: 18 pixels.
        float detail = -1.0F;
        /// 0..1: pyramid levels and iterations, 0 to 10 each (1 iteration at exactly 0), with a Gaussian window above
        /// 0.7; -1: 5 levels and 3 iterations.
        float quality = -1.0F;
    };

    DenseOpticalFlow() : DenseOpticalFlow(Options{}) {}
    /// @throws std::invalid_argument  an option is neither in 0..1 nor -1
    explicit DenseOpticalFlow(const Options& options)
        : Updater({0, FractionOrDefault("quarry::DenseOpticalFlow::Options.detail", options.detail), 0,
                   FractionOrDefault("quarry::DenseOpticalFlow::Options.quality", options.quality)}) {}

    /// @param frame  R, G, B
    /// @return Ready from the second frame on
    UpdaterState Update(const ImageArgument& frame) { return Take({0, frame.record()}); }

    /// Valid until the next Update. After the first frame all displacements are 0.
    /// @throws std::logic_error  there was no Update
    FlowResult Result() const { return FlowResult(handle()); }

private:
    static float FractionOrDefault(const char* what, float value) {
        return value == -1.0F ? value : detail::Fraction(what, value);
    }
};

/// A rectangle in pixels.
struct Box {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

/// How a MosseTracker adapts.
enum class TrackerMode : uint32_t {
    Careful = 0,  ///< learning rate 0.2, peak-to-sidelobe threshold 5.7
    Eager = 1     ///< learning rate 0.3, peak-to-sidelobe threshold 3.0
};

/// Where a target is.
struct Track {
    Box target;  ///< the filter's window: as large as the started rectangle, or a little larger
    bool found;  ///< whether the last frame showed the target
};

/// Follows one rectangle through a stream of frames with a correlation filter.
class MosseTracker : public detail::Updater<CreateCVMosseTracker, MosseTrackerData> {
public:
    struct Options {
        TrackerMode mode = TrackerMode::Careful;
    };

    MosseTracker() : MosseTracker(Options{}) {}
    explicit MosseTracker(const Options& options) : Updater({0, {}, static_cast<uint32_t>(options.mode)}) {}

    /// Takes the first frame: trains the filter on the target, and searches the frame as Update does.
    /// @param target  2 x 2 pixels or more
    /// @return whether the target was found
    /// @throws std::invalid_argument  a value of the rectangle does not fit 16 bits
    /// @throws std::logic_error       it was started before: create another tracker for another target
    /// @throws cv::Exception          the frame is empty, or the rectangle too small; the tracker can be started again
    /// @throws std::bad_alloc         there is no memory (OpenCV may throw `cv::Exception` then); create another one
    bool Start(const ImageArgument& frame, const Box& target) {
        if (started)
            throw std::logic_error("quarry::MosseTracker: it follows a target already; create another tracker");
        Take({0,
              frame.record(),
              {detail::Short("quarry::Box.x", target.x), detail::Short("quarry::Box.y", target.y),
               detail::Short("quarry::Box.width", target.width), detail::Short("quarry::Box.height", target.height)}});
        started = true;
        return Result().found;
    }

    /// Takes the next frame.
    /// @return whether the target was found
    /// @throws std::logic_error  there was no Start
    bool Update(const ImageArgument& frame) {
        if (!started) throw std::logic_error("quarry::MosseTracker: it has no target; call Start with the first frame");
        Take({0, frame.record(), {}});
        return Result().found;
    }

    /// Where the target was in the last frame, or where it was found last.
    /// @throws std::logic_error  there was no Start
    Track Result() const {
        const Current<MosseTrackerResult> result(handle());
        const PixelRect& rect = result.record().TargetRect;
        return {{rect.X, rect.Y, rect.Width, rect.Height}, result.record().Found == 1};
    }

private:
    bool started = false;
};

}  // namespace quarry
