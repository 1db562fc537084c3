#pragma once

namespace quarry::command {

/// Turns the first Ctrl-C into a request, as long as the object lives, so that the command can complete what it writes
/// before it ends. A second Ctrl-C ends the command at once. Only one object may live at a time.
class Interruption {
public:
    Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;
    ~Interruption();

    /// Whether Ctrl-C was pressed.
    bool IsRequested() const;
};

}  // namespace quarry::command
