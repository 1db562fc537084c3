#include "Errors.h"

#include <pybind11/pybind11.h>

#include <exception>
#include <opencv2/core.hpp>
#include <utility>

#include "Quarry/MarshalingException.h"
#include "Types.h"

namespace quarry::python {

namespace {

void Raise(const py::object& error) {
    PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(error.ptr())), error.ptr());
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
                Raise(Type("OpenCVError")(refused.what(), refused.code, refused.func, refused.err, refused.file,
                                          refused.line));
            }
        }
    });
}

}  // namespace quarry::python
