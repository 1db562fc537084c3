/// @file
/// Failures of the library as exceptions of Python.
#pragma once

namespace quarry::python {

/// Registers the translation of the library's failures to exceptions of Python: MarshalingError, OpenCVError and
/// MemoryError. pybind11 translates the exceptions of the standard library: std::invalid_argument to ValueError, for
/// example.
void TranslateErrors();

}  // namespace quarry::python
