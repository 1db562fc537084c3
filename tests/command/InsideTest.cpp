#include "command/CommandFixture.h"

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
        const json line = RunJson({"inside", "zone.json", "contour.json"}).at(0);
        EXPECT_EQ(outcome.out, line.at("position").get<std::string>() + "\n");
        return line.at("position");
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
    const std::vector<std::pair<std::string, std::string>> wrong = {
        {"[]", "holds no points"},
        {R"({"points": []})", "not a JSON array of points"},
        {"[[1, 2],", "not JSON"},
        {"[1, 2, 3, 4]", "point 1 is not [x, y]"},
        {"[[1, 2], [1, 2, 3]]", "point 2 is not [x, y]"},
        {R"([[1, 2], [1, "2"]])", "point 2: y is not a number"},
        {"[[null, 2]]", "point 1: x is not a number"},
        {"[[1, 2], [3, 4], [1e39, 0]]", "point 3: x is too large"},
    };
    for (const auto& [contents, what] : wrong) {
        WriteText("wrong.json", contents);
        ExpectOneLineError({"inside", "zone.json", "wrong.json"}, 1, "wrong.json: " + what);
        ExpectOneLineError({"inside", "wrong.json", "zone.json", "--json"}, 1, "wrong.json: " + what);
    }
}

/// What the verb contours gives is what this one takes.
TEST_F(InsideCommand, TakesTheContoursOfAVideo) {
    WriteVideo("clip.avi", 20);
    const json line = RunJson({"contours", "clip.avi"}).back();
    ASSERT_FALSE(line.at("points").empty());
    WriteText("zone.json", "[[-0.1, -0.1], [1.1, -0.1], [1.1, 1.1], [-0.1, 1.1]]");
    EXPECT_EQ(PositionOf(line.at("points").dump()), "inside");
}

}  // namespace
