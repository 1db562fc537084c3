#pragma once

#include <stdexcept>
#include <string>

namespace quarry::command {

/// Something could not be done. The message is one line and names the file concerned.
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

constexpr int kExitFine = 0;
constexpr int kExitFailure = 1;
constexpr int kExitUsage = 2;
constexpr int kExitInterrupted = 130;

/// The message of the exception that is being handled, of whatever type it is. Call it inside a `catch`.
std::string CurrentReason();

/// Writes `quarry: <message>` and a line end to stderr. Line ends within the message become spaces.
void PrintError(const std::string& message);

/// Discards what is written to stderr as long as the object lives, because decoders write messages of their own there.
class SilencedStderr {
public:
    SilencedStderr();
    SilencedStderr(const SilencedStderr&) = delete;
    SilencedStderr& operator=(const SilencedStderr&) = delete;
    ~SilencedStderr();

private:
    int saved;  ///< descriptor of the real stderr, -1 when there is none
};

}  // namespace quarry::command
