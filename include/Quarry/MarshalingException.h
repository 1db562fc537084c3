/// @file
/// What the library throws when the envelope around a record is wrong (C++).
#pragma once

#include "Quarry/Export.h"

/// A record's length word or tag is not what the call expects; nothing was read, changed or built.
///
/// It has no base class: catch it by name. The definition is inline, so that a host which loads the library at run time
/// can catch it too.
class QUARRY_API MarshalingException {
public:
    virtual const char* what() const noexcept { return "Analysis System data marshaling error"; }
};
