#include "FrameAnalyser.h"

namespace quarry::command {

nlohmann::ordered_json ObjectOf(const VideoFrame& frame, const FrameAnalyser& analyser) {
    nlohmann::ordered_json object = {{"frame", frame.index}, {"timestamp", frame.timestamp}};
    object.update(analyser.Fields());
    return object;
}

}  // namespace quarry::command
