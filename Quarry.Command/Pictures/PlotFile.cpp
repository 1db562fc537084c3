#include "PlotFile.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "Console.h"

namespace quarry::command {
namespace {

/// The system's own interpreter, for which its packages are, whatever else comes first on the path.
constexpr const char* kPython = "/usr/bin/python3";

struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Close>;

/// A file without a name.
File Scratch(const std::string& contents) {
    File file(std::tmpfile());
    if (!file || std::fwrite(contents.data(), 1, contents.size(), file.get()) != contents.size() ||
        std::fflush(file.get()) != 0) {
        throw Failure("a temporary file cannot be written: " + std::system_category().message(errno));
    }
    std::rewind(file.get());
    return file;
}

/// Where Python names the error that ended it.
std::string LastLine(std::FILE* file) {
    std::rewind(file);
    std::string last;
    std::string line;
    for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file)) {
        if (c != '\n') {
            line += static_cast<char>(c);
        } else if (!line.empty()) {
            last = std::move(line);
            line.clear();
        }
    }
    return line.empty() ? last : line;
}

/// @return what it was that kept Python from doing so, empty when it did
std::string Run(const std::vector<std::string>& arguments, const std::string& input) {
    std::vector<char*> argv = {const_cast<char*>(kPython)};
    for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    std::vector<char*> environment;
    for (char** variable = environ; *variable != nullptr; ++variable) environment.push_back(*variable);
    // What lies in the folder where the command runs is no part of Python.
    environment.push_back(const_cast<char*>("PYTHONSAFEPATH=1"));
    environment.push_back(nullptr);
    const File in = Scratch(input);
    const File err = Scratch("");
    posix_spawn_file_actions_t streams;
    posix_spawn_file_actions_init(&streams);
    posix_spawn_file_actions_adddup2(&streams, fileno(in.get()), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&streams, fileno(err.get()), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&streams, fileno(err.get()), STDERR_FILENO);
    pid_t child = 0;
    const int refused = posix_spawn(&child, kPython, &streams, nullptr, argv.data(), environment.data());
    posix_spawn_file_actions_destroy(&streams);
    if (refused != 0) return std::string(kPython) + ": " + std::system_category().message(refused);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return "";
    const std::string said = LastLine(err.get());
    return said.empty() ? std::string(kPython) + " was ended" : said;
}

}  // namespace

PlotFile::PlotFile(const std::filesystem::path& path_) : path(path_), file(path_) {
    // Before the video is looked at, which may take long.
    const std::string missing = Run({"-c", "import quarry.plot"}, "");
    if (!missing.empty()) throw Failure("--plot needs the packages python3-quarry and python3-matplotlib: " + missing);
}

void PlotFile::Draw(const nlohmann::json& values) {
    const std::string wrong = Run({"-m", "quarry.plot", file.temporary().string()}, values.dump());
    if (!wrong.empty()) throw Failure(path.string() + ": cannot be drawn: " + wrong);
    file.Keep();
}

}  // namespace quarry::command
