#pragma once

#include "Quarry.Frame/DataChecker.h"
#include "Quarry.Frame/Disposable.h"

/// Keeps a copy of the options record O, so that the host may free its own as soon as the factory returns.
template <class O>
class Optioned : public Disposable {
protected:
    /// @throws MarshalingException    the record's envelope is wrong
    /// @throws std::invalid_argument  the record is null
    explicit Optioned(O* source) : options(Checked(source)) {}

    O options;

private:
    static const O& Checked(O* source) {
        quarry::CheckRecord(source, QUARRY_OPTIONS_TAG, "options");
        return *source;
    }
};
