#include "OutputFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <string>
#include <system_error>
#include <utility>

#include "Console.h"

namespace quarry::host {
namespace {

constexpr int kEndingSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGPIPE};

/// What a signal that ends the command must remove; a free place is empty. Plain bytes: a handler may not allocate.
constexpr std::size_t kPlaces = 2;
char unfinished[kPlaces][PATH_MAX];

bool IsFree(std::size_t place) {
    return unfinished[place][0] == '\0';
}

void RemoveUnfinishedAndEnd(int signal) {
    for (const char* const name : unfinished) {
        if (*name != '\0') unlink(name);
    }
    std::signal(signal, SIG_DFL);
    raise(signal);
}

/// Lets a handler have all signals that end the command, but for those that are ignored.
void HandleEndingSignals(void (*handler)(int)) {
    for (const int signal : kEndingSignals) {
        if (std::signal(signal, handler) == SIG_IGN) std::signal(signal, SIG_IGN);
    }
}

std::size_t Remember(const std::string& path) {
    std::size_t place = 0;
    while (place < kPlaces && !IsFree(place)) ++place;
    if (place == kPlaces || path.size() >= sizeof unfinished[place]) return kPlaces;
    // The first byte last: until it is there, the place is free for a handler that comes in between.
    std::memcpy(unfinished[place] + 1, path.c_str() + 1, path.size());
    std::atomic_signal_fence(std::memory_order_release);
    unfinished[place][0] = path[0];
    HandleEndingSignals(RemoveUnfinishedAndEnd);
    return place;
}

void Forget(std::size_t place) {
    if (place == kPlaces) return;
    unfinished[place][0] = '\0';
    for (std::size_t other = 0; other < kPlaces; ++other) {
        if (!IsFree(other)) return;
    }
    HandleEndingSignals(SIG_DFL);
}

std::string TemporaryName(const std::filesystem::path& name) {
    return "." + name.stem().string() + ".unfinished-" + std::to_string(getpid()) + name.extension().string();
}

}  // namespace

OutputFile::OutputFile(std::filesystem::path name_)
    : name(std::move(name_)), temporaryName(name.parent_path() / TemporaryName(name)), place(kPlaces) {
    if (std::filesystem::is_directory(name)) throw Failure(name.string() + ": cannot be written: is a folder");
    place = Remember(temporaryName.string());  // before the file is there, or an interruption in between would leave it
    const int file = open(temporaryName.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file < 0) {
        const int reason = errno;
        Forget(place);
        throw Failure(name.string() + ": cannot be written: " + std::system_category().message(reason));
    }
    close(file);
}

OutputFile::~OutputFile() {
    if (temporaryName.empty()) return;
    std::error_code ignored;
    std::filesystem::remove(temporaryName, ignored);
    Forget(place);
}

void OutputFile::Keep() {
    std::error_code refused;
    std::filesystem::rename(temporaryName, name, refused);
    if (refused) throw Failure(name.string() + ": cannot be written: " + refused.message());
    temporaryName.clear();
    Forget(place);
}

}  // namespace quarry::host
