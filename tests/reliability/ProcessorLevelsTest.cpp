#include <gtest/gtest.h>

#include <cstdio>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "support/AllOperations.h"

using namespace quarry::test;

namespace {

/// A line per operation, of a process whose OpenCV does without some of the processor's instructions.
std::vector<std::string> ResultsWithout(const std::string& instructions) {
    const std::string command = "OPENCV_CPU_DISABLE=" + instructions + " '" + QUARRY_RESULTS + "'";
    FILE* const pipe = popen(command.c_str(), "r");
    std::vector<std::string> lines;
    char line[128];
    while (std::fgets(line, sizeof line, pipe) != nullptr) lines.emplace_back(line);
    EXPECT_EQ(pclose(pipe), 0);
    return lines;
}

TEST(ProcessorLevels, ChangeNothingButMotionAndTheWeightsOfPeople) {
    const std::set<std::string> changing = {"DenseOpticalFlow", "PeopleDetector"};
    const std::vector<std::string> expected = ResultsWithout("");
    ASSERT_EQ(expected.size(), 2 * OperationNames().size());
    for (const char* const instructions : {"AVX512-SKX", "AVX2", "SSE4.1,SSE4.2,AVX,FP16,FMA3,AVX2,AVX512-SKX"}) {
        const std::vector<std::string> results = ResultsWithout(instructions);
        ASSERT_EQ(results.size(), expected.size()) << instructions;
        for (std::size_t i = 0; i < expected.size(); ++i) {
            const std::string name = results[i].substr(0, results[i].find(' '));
            if (changing.count(name) == 0) {
                EXPECT_EQ(results[i], expected[i]) << "without " << instructions;
            }
        }
    }
}

}  // namespace
