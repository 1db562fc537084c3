#pragma once

namespace quarry::command {

/// While it lives, the first Ctrl-C asks for an end instead of making one, so that what is written can be completed;
/// another one ends the command as ever. One at a time.
class Interruption {
public:
    Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;
    ~Interruption();

    /// Whether an end was asked for.
    bool IsRequested() const;
};

}  // namespace quarry::command
