#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <new>
#include <opencv2/core.hpp>
#include <optional>

#include "Quarry/Quarry.h"
#include "support/Allocations.h"
#include "support/FailingMatrix.h"

namespace quarry::test {

/// Whose memory runs short. That of OpenCV's other needs does not, since OpenCV itself leaks then.
enum class Memory { OfTheLibrary, OfMatrices };

/// Whether a call fails when `served` allocations are served and the next is not. Only what is documented may come of
/// it; a call that has not failed has needed no more than that.
template <class Call>
bool Fails(Memory memory, std::size_t served, Call call) {
    std::optional<FailingAllocation> allocation;
    std::optional<FailingMatrix> matrix;
    if (memory == Memory::OfTheLibrary) allocation.emplace(served, reinterpret_cast<const void*>(&Process));
    if (memory == Memory::OfMatrices) matrix.emplace(served);
    try {
        call();
    } catch (const std::bad_alloc&) {
        EXPECT_TRUE(allocation.has_value());
        return true;
    } catch (const cv::Exception&) {  // of any code: OpenCV may say in its own way what it misses
        EXPECT_TRUE(matrix.has_value());
        return true;
    }
    EXPECT_FALSE(allocation ? allocation->HasHappened() : matrix->HasHappened()) << "nobody heard of the failure";
    return false;
}

/// Tries with no allocation served, then with one, and so on, as long as the trial says that its call has failed.
/// @return how often it has
template <class Trial>
std::size_t CountFailures(Trial trial) {
    for (std::size_t served = 0;; ++served) {
        SCOPED_TRACE(testing::Message() << served << " served");
        if (!trial(served)) return served;
    }
}

}  // namespace quarry::test
