#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include "Stopwatch.h"

namespace quarry::command {

/// A progress bar with rate and time left on stderr; nothing at all when stderr is not a terminal.
class Progress {
public:
    /// @param unit   what is counted, in the plural: "frames"
    /// @param total  how many there will be, 0 when unknown
    Progress(std::string label, std::string unit, int total);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { Clear(); }

    /// One more is done.
    void Advance();

    /// Takes the bar off the screen before a line is written to stderr; the next Advance draws it again.
    void Clear();

    /// The same before a line is written to stdout: only where that would show on the terminal too.
    void MakeWay();

private:
    void Draw();

    std::string label;
    std::string unit;
    int total;
    int done = 0;
    bool onTerminal;
    bool drawn = false;
    double lastDrawn = 0;  ///< seconds on the watch
    Stopwatch watch;
};

/// The same for one long step: a line on stderr with the seconds that have passed.
class Waiting {
public:
    explicit Waiting(const std::string& label);
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;
    ~Waiting();

private:
    void Draw(const std::string& label);

    Stopwatch watch;
    std::mutex mutex;
    std::condition_variable ended;
    bool isOver = false;
    std::thread drawer;  ///< not there when stderr is not a terminal
};

}  // namespace quarry::command
