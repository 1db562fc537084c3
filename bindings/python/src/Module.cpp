// The extension module behind the Python package.
#include <opencv2/core.hpp>

#include "Errors.h"
#include "Families.h"
#include "Quarry/Version.h"

PYBIND11_MODULE(_quarry, module) {
    module.doc() = "The operations of the package quarry, over the shared library.";
    module.attr("__version__") = QUARRY_VERSION;
    using namespace quarry::python;
    TranslateErrors();
    AddMeasures(module);
    AddFrames(module);
    AddContours(module);
    AddDetectors(module);
    AddUpdaters(module);
    module.def(
        "set_opencv_threads", &cv::setNumThreads, pybind11::arg("count"),
        R"(Lets OpenCV spread single calls over so many threads, in the whole process; cv2.setNumThreads does the same.

count: 1: over none but the caller's; below 0: as many as OpenCV finds right, as before the first call)");
}
