/// @file
/// The library's functions for hosts that cannot catch C++ exceptions: C, and other languages through their
/// foreign-function interfaces. They stand in a shared object of their own, `libQuarry.Guard.so`.
///
/// Each function does what the one without `Guard` in its name does, on the same handles and records, and tells by its
/// status how that went. Nothing unwinds out of it. What it must not be given, it must not be given here either: the
/// record checks are those of the library, and the operations that abort the process on a wrong number of points (shape
/// change rate, alignment) still do.
#pragma once

#include "Quarry/Operations.h"
#include "Quarry/Quarry.h"

/// How a call went. Only GuardOk means that anything was done.
enum GuardStatus {
    GuardOk = 0,
    GuardMarshaling = 1,   ///< a record's length word or tag is wrong
    GuardBadArgument = 2,  ///< a null or unfit handle, a field out of its range, a call out of turn
    GuardOpenCV = 3,       ///< OpenCV refused
    GuardOutOfMemory = 4,  ///< for the library or for OpenCV
    GuardUnknown = 5
};

#ifdef __cplusplus
extern "C" {
#endif

/// Why the last call of this thread failed; empty when it did not. Valid until the thread's next call, never null; long
/// reasons are cut at 511 bytes.
QUARRY_API const char* GuardMessage(void);

/// See Process. @return a GuardStatus, as does every function below
QUARRY_API int32_t GuardProcess(void* handle, ProcessData* input, ProcessResult* result);

/// See DisposeResult.
QUARRY_API int32_t GuardDisposeResult(void* handle, ProcessResult* result);

/// See Update.
/// @param state  where the updater's state goes when the call succeeds; may be null
QUARRY_API int32_t GuardUpdate(void* handle, UpdateData* data, int32_t* state);

/// See GetUpdateResult.
QUARRY_API int32_t GuardGetUpdateResult(void* handle, UpdateResult* result);

/// See Dispose.
QUARRY_API int32_t GuardDispose(void* handle);

/// Releases the grid that `DisposeResult` leaves in place; its record is the host's. Null is allowed.
QUARRY_API int32_t GuardDestroyContourMaskProcessorResult(ContourMaskProcessorResult* result);

/// One function per factory: `int32_t GuardCreateCVMosseTracker(void** handle, MosseTrackerOptions* options)` and so
/// on.
// NOLINTNEXTLINE(bugprone-macro-parentheses): types do not stand in parentheses
#define QUARRY_GUARD_DECLARE(Name, Factory, Options, ...) \
    QUARRY_API int32_t Guard##Factory(void** handle, Options* options);
QUARRY_OPERATIONS(QUARRY_GUARD_DECLARE)
#undef QUARRY_GUARD_DECLARE

#ifdef __cplusplus
}
#endif
