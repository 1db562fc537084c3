#include "Console.h"

#include <Quarry/MarshalingException.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <new>
#include <opencv2/core.hpp>

namespace quarry::command {

std::string CurrentReason() {
    try {
        throw;
    } catch (const MarshalingException& wrongFrame) {
        return wrongFrame.what();
    } catch (const cv::Exception& refused) {
        return refused.err;
    } catch (const std::bad_alloc&) {
        return "not enough memory";
    } catch (const std::exception& other) {
        return other.what();
    }
}

void PrintError(const std::string& message) {
    std::string line = "quarry: " + message;
    std::replace_if(
        line.begin(), line.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
    std::fputs((line + '\n').c_str(), stderr);
}

SilencedStderr::SilencedStderr() : saved(dup(STDERR_FILENO)) {
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (saved >= 0 && nowhere >= 0) dup2(nowhere, STDERR_FILENO);
    if (nowhere >= 0) close(nowhere);
}

SilencedStderr::~SilencedStderr() {
    if (saved < 0) return;
    dup2(saved, STDERR_FILENO);
    close(saved);
}

}  // namespace quarry::command
