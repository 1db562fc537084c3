/* The public headers in a C host: they compile as C11, with records, frames and functions as hosts know them. */
#include <stddef.h>

#include "Quarry/Quarry.h"

/* The functions as C sees them; the addresses are never taken at run time, for nothing is linked. */
typedef void (*Processing)(void*, ProcessData*, ProcessResult*);
typedef void (*Disposing)(void*, ProcessResult*);
typedef int32_t (*Updating)(void*, UpdateData*);
typedef void (*Getting)(void*, UpdateResult*);
typedef void (*Ending)(void*);

// NOLINTNEXTLINE(bugprone-macro-parentheses): a type cannot stand in parentheses here
#define HAS_TYPE(function, type) _Static_assert(_Generic(&(function), type : 1, default : 0), #function)
HAS_TYPE(Process, Processing);
HAS_TYPE(DisposeResult, Disposing);
HAS_TYPE(Update, Updating);
HAS_TYPE(GetUpdateResult, Getting);
HAS_TYPE(Dispose, Ending);

/* The frame around records of every alignment. */
#define IS_FRAMED(type)                                                                          \
    typedef QUARRY_FRAMED(type) Framed##type;                                                    \
    _Static_assert(offsetof(Framed##type, Length) == 4, "the length is in front of the " #type); \
    _Static_assert(offsetof(Framed##type, Record) == 8, "the " #type " begins on eight bytes");  \
    _Static_assert(offsetof(Framed##type, Tag) == 8 + sizeof(type), "the tag is behind the " #type)
IS_FRAMED(VoLOutputData);
IS_FRAMED(ContourMaskProcessorOptions);
IS_FRAMED(BackgroundOptions);
IS_FRAMED(ColorComparingInputData);

_Static_assert(QUARRY_OPTIONS_TAG == 252645135, "the tag of options");
_Static_assert(QUARRY_INPUT_TAG == 284225776, "the tag of inputs");
_Static_assert(QUARRY_RESULT_TAG == 536805376, "the tag of results");
_Static_assert(QUARRY_MAX_RECORD_LENGTH == 120, "the longest record");
_Static_assert(NoResult == 0 && Accumulating == 1 && Ready == 2, "the states of an updater");
