#include "Catalogue/Describing.h"
#include "Catalogue/Families.h"

namespace quarry::command {
namespace {

Record BackgroundOptionsRecord() {
    return QUARRY_RECORD(
        BackgroundOptions, "How fast the background is learnt and what differs from it.",
        QUARRY_FIELD(BackgroundOptions, Header, kHeader),
        QUARRY_FIELD(BackgroundOptions, Sensitivity, "0..1: grey levels above 60 - 20 x Sensitivity are foreground"),
        QUARRY_FIELD(BackgroundOptions, HistoryLength,
                     "frames of history; counts only where no rate follows from the times"),
        QUARRY_FIELD(BackgroundOptions, AdaptationTime,
                     "seconds in which a learnt background takes over most of a change"),
        QUARRY_FIELD(BackgroundOptions, LearningSpeedup,
                     "divides AdaptationTime while the background is being learnt; 0 divides nothing"));
}

Record BackgroundDataRecord() {
    return QUARRY_RECORD(
        BackgroundData, "The next frame; one of another size begins a new model.",
        QUARRY_FIELD(BackgroundData, Header, kHeader),
        QUARRY_FIELD(BackgroundData, Image,
                     "8-bit B, G, R, rows packed; stride is not read; its pixels must live until GetUpdateResult"),
        QUARRY_FIELD(BackgroundData, Reserved, kNotRead));
}

Record BackgroundResultRecord() {
    return QUARRY_RECORD(
        BackgroundResult, "Foreground and background. The buffers stay the updater's, valid until the next Update.",
        QUARRY_FIELD(BackgroundResult, Status, kStatus),
        QUARRY_FIELD(BackgroundResult, ForegroundMask, "one byte per pixel, rows packed: 255 foreground, 0 background"),
        QUARRY_FIELD(BackgroundResult, BackgroundImage, "of the frame's size, 3 channels, rows packed"),
        QUARRY_FIELD(BackgroundResult, ReservedImage, "of the same geometry; only its timestamp is written"));
}

Operation BackgroundModel() {
    return {
        "background-model",
        "Background image and foreground mask of a stream: a mixture of Gaussians per pixel",
        Kind::Updater,
        "CreateCVBackgroundModel",
        "background",
        "Zivkovic, ICPR 2004",
        BackgroundOptionsRecord(),
        BackgroundDataRecord(),
        BackgroundResultRecord(),
        {kWrongFrame, kNoFrame, {"std::invalid_argument", "the frame has more than 2147483647 bytes"}, kNoResultYet}};
}

Operation MosseTracker() {
    return {
        "mosse-tracker",
        "Follows one rectangle through a stream of frames with a correlation filter",
        Kind::Updater,
        "CreateCVMosseTracker",
        "track",
        "Bolme et al., CVPR 2010",
        QUARRY_RECORD(MosseTrackerOptions, "How the filter adapts.", QUARRY_FIELD(MosseTrackerOptions, Header, kHeader),
                      QUARRY_FIELD(MosseTrackerOptions, Reserved, kNotRead),
                      QUARRY_FIELD(MosseTrackerOptions, TrackerMode,
                                   "0: learning rate 0.2, peak-to-sidelobe threshold 5.7; 1: 0.3 and 3.0")),
        QUARRY_RECORD(MosseTrackerData, "The next frame.", QUARRY_FIELD(MosseTrackerData, Header, kHeader),
                      QUARRY_FIELD(MosseTrackerData, Image, kBgr),
                      QUARRY_FIELD(MosseTrackerData, InitialRect,
                                   "the target in the first frame, 2 x 2 pixels or more; not read later")),
        QUARRY_RECORD(MosseTrackerResult, "Where the target is; holds no buffer. The state is always NoResult.",
                      QUARRY_FIELD(MosseTrackerResult, Status, kStatus),
                      QUARRY_FIELD(MosseTrackerResult, TargetRect, "the filter's window, pixels"),
                      QUARRY_FIELD(MosseTrackerResult, Found, "1 when the last frame showed the target, else 0"),
                      QUARRY_FIELD(MosseTrackerResult, Zero, "always 0")),
        {kWrongFrame,
         kNoFrame,
         {"cv::Exception", "the rectangle is smaller than 2 x 2; the tracker stays as it was"},
         {"std::invalid_argument", "TrackerMode is neither 0 nor 1 (when created)"},
         kNoResultYet}};
}

}  // namespace

std::vector<Operation> StreamOperations() {
    return {BackgroundModel(), MosseTracker()};
}

}  // namespace quarry::command
