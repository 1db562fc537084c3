// Operations that keep state from frame to frame of one stream. Their results are copies, since the next frame changes
// the updater's buffers.
#include <array>
#include <cstdint>
#include <vector>

#include "Families.h"

namespace quarry::python {

namespace {

void AddBackground(py::module_& module) {
    const BackgroundModel::Options defaults;
    Class<BackgroundModel>(module, "BackgroundModel",
                           "Background picture and foreground mask of a stream of frames. A frame of another size "
                           "begins a new model.")
        .def(py::init([](float sensitivity, int historyLength, float adaptationSeconds, float learningSpeedup) {
                 return std::make_unique<Locked<BackgroundModel>>(
                     BackgroundModel::Options{sensitivity, historyLength, adaptationSeconds, learningSpeedup});
             }),
             py::kw_only(), py::arg("sensitivity") = defaults.sensitivity,
             py::arg("history_length") = defaults.historyLength,
             py::arg("adaptation_seconds") = defaults.adaptationSeconds,
             py::arg("learning_speedup") = defaults.learningSpeedup,
             R"(sensitivity: 0 to 1: pixels that differ from the background by more than 60 - 20 x sensitivity grey
    levels are foreground
history_length: frames; used only if no rate follows from the times
adaptation_seconds: time in which a learnt background takes over 88 % of a change
learning_speedup: divides adaptation_seconds while the background is being learnt; 0 does not

raises ValueError: sensitivity is not in 0 to 1)")
        .def(
            "update",
            [](Locked<BackgroundModel>& self, const py::array& frame, uint64_t timestamp, bool copy) {
                const Frame pixels("frame", frame, copy, Empty::Refused, timestamp);
                return self.Run([&](auto& model) { return model.Update(pixels); });
            },
            py::arg("frame"), py::arg("timestamp"), py::kw_only(), Copy(),
            R"(Takes the next frame. Returns State.ACCUMULATING while the background is being learnt, then State.READY.

frame: (height, width, 3) of uint8; each side 1 or more
timestamp: of the frame, in ticks of 100 ns; 1 or more, and never earlier than that of the frame before it
copy: whether to copy a frame that is not C-contiguous; it is refused otherwise
raises ValueError: the frame is of another type or shape, or the timestamp is 0 or goes back)")
        .def(
            "result",
            [](Locked<BackgroundModel>& self) {
                struct Pictures {
                    int height;
                    int width;
                    std::vector<uint8_t> mask;
                    std::vector<uint8_t> background;
                };
                Pictures pictures = self.Run([](auto& model) -> Pictures {
                    const BackgroundPictures shown = model.Result();
                    const MaskView mask = shown.foreground();
                    return {mask.height(), mask.width(), CopyOf(mask), CopyOf(shown.background())};
                });
                return Tuple("BackgroundResult",
                             ArrayOf<uint8_t>(std::move(pictures.mask), {pictures.height, pictures.width}),
                             ArrayOf<uint8_t>(std::move(pictures.background), {pictures.height, pictures.width, 3}));
            },
            R"(The result after the last frame, as a BackgroundResult. It is a copy: later frames do not change it.

raises RuntimeError: there was no update, or the last one failed)");
}

void AddFlow(py::module_& module) {
    const DenseOpticalFlow::Options defaults;
    Class<DenseOpticalFlow>(module, "DenseOpticalFlow",
                            "How far every pixel moved from the previous frame to the current one. A frame of another "
                            "size begins anew.")
        .def(py::init([](float detail, float quality) {
                 return std::make_unique<Locked<DenseOpticalFlow>>(DenseOpticalFlow::Options{detail, quality});
             }),
             py::kw_only(), py::arg("detail") = defaults.detail, py::arg("quality") = defaults.quality,
             R"(detail: 0 to 1: side of the averaging window, from 27 down to 7 pixels; -1: 18 pixels
quality: 0 to 1: pyramid levels and iterations, 0 to 10 each (1 iteration at exactly 0), with a Gaussian window above
    0.7; -1: 5 levels and 3 iterations

raises ValueError: an option is neither in 0 to 1 nor -1)")
        .def(
            "update",
            [](Locked<DenseOpticalFlow>& self, const py::array& frame, bool copy) {
                const Frame pixels("frame", frame, copy);
                return self.Run([&](auto& flow) { return flow.Update(pixels); });
            },
            py::arg("frame"), py::kw_only(), Copy(),
            R"(Takes the next frame. Returns State.READY from the second frame on.

frame: (height, width, 3) of uint8, R, G, B; each side 1 or more
copy: whether to copy a frame that is not C-contiguous; it is refused otherwise
raises ValueError: the frame is of another type or shape)")
        .def(
            "result",
            [](Locked<DenseOpticalFlow>& self) {
                struct Motion {
                    int height;
                    int width;
                    std::vector<AbsVector> field;
                };
                Motion motion = self.Run([](auto& flow) -> Motion {
                    const FlowView shown = flow.Result();
                    return {shown.height(), shown.width(), CopyOf(shown)};
                });
                return ArrayOf<float>(std::move(motion.field), {motion.height, motion.width, 2});
            },
            R"(The motion to the right and down, in pixels: (height, width, 2) of float32.

After the first frame all displacements are 0. It is a copy: later frames do not change it.
raises RuntimeError: there was no update)");
}

void AddTracker(py::module_& module) {
    Class<MosseTracker>(module, "MosseTracker",
                        "Follows one rectangle through a stream of frames with a correlation filter.")
        .def(py::init(
                 [](TrackerMode mode) { return std::make_unique<Locked<MosseTracker>>(MosseTracker::Options{mode}); }),
             py::kw_only(), py::arg_v("mode", TrackerMode::Careful, "TrackerMode.CAREFUL"), "mode: how it adapts")
        .def(
            "start",
            [](Locked<MosseTracker>& self, const py::array& frame, const std::array<int, 4>& target, bool copy) {
                const Frame pixels("frame", frame, copy);
                const Box box = {target[0], target[1], target[2], target[3]};
                return self.Run([&](auto& tracker) { return tracker.Start(pixels, box); });
            },
            py::arg("frame"), py::arg("target"), py::kw_only(), Copy(),
            R"(Takes the first frame: trains the filter on the target. Returns whether the target was found.

frame: (height, width, 3) of uint8, B, G, R; each side 1 or more
target: x, y, width, height in pixels; 2 x 2 or more
copy: whether to copy a frame that is not C-contiguous; it is refused otherwise
raises ValueError: the frame is of another type or shape, or a value of the target does not fit 16 bits
raises RuntimeError: it was started before; create another tracker for another target
raises OpenCVError: the target is too small; the tracker can be started again
raises MemoryError: there is no memory; create another tracker)")
        .def(
            "update",
            [](Locked<MosseTracker>& self, const py::array& frame, bool copy) {
                const Frame pixels("frame", frame, copy);
                return self.Run([&](auto& tracker) { return tracker.Update(pixels); });
            },
            py::arg("frame"), py::kw_only(), Copy(), R"(Takes the next frame. Returns whether the target was found.

frame: (height, width, 3) of uint8, B, G, R; each side 1 or more
copy: whether to copy a frame that is not C-contiguous; it is refused otherwise
raises ValueError: the frame is of another type or shape
raises RuntimeError: there was no start)")
        .def(
            "result",
            [](Locked<MosseTracker>& self) {
                const Track track = self.Run([](auto& tracker) { return tracker.Result(); });
                const Box& box = track.target;
                return Tuple("Track", Tuple("Box", box.x, box.y, box.width, box.height), track.found);
            },
            R"(Where the target is, as a Track.

raises RuntimeError: there was no start)");
}

}  // namespace

void AddUpdaters(py::module_& module) {
    AddBackground(module);
    AddFlow(module);
    AddTracker(module);
}

}  // namespace quarry::python
