// Compiled with NDEBUG, as a parent project may define it for all that it builds.
#include <gtest/gtest.h>

#include <cassert>

namespace {

TEST(AssertionsDeathTest, StayOnWhateverIsDefinedOutside) {
    const int points = 4;
    EXPECT_DEATH(assert(points == 5), "points == 5");
}

}  // namespace
