#include "Errors.h"

#include <pybind11/pybind11.h>

#include <exception>
#include <opencv2/core.hpp>
#include <stdexcept>
#include <string>
#include <utility>

#include "Quarry/MarshalingException.h"
#include "Types.h"

namespace quarry::python {

namespace {

void Raise(const py::object& error) {
    PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(error.ptr())), error.ptr());
}

/// A message, which may hold a path of any bytes: those that are not UTF-8 come as they do in the path.
py::object Text(const std::string& message) {
    PyObject* const text =
        PyUnicode_DecodeUTF8(message.data(), static_cast<Py_ssize_t>(message.size()), "surrogateescape");
    if (text == nullptr) throw py::error_already_set();
    return py::reinterpret_steal<py::object>(text);
}

}  // namespace

void TranslateErrors() {
    py::register_exception_translator([](std::exception_ptr failure) {
        try {
            if (failure) std::rethrow_exception(std::move(failure));
        } catch (const MarshalingException& refused) {
            Raise(Type("MarshalingError")(refused.what()));
        } catch (const cv::Exception& refused) {
            if (refused.code == cv::Error::StsNoMem) {
                PyErr_SetString(PyExc_MemoryError, refused.what());
            } else {
                Raise(Type("OpenCVError")(Text(refused.what()), refused.code, Text(refused.func), Text(refused.err),
                                          refused.file, refused.line));
            }
        } catch (const std::invalid_argument& refused) {
            PyErr_SetObject(PyExc_ValueError, Text(refused.what()).ptr());
        }
    });
}

}  // namespace quarry::python
