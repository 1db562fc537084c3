#include "host/CommandFixture.h"

using namespace quarry::test;

namespace {

class InsideCommand : public QuarryCommand {
protected:
    /// A concave polygon, open to the right.
    void SetUp() override {
        QuarryCommand::SetUp();
        WriteText("zone.json", "[[0, 0], [10, 0], [5, 5], [10, 10], [0, 10]]");
    }

    std::string PositionOf(const std::string& contour) const {
        WriteText("contour.json", contour);
        const Outcome outcome = Run({"inside", "zone.json", "contour.json"});
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        EXPECT_EQ(outcome.err, "");
        const json line = JsonLines(Run({"inside", "zone.json", "contour.json", "--json"}).out).at(0);
        EXPECT_EQ(line.at("polygon"), "zone.json");
        EXPECT_EQ(line.at("contour"), "contour.json");
        EXPECT_EQ(outcome.out, line.at("position").get<std::string>() + "\n");
        return line.at("position").get<std::string>();
    }
};

TEST_F(InsideCommand, TellsWhereAllPointsAre) {
    EXPECT_EQ(PositionOf("[[1, 1], [2, 1], [2, 8]]"), "inside");
    EXPECT_EQ(PositionOf("[[9, 5], [8, 4.5], [8, 5.5]]"), "outside") << "in the notch";
    EXPECT_EQ(PositionOf("[[1, 1], [2, 1], [9, 5]]"), "crossing");
    EXPECT_EQ(PositionOf("[[9, 5], [1, 1]]"), "crossing");
    EXPECT_EQ(PositionOf("[[-3.5, 2e1]]"), "outside") << "one point is enough";
}

TEST_F(InsideCommand, PointsOnTheBorderCountForNeitherSide) {
    EXPECT_EQ(PositionOf("[[1, 1], [0, 5], [2, 2]]"), "inside");
    EXPECT_EQ(PositionOf("[[-1, 1], [0, 5], [-2, 2]]"), "outside");
    EXPECT_EQ(PositionOf("[[0, 5], [-2, 2]]"), "inside") << "the first one is on it";
}

TEST_F(InsideCommand, TakesFractions) {
    WriteText("zone.json", "[[0.2, 0.2], [0.8, 0.2], [0.5, 0.8]]");
    EXPECT_EQ(PositionOf("[[0.5, 0.4], [0.51, 0.41]]"), "inside");
    EXPECT_EQ(PositionOf("[[0.5, 0.4], [0.2, 0.8]]"), "crossing");
}

TEST_F(InsideCommand, NamesTheFileAndWhatIsWrongWithIt) {
    WriteText("none.json", "[]");
    WriteText("object.json", R"({"points": []})");
    WriteText("text.json", "not JSON at all");
    WriteText("half.json", "[[1, 2],");
    WriteText("empty.json", "");
    WriteText("flat.json", "[1, 2, 3, 4]");
    WriteText("three.json", "[[1, 2], [1, 2, 3]]");
    WriteText("word.json", R"([[1, 2], [1, "2"]])");
    WriteText("null.json", "[[null, 2]]");
    WriteText("large.json", "[[1, 2], [3, 4], [1e39, 0]]");
    fs::create_directory(folder / "folder.json");
    const std::vector<std::pair<std::string, std::string>> wrong = {
        {"none.json", "no points"},   {"object.json", "array"},           {"text.json", "not JSON"},
        {"half.json", "not JSON"},    {"empty.json", "not JSON"},         {"flat.json", "point 1"},
        {"three.json", "point 2"},    {"word.json", "point 2: y is not"}, {"null.json", "point 1: x is not"},
        {"large.json", "point 3: x"}, {"missing.json", "no such file"},   {"folder.json", "folder"},
    };
    for (const auto& [name, what] : wrong) {
        ExpectOneLineError({"inside", "zone.json", name}, 1, name + ": ");
        ExpectOneLineError({"inside", name, "zone.json", "--json"}, 1, name + ": ");
        ExpectOneLineError({"inside", name, "zone.json"}, 1, what);
    }
}

TEST_F(InsideCommand, RefusesWrongUsage) {
    ExpectOneLineError({"inside"}, 2, "POLYGON");
    ExpectOneLineError({"inside", "zone.json"}, 2, "CONTOUR");
    ExpectOneLineError({"inside", "zone.json", "zone.json", "--out", "x.json"}, 2, "--out");
}

/// What the verb contours gives is what this one takes.
TEST_F(InsideCommand, TakesTheContoursOfAVideo) {
    WriteVideo("clip.avi", 20);
    const json line = JsonLines(Run({"contours", "clip.avi", "--json"}).out).back();
    ASSERT_FALSE(line.at("points").empty());
    WriteText("zone.json", "[[-0.1, -0.1], [1.1, -0.1], [1.1, 1.1], [-0.1, 1.1]]");
    EXPECT_EQ(PositionOf(line.at("points").dump()), "inside");
}

}  // namespace
