#pragma once

#include <string>

#include "Timing.h"

namespace quarry::host {

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

}  // namespace quarry::host
