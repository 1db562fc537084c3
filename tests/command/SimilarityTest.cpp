#include <cmath>

#include "command/CommandFixture.h"

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
        const json line = RunJson({"similarity", first, second}).at(0);
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
    const json line = RunJson({"similarity", "zeros.json", "some.json"}).at(0);
    EXPECT_TRUE(line.at("similarity").is_null());
    EXPECT_NE(Run({"similarity", "zeros.json", "some.json"}).out.find("not a number"), std::string::npos);
}

TEST_F(SimilarityCommand, NamesTheFileAndWhatIsWrongWithIt) {
    Write("good.json", RandomEmbedding(1));
    const auto withSeventeenth = [](const json& value) {
        json values = std::vector<double>(kLength, 1.0);
        values[16] = value;
        return values.dump();
    };
    const std::vector<std::pair<std::string, std::string>> wrong = {
        {json(std::vector<double>(511, 1.0)).dump(), "holds 511 values"},
        {json(std::vector<double>(513, 1.0)).dump(), "holds 513 values"},
        {"[]", "holds 0 values"},
        {R"({"embedding": [1, 2]})", "not a JSON array"},
        {"[1, 2,", "not JSON"},
        {withSeventeenth("seventeen"), "value 17 of 512 is not a number"},
        {withSeventeenth(nullptr), "value 17 of 512 is not a number"},
        {withSeventeenth(1e39), "value 17 of 512 is too large"},
    };
    for (const auto& [contents, what] : wrong) {
        WriteText("wrong.json", contents);
        ExpectOneLineError({"similarity", "good.json", "wrong.json"}, 1, "wrong.json: " + what);
        ExpectOneLineError({"similarity", "wrong.json", "good.json", "--json"}, 1, "wrong.json: " + what);
    }
}

}  // namespace
