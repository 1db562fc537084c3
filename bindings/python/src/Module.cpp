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

/// The one module of the process, made when it is first imported.
PyObject* Import(PyObject* /*spec*/, PyModuleDef* /*definition*/) {
    static PyObject* made = nullptr;
    if (PyInterpreterState_Get() != PyInterpreterState_Main()) {
        PyErr_SetString(PyExc_ImportError, "quarry: cannot be used in a sub-interpreter");
        return nullptr;
    }
    try {
        if (made == nullptr) {
            PYBIND11_ENSURE_INTERNALS_READY
            auto module = py::reinterpret_steal<py::module_>(PyModule_New("quarry._quarry"));
            Fill(module);
            made = module.release().ptr();
        }
        Py_INCREF(made);
        return made;
    }
    PYBIND11_CATCH_INIT_EXCEPTIONS
}

}  // namespace

}  // namespace quarry::python

// PYBIND11_MODULE would initialise in one phase, which Python 3.13 carries out for sub-interpreters in the main one,
// where nobody can refuse them. In two phases `Import` is called by the interpreter that imports.
PYBIND11_PLUGIN_IMPL(_quarry) {
    PYBIND11_CHECK_PYTHON_VERSION
    static PyModuleDef_Slot slots[] = {{Py_mod_create, reinterpret_cast<void*>(&quarry::python::Import)}, {0, nullptr}};
    static PyModuleDef definition = {
        PyModuleDef_HEAD_INIT, "_quarry", nullptr, 0, nullptr, slots, nullptr, nullptr, nullptr};
    return PyModuleDef_Init(&definition);
}
