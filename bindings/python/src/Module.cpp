// The extension module behind the Python package.
#include <opencv2/core.hpp>

#include "Errors.h"
#include "Families.h"
#include "Quarry/Version.h"

namespace quarry::python {

namespace {

void Fill(py::module_& module) {
    module.doc() = "The operations of the package quarry, over the shared library.";
    module.attr("__version__") = QUARRY_VERSION;
    TranslateErrors();
    AddMeasures(module);
    AddFrames(module);
    AddContours(module);
    AddDetectors(module);
    AddUpdaters(module);
    module.def(
        "set_opencv_threads", &cv::setNumThreads, py::arg("count"),
        R"(Sets how many threads OpenCV uses for a single call, in the whole process; cv2.setNumThreads does the same.

count: 1: only the caller's thread; below 0: OpenCV's default, as before the first call)");
}

}  // namespace

}  // namespace quarry::python

// Does the same as PYBIND11_MODULE, which cannot refuse a sub-interpreter: pybind11 would wait without end if one loads
// the module first.
PYBIND11_PLUGIN_IMPL(_quarry) {
    if (PyInterpreterState_Get() != PyInterpreterState_Main()) {
        PyErr_SetString(PyExc_ImportError, "quarry: cannot be used in a sub-interpreter");
        return nullptr;
    }
    PYBIND11_CHECK_PYTHON_VERSION
    PYBIND11_ENSURE_INTERNALS_READY
    static PyModuleDef definition;
    auto module = pybind11::module_::create_extension_module("_quarry", nullptr, &definition);
    try {
        quarry::python::Fill(module);
        return module.ptr();
    }
    PYBIND11_CATCH_INIT_EXCEPTIONS
}
