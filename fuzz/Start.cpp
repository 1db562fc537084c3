#include <opencv2/core.hpp>

/// Called once before the first case: one thread, so that a case takes the same road each time.
extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    cv::setNumThreads(1);
    return 0;
}
