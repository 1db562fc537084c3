#include "OutputFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <string>
#include <system_error>
#include <utility>

#include "Console.h"

namespace quarry::host {
namespace {

constexpr int kEndingSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGPIPE};

/// What a signal that ends the command must remove; empty when there is nothing. Plain bytes: a handler may not
/// allocate.
char unfinished[PATH_MAX];

void RemoveUnfinishedAndEnd(int signal) {
    if (unfinished[0] != '\0') unlink(unfinished);
    std::signal(signal, SIG_DFL);
    raise(signal);
}

void Remember(const std::string& path) {
    if (path.size() >= sizeof unfinished) return;
    std::memcpy(unfinished, path.c_str(), path.size() + 1);
    for (const int signal : kEndingSignals) {
        if (std::signal(signal, RemoveUnfinishedAndEnd) == SIG_IGN) std::signal(signal, SIG_IGN);
    }
}

void Forget() {
    for (const int signal : kEndingSignals) {
        if (std::signal(signal, SIG_DFL) == SIG_IGN) std::signal(signal, SIG_IGN);
    }
    unfinished[0] = '\0';
}

std::string TemporaryName(const std::filesystem::path& name) {
    return "." + name.stem().string() + ".unfinished-" + std::to_string(getpid()) + name.extension().string();
}

}  // namespace

OutputFile::OutputFile(std::filesystem::path name_)
    : name(std::move(name_)), temporaryName(name.parent_path() / TemporaryName(name)) {
    if (std::filesystem::is_directory(name)) throw Failure(name.string() + ": cannot be written: is a folder");
    const int file = open(temporaryName.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file < 0) throw Failure(name.string() + ": cannot be written: " + std::strerror(errno));
    close(file);
    Remember(temporaryName.string());
}

OutputFile::~OutputFile() {
    if (temporaryName.empty()) return;
    std::error_code ignored;
    std::filesystem::remove(temporaryName, ignored);
    Forget();
}

void OutputFile::Keep() {
    std::error_code refused;
    std::filesystem::rename(temporaryName, name, refused);
    if (refused) throw Failure(name.string() + ": cannot be written: " + refused.message());
    temporaryName.clear();
    Forget();
}

}  // namespace quarry::host
