#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <opencv2/core.hpp>
#include <string>
#include <type_traits>
#include <utility>

#include "Quarry/Quarry.h"
#include "support/Framed.h"
#include "support/Operations.h"
#include "support/RawCalls.h"
#include "support/RefusedInput.h"

namespace quarry::test {

/// What a processor makes of an input, through the drivers. It is given back at the end of this.
template <class Operation>
class Called {
public:
    using Result = typename Operation::Result;

    Called(std::shared_ptr<void> processor, const typename Operation::Input& given) : handle(std::move(processor)) {
        auto input = FramedInput<typename Operation::Input>();
        *input = given;
        Process(handle.get(), input.template as<ProcessData>(), record.template as<ProcessResult>());
    }
    Called(const Called&) = delete;
    Called& operator=(const Called&) = delete;
    ~Called() { DisposeResult(handle.get(), record.template as<ProcessResult>()); }

    Result* operator->() { return record.record(); }

private:
    std::shared_ptr<void> handle;
    Framed<Result> record = FramedResult<Result>(0xA5);
};

/// The packed pixels of a result; they live as long as it does.
inline cv::Mat PixelsOf(const Image& image) {
    return {image.height, image.width, CV_8UC3, image.data};
}

/// One processor, called through the drivers.
template <class Operation>
class ProcessorTest : public testing::Test {
protected:
    using Options = typename Operation::Options;
    using Input = typename Operation::Input;

    explicit ProcessorTest(const Options& options = {}) { Create(options); }

    void Create(const Options& options) { handle = RawCreate(Operation::kFactory, options); }

    Called<Operation> Call(const Input& input) { return {handle, input}; }

    /// What a call says that must throw, and change nothing.
    template <class Exception>
    std::string RefusalOf(const Input& given) {
        auto input = FramedInput<Input>();
        *input = given;
        return RefusalOfInput<Exception, typename Operation::Result>(handle.get(), input);
    }

    /// @param message  the whole of what it says; of OpenCV, a part of it
    template <class Exception>
    void ExpectRefusal(const Input& input, const std::string& message = {}) {
        const std::string said = RefusalOf<Exception>(input);
        const bool isOpenCv = std::is_same_v<Exception, cv::Exception>;
        EXPECT_TRUE(isOpenCv ? said.find(message) != std::string::npos : message.empty() || said == message) << said;
    }

    std::shared_ptr<void> handle;
};

}  // namespace quarry::test
