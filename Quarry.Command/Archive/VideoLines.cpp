#include "VideoLines.h"

#include <cstddef>
#include <system_error>

#include "Console.h"
#include "JsonLine.h"

namespace quarry::command {

VideoLines::VideoLines(const std::filesystem::path& path_, const std::string& head)
    : path(path_), file(path_), stream(file.temporary(), std::ios::binary) {
    Put(head);
}

void VideoLines::Put(const std::string& line) {
    stream.write(line.data(), static_cast<std::streamsize>(line.size()));
    if (!stream) throw Failure(path.string() + ": cannot be written in full");
}

void VideoLines::Write(const std::string& line) {
    Put(line);
    ++frames;
}

void VideoLines::Finish(const std::string& error) {
    nlohmann::ordered_json tail = {{"frames", frames}};
    if (!error.empty()) tail["error"] = error;
    Put(JsonLine(tail));
    stream.close();
    if (!stream) throw Failure(path.string() + ": cannot be written in full");
    file.Keep();
}

std::optional<FinishedLines> ReadFinished(const std::filesystem::path& path) {
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(path, ignored))
        return std::nullopt;  // opening a pipe would wait for a writer
    std::ifstream stream(path, std::ios::binary);
    FinishedLines lines;
    std::string last;
    std::size_t count = 0;
    for (std::string line; std::getline(stream, line); last.swap(line)) {
        if (stream.eof()) return std::nullopt;  // the last line has no end, so the file is not complete
        if (count++ == 0) lines.head = line + "\n";
    }
    using Json = nlohmann::json;
    const Json tail = Json::parse(last, nullptr, false);
    if (count < 2 || stream.bad() || !tail.is_object() || tail.value("frames", Json()) != count - 2)
        return std::nullopt;
    const Json error = tail.value("error", Json(""));
    if (!error.is_string()) return std::nullopt;
    lines.error = error;
    return lines;
}

}  // namespace quarry::command
