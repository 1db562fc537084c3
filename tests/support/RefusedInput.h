#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "Quarry/Quarry.h"
#include "support/Allocations.h"
#include "support/Framed.h"

namespace quarry::test {

/// What a processor says when it throws over an input. The call must leave a result record and memory as they were; the
/// test links Allocations.cpp.
template <class Exception, class Result, class Input>
std::string RefusalOfInput(void* handle, Framed<Input>& input) {
    std::string said;
    for (int call = 0; call < 2; ++call) {
        auto result = FramedResult<Result>(0xA5);
        const std::size_t before = LiveBlocks();
        try {
            Process(handle, input.template as<ProcessData>(), result.template as<ProcessResult>());
            ADD_FAILURE() << "no exception";
        } catch (const Exception& refusal) {
            said = refusal.what();
        }
        // What the first call keeps for good, and what it says, is kept once.
        if (call > 0) {
            EXPECT_EQ(LiveBlocks(), before);
        }
        for (const unsigned char byte : result.Bytes()) EXPECT_EQ(byte, 0xA5);
    }
    return said;
}

}  // namespace quarry::test
