/// @file
/// An archive of small videos, and the command that scans and merges it.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "command/CommandFixture.h"

namespace quarry::test {

/// The command does without the instructions of AVX2 while this lives.
class WithoutAvx2 {
public:
    WithoutAvx2() { setenv(kVariable, "AVX2", 1); }
    WithoutAvx2(const WithoutAvx2&) = delete;
    WithoutAvx2& operator=(const WithoutAvx2&) = delete;
    ~WithoutAvx2() { unsetenv(kVariable); }

private:
    static constexpr const char* kVariable = "OPENCV_CPU_DISABLE";
};

class Archive : public QuarryCommand {
protected:
    void SetUp() override {
        QuarryCommand::SetUp();
        fs::create_directories(folder / "videos/deep/er");
    }

    /// Videos below `videos`, of different lengths.
    void WriteVideos(const std::vector<std::string>& names, cv::Size size = {96, 64}) const {
        int frames = 3;
        for (const std::string& name : names) WriteVideo("videos/" + name, frames++, size);
    }

    Outcome Scan(const std::string& operation, const std::string& out, const Arguments& more = {}) const {
        return Run(ScanArguments(operation, out, more));
    }

    static Arguments ScanArguments(const std::string& operation, const std::string& out, const Arguments& more = {}) {
        const bool isGiven = std::find(more.begin(), more.end(), "--manifest") != more.end();
        const Arguments manifest = isGiven ? Arguments() : Arguments{"--manifest", "videos"};
        return Arguments{"scan", operation, "--out", out} + manifest + more;
    }

    std::string Merged(const std::string& out) const {
        const Outcome outcome = Run({"merge", out});
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        return outcome.out;
    }

    /// All files below a folder, relative to it.
    std::set<std::string> FilesBelow(const std::string& place) const {
        std::set<std::string> names;
        if (!fs::exists(folder / place)) return names;
        for (const auto& entry : fs::recursive_directory_iterator(folder / place)) {
            if (!entry.is_directory()) names.insert(entry.path().lexically_relative(folder / place).string());
        }
        return names;
    }

    std::vector<json> LinesOf(const std::string& output) const { return JsonLines(ContentsOf(folder / output)); }
};

}  // namespace quarry::test
