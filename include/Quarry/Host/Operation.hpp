/// @file
/// The base classes of all operations.
#pragma once

#include <cstdint>
#include <limits>
#include <string>

#include "Quarry/Host/Framed.hpp"
#include "Quarry/Host/Handle.hpp"
#include "Quarry/Host/Views.hpp"
#include "Quarry/Quarry.h"

namespace quarry::detail {

template <class Options>
Options OptionsTaken(void (*factory)(void**, Options*));

/// An operation of the library. It owns the handle that `kFactory` creates from its options record.
template <auto kFactory>
class Operation {
public:
    using OptionsRecord = decltype(OptionsTaken(kFactory));

    /// For calls of the C interface that the operation's type does not offer.
    const Handle& handle() const { return owned; }

protected:
    explicit Operation(const OptionsRecord& options) : owned(Create(kFactory, options)) {}

private:
    Handle owned;
};

/// A processor: takes an input record, gives a result record.
template <auto kFactory, class Input, class ResultRecord>
class Processor : public Operation<kFactory> {
protected:
    using Operation<kFactory>::Operation;

    /// Processes an input whose result holds no buffer.
    ResultRecord Value(const Input& input) {
        Framed<Input> framed(input);
        Framed<ResultRecord> result;
        ::Process(this->handle().get(), framed.template As<ProcessData>(), result.template As<ProcessResult>());
        return result.record();
    }
};

/// An updater: takes one frame after the other, gives a result record on demand.
template <auto kFactory, class Input>
class Updater : public Operation<kFactory> {
protected:
    using Operation<kFactory>::Operation;

    UpdaterState Take(const Input& input) {
        Framed<Input> framed(input);
        return static_cast<UpdaterState>(::Update(this->handle().get(), framed.template As<UpdateData>()));
    }
};

/// A pixel position or length as records hold it, in 16 bits.
/// @throws std::invalid_argument  it does not fit
inline int16_t Short(const char* what, int value) {
    if (value < std::numeric_limits<int16_t>::min() || value > std::numeric_limits<int16_t>::max()) {
        Refuse(std::string(what) + " is " + std::to_string(value) + "; -32768 to 32767 is allowed");
    }
    return static_cast<int16_t>(value);
}

/// Checks that a value lies in 0..1.
/// @throws std::invalid_argument  it does not, or is not a number
inline float Fraction(const char* what, float value) {
    if (!(0.0F <= value && value <= 1.0F)) {
        Refuse(std::string(what) + " is " + std::to_string(value) + "; 0 to 1 is allowed");
    }
    return value;
}

/// Checks that an output has pixels.
/// @throws std::invalid_argument  a side is below 1
inline void CheckOutputSize(const char* what, int width, int height) {
    if (width >= 1 && height >= 1) return;
    Refuse(std::string(what) + ": the size is " + SizeText(width, height) + "; each side must be 1 or more");
}

/// A contour for an input record. Its measures are 0, since they are not read.
/// @throws std::invalid_argument  there are no points
inline Contour ContourOf(const char* what, Span<FloatPoint> points) {
    if (points.empty()) Refuse(std::string(what) + ": 0 points are given; at least 1 is needed");
    return {Unconst(points.data()), CountOf(what, points.size()), 0.0F, 0.0F};
}

}  // namespace quarry::detail
