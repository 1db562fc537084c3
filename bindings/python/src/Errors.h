/// @file
/// Failures of the library as exceptions of Python.
#pragma once

namespace quarry::python {

/// From here on, failures of the library become exceptions of Python: MarshalingError, OpenCVError, MemoryError. Those
/// of the standard library become what pybind11 makes of them: std::invalid_argument a ValueError, for example.
void TranslateErrors();

}  // namespace quarry::python
