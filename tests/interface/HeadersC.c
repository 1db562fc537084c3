/* The public headers in a C host: they compile as C11, and every record lies as the table says. */
#include <stdlib.h>

#include "interface/Layouts.h"

/* The functions as C sees them; the addresses are never taken at run time, for nothing is linked. */
typedef void (*Processing)(void*, ProcessData*, ProcessResult*);
typedef void (*Disposing)(void*, ProcessResult*);
typedef int32_t (*Updating)(void*, UpdateData*);
typedef void (*Getting)(void*, UpdateResult*);
typedef void (*Ending)(void*);
typedef void (*CreatingSharpness)(void**, ProcessOptions*);
typedef void (*CreatingBackground)(void**, BackgroundOptions*);

// NOLINTNEXTLINE(bugprone-macro-parentheses): a type cannot stand in parentheses here
#define HAS_TYPE(function, type) _Static_assert(_Generic(&(function), type : 1, default : 0), #function)
HAS_TYPE(Process, Processing);
HAS_TYPE(DisposeResult, Disposing);
HAS_TYPE(Update, Updating);
HAS_TYPE(GetUpdateResult, Getting);
HAS_TYPE(Dispose, Ending);
HAS_TYPE(CreateCVLaplacianVarianceProcessor, CreatingSharpness);
HAS_TYPE(CreateCVBackgroundModel, CreatingBackground);

int main(void) {
    return CountWrongLayouts() == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
