#include "OutputFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <random>
#include <string>
#include <system_error>
#include <utility>

#include "Console.h"

namespace quarry::command {
namespace {

constexpr int kEndingSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGPIPE};
void (*before[std::size(kEndingSignals)])(int);  ///< the handlers from before there was an unfinished file

/// The names of the files that a signal that ends the command must remove. The name in a free place is empty. The names
/// are plain bytes, because a signal handler may not allocate.
constexpr std::size_t kPlaces = 2;
char unfinished[kPlaces][PATH_MAX];

bool IsFree(std::size_t place) {
    return unfinished[place][0] == '\0';
}

void RemoveUnfinishedAndEnd(int signal) {
    for (const char* const name : unfinished) {
        if (*name != '\0') unlink(name);
    }
    for (std::size_t i = 0; i < std::size(kEndingSignals); ++i) {
        if (kEndingSignals[i] == signal) std::signal(signal, before[i]);
    }
    raise(signal);
}

/// Takes over the signals that end the command, except those that are ignored.
void HandleEndingSignals() {
    for (std::size_t i = 0; i < std::size(kEndingSignals); ++i) {
        const auto handler = std::signal(kEndingSignals[i], RemoveUnfinishedAndEnd);
        if (handler == SIG_IGN) std::signal(kEndingSignals[i], SIG_IGN);
        if (handler != RemoveUnfinishedAndEnd) before[i] = handler;
    }
}

void LeaveEndingSignals() {
    for (std::size_t i = 0; i < std::size(kEndingSignals); ++i) std::signal(kEndingSignals[i], before[i]);
}

std::size_t Remember(const std::string& path) {
    std::size_t place = 0;
    while (place < kPlaces && !IsFree(place)) ++place;
    if (place == kPlaces || path.size() >= sizeof unfinished[place]) return kPlaces;
    // The first byte is written last, so that a handler that runs in between still sees a free place.
    std::memcpy(unfinished[place] + 1, path.c_str() + 1, path.size());
    std::atomic_signal_fence(std::memory_order_release);
    unfinished[place][0] = path[0];
    HandleEndingSignals();
    return place;
}

void Forget(std::size_t place) {
    if (place == kPlaces) return;
    unfinished[place][0] = '\0';
    for (std::size_t other = 0; other < kPlaces; ++other) {
        if (!IsFree(other)) return;
    }
    LeaveEndingSignals();
}

constexpr const char* kMark = ".unfinished-";
constexpr std::size_t kDigits = 16;

/// The digits are random rather than the number of the process: other machines may write into the same folder, and a
/// killed command may have left a file with any number.
std::string TemporaryName(const std::filesystem::path& name) {
    constexpr std::size_t kStem = 200;  // bytes, so that the whole name is not too long
    std::random_device random;
    return fmt::format(".{}{}{:08x}{:08x}{}", name.stem().string().substr(0, kStem), kMark, random(), random(),
                       name.extension().string());
}

/// @return 0, or the number of the error
int Sync(const std::filesystem::path& path) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) return errno;
    const int reason = fsync(file) == 0 ? 0 : errno;
    close(file);
    return reason;
}

[[noreturn]] void Refuse(const std::filesystem::path& name, int reason) {
    throw Failure(name.string() + ": cannot be written: " + std::system_category().message(reason));
}

}  // namespace

OutputFile::OutputFile(std::filesystem::path name_)
    : name(std::move(name_)), temporaryName(name.parent_path() / TemporaryName(name)), place(kPlaces) {
    if (std::filesystem::is_directory(name)) throw Failure(name.string() + ": cannot be written: is a folder");
    place =
        Remember(temporaryName.string());  // before there is a file, so that no signal finds one that it does not know
    const int file = open(temporaryName.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file < 0) {
        const int reason = errno;
        Forget(place);
        Refuse(name, reason);
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
    if (const int reason = Sync(temporaryName)) Refuse(name, reason);
    std::error_code refused;
    std::filesystem::rename(temporaryName, name, refused);
    if (refused) Refuse(name, refused.value());
    temporaryName.clear();
    Forget(place);
    // The folder is synchronised for the new name. Some file systems and some permissions do not allow that, so that
    // only errors of the disk count.
    const int reason = Sync(name.parent_path().empty() ? "." : name.parent_path());
    if (reason == EIO || reason == ENOSPC || reason == EDQUOT) Refuse(name, reason);
}

bool IsTemporary(const std::filesystem::path& path) {
    const std::string stem = path.stem().string();
    const std::size_t mark = stem.rfind(kMark);
    return stem[0] == '.' && mark != std::string::npos &&
           stem.find_first_not_of("0123456789abcdef", mark + std::strlen(kMark)) == std::string::npos &&
           stem.size() == mark + std::strlen(kMark) + kDigits;
}

}  // namespace quarry::command
