#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include "Stopwatch.h"

namespace quarry::command {

/// A progress bar on stderr, with the rate and the time that is left. It is not drawn unless stderr is a terminal.
class Progress {
public:
    /// @param unit   what is counted, in the plural: "frames"
    /// @param total  how many there will be, 0 when unknown
    Progress(std::string label, std::string unit, int total);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { Clear(); }

    /// Counts one more and draws the bar again, at most ten times per second.
    void Advance();

    /// Removes the bar from the screen before a line is written to stderr. The next Advance draws it again.
    void Clear();

    /// Does the same before a line is written to stdout, when stdout is a terminal too.
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

/// Shows on stderr how many seconds a long step has taken so far. Nothing is drawn unless stderr is a terminal.
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
    std::thread drawer;  ///< runs only when stderr is a terminal
};

}  // namespace quarry::command
