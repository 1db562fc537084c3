#include "Progress.h"

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

std::string Bar(double share) {
    const auto filled = static_cast<std::size_t>(share * kBarWidth);
    return "[" + std::string(filled, '#') + std::string(kBarWidth - filled, '.') + "]";
}

std::string Duration(double seconds) {
    const auto whole = std::lround(seconds);
    char text[32];
    if (whole < 60) {
        std::snprintf(text, sizeof text, "%ld s", whole);
    } else {
        std::snprintf(text, sizeof text, "%ld:%02ld min", whole / 60, whole % 60);
    }
    return text;
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
    if (total > 0) {
        const double share = std::min(1.0, static_cast<double>(done) / total);
        const std::string left = Duration(std::max(0, total - done) / rate);
        std::fprintf(stderr, "\r%s %s %3.0f %%  %d/%d  %.1f %s/s  %s left\033[K", label.c_str(), Bar(share).c_str(),
                     share * 100, done, total, rate, unit.c_str(), left.c_str());
    } else {
        std::fprintf(stderr, "\r%s  %d %s  %.1f %s/s\033[K", label.c_str(), done, unit.c_str(), rate, unit.c_str());
    }
    std::fflush(stderr);
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
        std::fprintf(stderr, "\r%s  %s\033[K", label.c_str(), Duration(watch.Seconds()).c_str());
        std::fflush(stderr);
    } while (!ended.wait_for(lock, std::chrono::milliseconds(100), [this] { return isOver; }));
}

}  // namespace quarry::command
