#include <cmath>

#include "host/CommandFixture.h"

using namespace quarry::test;

namespace {

constexpr std::size_t kLength = 512;

std::vector<double> RandomEmbedding(uint64_t seed) {
    cv::RNG random(seed);
    std::vector<double> values(kLength);
    for (double& value : values) value = random.gaussian(1);
    return values;
}

double Cosine(const std::vector<double>& first, const std::vector<double>& second) {
    double product = 0;
    double firstSquared = 0;
    double secondSquared = 0;
    for (std::size_t i = 0; i < kLength; ++i) {
        product += first[i] * second[i];
        firstSquared += first[i] * first[i];
        secondSquared += second[i] * second[i];
    }
    return product / (std::sqrt(firstSquared) * std::sqrt(secondSquared));
}

class SimilarityCommand : public QuarryCommand {
protected:
    void Write(const std::string& name, const std::vector<double>& values) const {
        WriteText(name, json(values).dump());
    }

    double Similarity(const std::string& first, const std::string& second) const {
        const Outcome outcome = Run({"similarity", first, second, "--json"});
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        const json line = JsonLines(outcome.out).at(0);
        EXPECT_EQ(line.at("first"), first);
        EXPECT_EQ(line.at("second"), second);
        return line.at("similarity").get<double>();
    }
};

TEST_F(SimilarityCommand, IsTheCosineOfTheAngle) {
    const std::vector<double> first = RandomEmbedding(1);
    std::vector<double> second = RandomEmbedding(2);
    Write("first.json", first);
    Write("second.json", second);
    EXPECT_NEAR(Similarity("first.json", "second.json"), Cosine(first, second), 1e-5);
    for (std::size_t i = 0; i < kLength; ++i) second[i] = first[i] + second[i] / 2;
    Write("near.json", second);
    EXPECT_NEAR(Similarity("first.json", "near.json"), Cosine(first, second), 1e-5);
    EXPECT_NEAR(Similarity("first.json", "first.json"), 1, 1e-5);
    for (double& value : second) value = -value;
    Write("opposite.json", second);
    EXPECT_NEAR(Similarity("near.json", "opposite.json"), -1, 1e-5);
}

TEST_F(SimilarityCommand, TakesWholeNumbersAndWhiteSpace) {
    std::string text = "[\n";
    for (std::size_t i = 0; i < kLength; ++i) text += (i > 0 ? " ,\n" : "") + std::to_string(i % 7);
    WriteText("whole.json", text + "\n]\n");
    EXPECT_NEAR(Similarity("whole.json", "whole.json"), 1, 1e-5);
}

TEST_F(SimilarityCommand, WithoutJsonTellsTheSameInWords) {
    const std::vector<double> first = RandomEmbedding(1);
    const std::vector<double> second = RandomEmbedding(2);
    Write("first.json", first);
    Write("second.json", second);
    const Outcome outcome = Run({"similarity", "first.json", "second.json"});
    EXPECT_EQ(outcome.exitCode, 0);
    std::istringstream words(outcome.out);
    std::string name;
    double value = 0;
    words >> name >> value;
    EXPECT_EQ(name, "similarity");
    EXPECT_NEAR(value, Cosine(first, second), 1e-5);
    EXPECT_EQ(Lines(outcome.out).size(), 1U);
}

TEST_F(SimilarityCommand, OfZerosIsNotANumber) {
    Write("zeros.json", std::vector<double>(kLength, 0.0));
    Write("some.json", RandomEmbedding(1));
    const json line = JsonLines(Run({"similarity", "zeros.json", "some.json", "--json"}).out).at(0);
    EXPECT_TRUE(line.at("similarity").is_null());
    EXPECT_NE(Run({"similarity", "zeros.json", "some.json"}).out.find("not a number"), std::string::npos);
}

TEST_F(SimilarityCommand, NamesTheFileAndWhatIsWrongWithIt) {
    Write("good.json", RandomEmbedding(1));
    Write("short.json", std::vector<double>(511, 1.0));
    Write("long.json", std::vector<double>(513, 1.0));
    WriteText("none.json", "[]");
    WriteText("object.json", R"({"embedding": [1, 2]})");
    WriteText("text.json", "not JSON at all");
    WriteText("half.json", "[1, 2,");
    WriteText("empty.json", "");
    json values = std::vector<double>(kLength, 1.0);
    values[16] = "seventeen";
    WriteText("word.json", values.dump());
    values[16] = nullptr;
    WriteText("null.json", values.dump());
    values[16] = 1e39;
    WriteText("large.json", values.dump());
    fs::create_directory(folder / "folder.json");
    const std::vector<std::pair<std::string, std::string>> wrong = {
        {"short.json", "511"},
        {"long.json", "513"},
        {"none.json", " 0 "},
        {"object.json", "array"},
        {"text.json", "not JSON"},
        {"half.json", "not JSON"},
        {"empty.json", "not JSON"},
        {"word.json", "value 17"},
        {"null.json", "value 17"},
        {"large.json", "value 17"},
        {"missing.json", "no such file"},
        {"folder.json", "folder"},
    };
    for (const auto& [name, what] : wrong) {
        ExpectOneLineError({"similarity", "good.json", name}, 1, name + ": ");
        ExpectOneLineError({"similarity", name, "good.json", "--json"}, 1, name + ": ");
        ExpectOneLineError({"similarity", name, "good.json"}, 1, what);
    }
}

TEST_F(SimilarityCommand, RefusesWrongUsage) {
    Write("good.json", RandomEmbedding(1));
    ExpectOneLineError({"similarity"}, 2, "FIRST");
    ExpectOneLineError({"similarity", "good.json"}, 2, "SECOND");
    ExpectOneLineError({"similarity", "good.json", "good.json", "--out", "x.json"}, 2, "--out");
}

}  // namespace
