// A host that links nothing: it loads the shared object, finds functions by name and catches what they throw.
#include <gtest/gtest.h>

#include <opencv2/core.hpp>
#include <stdexcept>

#include "interface/Library.h"
#include "support/Framed.h"
#include "support/Scenes.h"

namespace {

using namespace quarry::test;

class LoadedHandles : public testing::Test {
protected:
    void SetUp() override {
        auto options = FramedOptions<ProcessOptions>();
        library.Factory<ProcessOptions>("CreateCVLaplacianVarianceProcessor")(&handle, options.record());
        input->Image = ImageOf(frame);
    }
    void TearDown() override { library.Dispose(handle); }

    void Process() { library.Process(handle, input.as<ProcessData>(), result.as<ProcessResult>()); }

    const Library library;
    void* handle = nullptr;
    const cv::Mat frame = RandomFrame(16, 12, 4);
    Framed<VoLInputData> input = FramedInput<VoLInputData>();
    Framed<VoLOutputData> result = FramedResult<VoLOutputData>();
};

TEST_F(LoadedHandles, Work) {
    Process();
    EXPECT_GT(result->Variance, 100.0F);
    library.DisposeResult(handle, result.as<ProcessResult>());
    const cv::Mat uniform(12, 16, CV_8UC3, cv::Scalar(10, 200, 30));
    input->Image = ImageOf(uniform);
    Process();
    EXPECT_EQ(result->Variance, 0.0F);
}

TEST_F(LoadedHandles, ThrowWhatAHostCanCatchByType) {
    EXPECT_THROW(library.Process(nullptr, nullptr, nullptr), std::invalid_argument);
    EXPECT_THROW(library.Update(handle, nullptr), std::invalid_argument);
    input->Image.data = nullptr;
    EXPECT_THROW(Process(), cv::Exception);
    input.SetTag(0);
    EXPECT_THROW(Process(), MarshalingException);
}

}  // namespace
