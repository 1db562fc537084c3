#include "Quarry/Guard.h"

#include <cstring>
#include <exception>
#include <new>
#include <opencv2/core.hpp>
#include <stdexcept>

#include "Quarry/Memory.h"

namespace {

constexpr std::size_t kMessageSize = 512;
thread_local char message[kMessageSize];  // of fixed size: reporting a lack of memory must not need any

GuardStatus Failed(GuardStatus status, const char* reason) noexcept {
    std::strncpy(message, reason, kMessageSize - 1);
    return status;
}

/// The status of the exception that is being handled; its reason becomes the thread's message.
GuardStatus StatusOfException() noexcept {
    try {
        throw;
    } catch (const MarshalingException& refused) {
        return Failed(GuardMarshaling, refused.what());
    } catch (const cv::Exception& refused) {
        return Failed(refused.code == cv::Error::StsNoMem ? GuardOutOfMemory : GuardOpenCV, refused.what());
    } catch (const std::bad_alloc&) {
        return Failed(GuardOutOfMemory, "out of memory");
    } catch (const std::logic_error& refused) {
        return Failed(GuardBadArgument, refused.what());
    } catch (const std::exception& failure) {
        return Failed(GuardUnknown, failure.what());
    } catch (...) {
        return Failed(GuardUnknown, "an exception of unknown type");
    }
}

template <class Call>
int32_t Guarded(Call call) noexcept {
    message[0] = '\0';
    try {
        call();
        return GuardOk;
    } catch (...) {
        return StatusOfException();
    }
}

}  // namespace

extern "C" {

const char* GuardMessage(void) {
    return message;
}

int32_t GuardProcess(void* handle, ProcessData* input, ProcessResult* result) {
    return Guarded([&] { Process(handle, input, result); });
}

int32_t GuardDisposeResult(void* handle, ProcessResult* result) {
    return Guarded([&] { DisposeResult(handle, result); });
}

int32_t GuardUpdate(void* handle, UpdateData* data, int32_t* state) {
    return Guarded([&] {
        const int32_t reached = Update(handle, data);
        if (state != nullptr) *state = reached;
    });
}

int32_t GuardGetUpdateResult(void* handle, UpdateResult* result) {
    return Guarded([&] { GetUpdateResult(handle, result); });
}

int32_t GuardDispose(void* handle) {
    return Guarded([&] { Dispose(handle); });
}

int32_t GuardDestroyContourMaskProcessorResult(ContourMaskProcessorResult* result) {
    return Guarded([&] { DestroyContourMaskProcessorResult(result); });
}

// NOLINTBEGIN(bugprone-macro-parentheses): types do not stand in parentheses
#define QUARRY_GUARD_DEFINE(Name, Factory, Options, ...)      \
    int32_t Guard##Factory(void** handle, Options* options) { \
        return Guarded([&] { Factory(handle, options); });    \
    }
QUARRY_OPERATIONS(QUARRY_GUARD_DEFINE)
#undef QUARRY_GUARD_DEFINE
// NOLINTEND(bugprone-macro-parentheses)

}  // extern "C"
