#include "FrameAnalyser.h"

namespace quarry::command {

CLI::App* AddCommand(CLI::App& commandLine, const FrameOperation& operation, const std::string& footer) {
    CLI::App* const command = commandLine.add_subcommand(operation.name, operation.description);
    command->footer(footer);
    return command;
}

nlohmann::ordered_json ObjectOf(const VideoFrame& frame, const FrameByFrame& verb) {
    nlohmann::ordered_json object = {{"frame", frame.index}, {"timestamp", frame.timestamp}};
    object.update(verb.Fields());
    return object;
}

}  // namespace quarry::command
