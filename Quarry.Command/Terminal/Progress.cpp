#include "Progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <utility>

namespace quarry::command {
namespace {

constexpr int kBarWidth = 24;
constexpr double kSecondsBetweenDrawings = 0.1;

/// Writes the text in place of the line that the cursor is on.
void Show(const std::string& text) {
    std::fputs(("\r" + text + "\033[K").c_str(), stderr);
    std::fflush(stderr);
}

std::string Bar(double share) {
    const auto filled = static_cast<std::size_t>(share * kBarWidth);
    return "[" + std::string(filled, '#') + std::string(kBarWidth - filled, '.') + "]";
}

std::string Duration(double seconds) {
    const auto whole = std::lround(seconds);
    return whole < 60 ? fmt::format("{} s", whole) : fmt::format("{}:{:02} min", whole / 60, whole % 60);
}

}  // namespace

Progress::Progress(std::string label_, std::string unit_, int total_)
    : label(std::move(label_)), unit(std::move(unit_)), total(total_), onTerminal(isatty(STDERR_FILENO) == 1) {}

void Progress::Advance() {
    ++done;
    if (!onTerminal || (drawn && watch.Seconds() - lastDrawn < kSecondsBetweenDrawings)) return;
    Draw();
}

void Progress::Clear() {
    if (drawn) std::fputs("\r\033[K", stderr);
    drawn = false;
}

void Progress::MakeWay() {
    if (drawn && isatty(STDOUT_FILENO) == 1) Clear();
}

void Progress::Draw() {
    lastDrawn = watch.Seconds();
    drawn = true;
    const double rate = done / std::max(lastDrawn, 1e-6);
    std::string line = fmt::format("  {} {}  {:.1f} {}/s", done, unit, rate, unit);
    if (total > 0) {
        const double share = std::min(1.0, static_cast<double>(done) / total);
        line = fmt::format(" {} {:3.0f} %  {}/{}  {:.1f} {}/s  {} left", Bar(share), share * 100, done, total, rate,
                           unit, Duration(std::max(0, total - done) / rate));
    }
    Show(label + line);
}

Waiting::Waiting(const std::string& label) {
    if (isatty(STDERR_FILENO) == 1) drawer = std::thread([this, label] { Draw(label); });
}

Waiting::~Waiting() {
    if (!drawer.joinable()) return;
    {
        const std::lock_guard lock(mutex);
        isOver = true;
    }
    ended.notify_one();
    drawer.join();
    std::fputs("\r\033[K", stderr);
}

void Waiting::Draw(const std::string& label) {
    std::unique_lock lock(mutex);
    do {
        Show(label + "  " + Duration(watch.Seconds()));
    } while (!ended.wait_for(lock, std::chrono::milliseconds(100), [this] { return isOver; }));
}

}  // namespace quarry::command
