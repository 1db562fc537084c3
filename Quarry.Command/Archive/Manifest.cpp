#include "Manifest.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <map>
#include <set>
#include <system_error>

#include "Console.h"
#include "JsonLine.h"

namespace quarry::command {
namespace {

namespace fs = std::filesystem;

constexpr const char* kVideoEndings[] = {".3gp",   ".asf",  ".avi", ".divx", ".flv", ".m2ts", ".m4v",
                                         ".mjpeg", ".mjpg", ".mkv", ".mov",  ".mp4", ".mpeg", ".mpg",
                                         ".mts",   ".mxf",  ".ogv", ".ts",   ".vob", ".webm", ".wmv"};

bool IsNamedAsVideo(const fs::path& path) {
    std::string ending = path.extension().string();
    for (char& c : ending) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return std::find(std::begin(kVideoEndings), std::end(kVideoEndings), ending) != std::end(kVideoEndings);
}

[[noreturn]] void Refuse(const std::string& name, const std::string& reason) {
    throw CLI::ValidationError("--manifest", name + ": " + reason);
}

bool HoldsControlCharacters(const std::string& name) {
    return std::any_of(name.begin(), name.end(), [](unsigned char c) { return c < 0x20 || c == 0x7F; });
}

fs::path OutputOf(const std::string& name) {
    const fs::path within = fs::path(name).relative_path().lexically_normal();
    if (within.empty() || *within.begin() == "..") Refuse(name, "leads out of the folder of the outputs");
    if (!within.has_filename() || within == ".") Refuse(name, "is the name of a folder");
    fs::path output = within.string() + ".jsonl";
    if (output.filename().string().size() > NAME_MAX) {
        Refuse(name, "is too long: the name of its lines would have more than " + std::to_string(NAME_MAX) + " bytes");
    }
    return output;
}

std::vector<std::string> NamesBelow(const fs::path& folder) try {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        std::error_code ignored;  // a link that leads nowhere stays in the list, as a video that cannot be read
        if (IsNamedAsVideo(entry.path()) && !entry.is_directory(ignored)) {
            names.push_back(entry.path().lexically_relative(folder).string());
        }
    }
    return names;
} catch (const fs::filesystem_error& refused) {
    throw Failure(refused.path1().string() + ": cannot be read: " + refused.code().message());
}

std::vector<std::string> NamesIn(std::istream& stream, const std::string& manifest) {
    std::vector<std::string> names;
    for (std::string line; std::getline(stream, line);) {
        if (names.empty() && line.rfind("\xEF\xBB\xBF", 0) == 0) Refuse(manifest, "begins with a byte order mark");
        if (!line.empty() && line[0] != '#') names.push_back(line);
    }
    if (stream.bad()) throw Failure(manifest + ": cannot be read in full");
    return names;
}

}  // namespace

std::vector<ArchivedVideo> ReadManifest(const std::string& manifest) {
    std::vector<std::string> names;
    fs::path base;
    if (manifest == "-") {
        names = NamesIn(std::cin, "standard input");
        if (std::ferror(stdin) != 0)
            throw Failure("standard input: cannot be read in full");  // std::cin does not report it
    } else if (fs::is_directory(manifest)) {
        base = manifest;
        names = NamesBelow(base);
    } else {
        std::ifstream stream(manifest);
        if (!stream) throw Failure(manifest + ": cannot be read: " + std::system_category().message(errno));
        base = fs::path(manifest).parent_path();
        names = NamesIn(stream, manifest);
    }
    std::sort(names.begin(), names.end());
    std::vector<ArchivedVideo> videos;
    std::map<fs::path, std::string> known;
    std::set<std::string> replaced;
    for (const std::string& name : names) {
        if (HoldsControlCharacters(name)) Refuse(name, "holds a control character");
        const fs::path output = OutputOf(name);
        const auto [other, isNew] = known.emplace(output, name);
        if (!isNew) Refuse(name, other->second == name ? "stands there twice" : "is the same as " + other->second);
        const std::string shown = JsonLine(name);
        if (shown.find("\uFFFD") != std::string::npos && !replaced.insert(shown).second) {
            Refuse(name, "is not UTF-8, and cannot be told from another such name in the lines");
        }
        videos.push_back({name, fs::absolute(base / name), output});
    }
    for (const ArchivedVideo& video : videos) {
        if (video.output.string().find(".jsonl/") == std::string::npos) continue;
        for (fs::path folder = video.output.parent_path(); !folder.empty(); folder = folder.parent_path()) {
            const auto inTheWay = known.find(folder);
            if (inTheWay != known.end()) Refuse(video.name, "lies below the output of " + inTheWay->second);
        }
    }
    return videos;
}

}  // namespace quarry::command
