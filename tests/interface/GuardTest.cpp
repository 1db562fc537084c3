// What a host in C cannot provoke: memory that runs out inside OpenCV.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>

#include "Quarry/Guard.h"
#include "support/FailingMatrix.h"
#include "support/Framed.h"

namespace {

using namespace quarry::test;

TEST(Guard, TellsOfALackOfMemoryInOpenCV) {
    auto options = FramedOptions<TransformOptions>();
    options->Width = 16;
    options->Height = 12;
    void* handle = nullptr;
    ASSERT_EQ(GuardCreateCVRotationTransformProcessor(&handle, options.record()), GuardOk);
    std::array<uint8_t, 576> pixels{};
    auto input = FramedInput<RotationTransformData>();
    input->Frame = {pixels.data(), 16, 12, 48, 0};
    auto result = FramedResult<TransformResult>();
    {
        const FailingMatrix failing(0);
        EXPECT_EQ(GuardProcess(handle, input.as<ProcessData>(), result.as<ProcessResult>()), GuardOutOfMemory);
        EXPECT_TRUE(failing.HasHappened());
    }
    EXPECT_STRNE(GuardMessage(), "");
    GuardDispose(handle);
}

}  // namespace
