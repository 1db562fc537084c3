/// @file
/// The library's functions for hosts that cannot catch C++ exceptions: C, and other languages through their
/// foreign-function interfaces. They are in a separate shared object, `libQuarry.Guard.so`.
///
/// Each function does the same as the one without `Guard` in its name, on the same handles and records, and returns a
/// status instead of throwing. No exception leaves it. The preconditions are those of the library: the record checks
/// are the same, and the operations that abort the process on a wrong number of points (shape change rate, alignment)
/// still do.
#pragma once

#include "Quarry/Operations.h"
#include "Quarry/Quarry.h"

/// The outcome of a call. Only GuardOk means that the call did its work.
enum GuardStatus {
    GuardOk = 0,
    GuardMarshaling = 1,   ///< a record's length word or tag is wrong
    GuardBadArgument = 2,  ///< a null or unfit handle, a field out of its range, a call out of turn
    GuardOpenCV = 3,       ///< OpenCV refused the input
    GuardOutOfMemory = 4,  ///< the library or OpenCV could not allocate memory
    GuardUnknown = 5       ///< any other exception
};

#ifdef __cplusplus
extern "C" {
#endif

/// Why the last call of this thread failed; empty if it succeeded. Never null; valid until the thread's next call. A
/// reason longer than 511 bytes is cut.
QUARRY_API const char* GuardMessage(void);

/// See Process. @return a GuardStatus, as does every function below
QUARRY_API int32_t GuardProcess(void* handle, ProcessData* input, ProcessResult* result);

/// See DisposeResult.
QUARRY_API int32_t GuardDisposeResult(void* handle, ProcessResult* result);

/// See Update.
/// @param state  receives the updater's state if the call succeeds; may be null
QUARRY_API int32_t GuardUpdate(void* handle, UpdateData* data, int32_t* state);

/// See GetUpdateResult.
QUARRY_API int32_t GuardGetUpdateResult(void* handle, UpdateResult* result);

/// See Dispose.
QUARRY_API int32_t GuardDispose(void* handle);

/// Releases the grid that `DisposeResult` leaves in place, not the record itself. Null is allowed.
QUARRY_API int32_t GuardDestroyContourMaskProcessorResult(ContourMaskProcessorResult* result);

/// One function per factory, such as
/// `int32_t GuardCreateCVMosseTracker(void** handle, MosseTrackerOptions* options)`.
// NOLINTNEXTLINE(bugprone-macro-parentheses): types do not stand in parentheses
#define QUARRY_GUARD_DECLARE(Name, Factory, Options, ...) \
    QUARRY_API int32_t Guard##Factory(void** handle, Options* options);
QUARRY_OPERATIONS(QUARRY_GUARD_DECLARE)
#undef QUARRY_GUARD_DECLARE

#ifdef __cplusplus
}
#endif
