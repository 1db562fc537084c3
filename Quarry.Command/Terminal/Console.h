#pragma once

#include <stdexcept>
#include <string>

namespace quarry::command {

/// Something cannot be done; the message is one line that names the file concerned.
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

constexpr int kExitFine = 0;
constexpr int kExitFailure = 1;
constexpr int kExitUsage = 2;
constexpr int kExitInterrupted = 130;

/// What the exception being handled says, whatever its kind; call it inside a `catch`.
std::string CurrentReason();

/// Writes `quarry: <message>` and a line end to stderr; line ends within the message become spaces.
void PrintError(const std::string& message);

/// While it lives, nothing written to stderr arrives: decoders write there on their own account.
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
