#include "command/CommandFixture.h"

using namespace quarry::test;

namespace {

float VarianceOfLaplacian(const cv::Mat& picture) {
    cv::Mat grey;
    cv::Mat laplacian;
    cv::cvtColor(picture, grey, cv::COLOR_BGR2GRAY);
    cv::Laplacian(grey, laplacian, CV_64F, 1);
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::meanStdDev(laplacian, mean, deviation);
    const auto single = static_cast<float>(deviation[0]);
    return single * single;
}

TEST_F(QuarryCommand, SharpnessIsTheVarianceOfTheLaplacian) {
    const std::vector<cv::Mat> pictures = {WritePicture("sharp.png", 1, 0), WritePicture("soft.png", 2, 1.5)};
    const std::vector<json> lines = RunJson({"sharpness", "sharp.png", "soft.png"});
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0].at("file"), "sharp.png");
    EXPECT_EQ(lines[1].at("file"), "soft.png");
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(lines[i].at("width"), 61);
        EXPECT_EQ(lines[i].at("height"), 43);
        EXPECT_EQ(lines[i].at("variance").get<float>(), VarianceOfLaplacian(pictures[i])) << i;
    }
}

TEST_F(QuarryCommand, SharpnessReadsGreyAndTransparentPicturesAsColour) {
    cv::Mat grey(20, 30, CV_8UC1);
    cv::randu(grey, 0, 256);
    cv::imwrite((folder / "grey.png").string(), grey);
    cv::Mat transparent(20, 30, CV_8UC4);
    cv::randu(transparent, 0, 256);
    cv::imwrite((folder / "transparent.png").string(), transparent);
    const std::vector<json> lines = RunJson({"sharpness", "grey.png", "transparent.png"});
    ASSERT_EQ(lines.size(), 2U);
    for (const json& line : lines) {
        const cv::Mat colour = cv::imread((folder / line.at("file").get<std::string>()).string(), cv::IMREAD_COLOR);
        EXPECT_EQ(line.at("variance").get<float>(), VarianceOfLaplacian(colour)) << line;
    }
}

TEST_F(QuarryCommand, SharpnessTableHasALinePerPicture) {
    const cv::Mat picture = WritePicture("one.png", 3, 1);
    WritePicture("two.png", 4, 1);
    const std::vector<std::string> lines = Lines(Run({"sharpness", "one.png", "two.png"}).out);
    ASSERT_EQ(lines.size(), 3U);
    std::istringstream row(lines[1]);
    std::string file;
    int width = 0;
    int height = 0;
    double variance = 0;
    row >> file >> width >> height >> variance;
    EXPECT_EQ(file, "one.png");
    EXPECT_EQ(width, 61);
    EXPECT_EQ(height, 43);
    EXPECT_NEAR(variance, static_cast<double>(VarianceOfLaplacian(picture)), 0.006);
}

TEST_F(QuarryCommand, DecodersAddNoLinesOfTheirOwn) {
    WritePicture("whole.jpg", 7, 2);
    WritePicture("whole.png", 7, 2);
    for (const char* const kind : {".jpg", ".png"}) {
        const std::string whole = ContentsOf(folder / (std::string("whole") + kind));
        WriteText(std::string("half") + kind, whole.substr(0, whole.size() / 2));
    }
    // Whether half a file still is a picture is the decoder's to say; it is at most one line each.
    for (const char* const name : {"half.jpg", "half.png"}) {
        const Outcome outcome = Run({"sharpness", name});
        EXPECT_EQ(Lines(outcome.err).size(), outcome.exitCode == 0 ? 0U : 1U) << outcome.err;
    }
}

TEST_F(QuarryCommand, FileNamesThatAreNotUtf8OrHoldALineEndStayOnOneLine) {
    WritePicture("plain.png", 8, 0);
    fs::copy(folder / "plain.png", folder / "caf\xE9.png");
    EXPECT_EQ(RunJson({"sharpness", "caf\xE9.png"}).size(), 1U);
    ExpectOneLineError({"sharpness", "two\nlines.png"}, 1, "two lines.png");
}

TEST_F(QuarryCommand, AFullStandardOutputIsAFailure) {
    WritePicture("plain.png", 9, 0);
    const std::string err = folder.string() + ".err";
    EXPECT_EQ(ExitCodeOf(Start({"sharpness", "plain.png"}, "/dev/full", err)), 1);
    EXPECT_EQ(ContentsOf(err), "quarry: standard output: cannot be written\n");
    fs::remove(err);
}

// ---- of a face

TEST_F(QuarryCommand, FaceSharpnessIsThatOfThePictureWithoutWhatIsOutsideTheEllipse) {
    const cv::Mat picture = WritePicture("face.png", 20, 0.7);
    const std::vector<std::pair<std::string, cv::Rect>> faces = {
        {"30,20,12,15", {30, 20, 12, 15}}, {"0,0,25,25", {0, 0, 25, 25}},     {"500,500,5,5", {500, 500, 5, 5}},
        {"30,20,0,0", {30, 20, 0, 0}},     {"-3,-4,20,30", {-3, -4, 20, 30}},
    };
    for (const auto& [text, face] : faces) {
        cv::Mat mask(picture.size(), CV_8UC1, cv::Scalar(0));
        cv::ellipse(mask, face.tl(), face.size(), 0, 0, 360, 255, cv::FILLED);
        cv::Mat cut;
        picture.copyTo(cut, mask);
        const std::vector<json> lines = RunJson({"sharpness", "--face=" + text, "face.png"});
        ASSERT_EQ(lines.size(), 1U);
        EXPECT_EQ(lines[0].at("face"), (json{face.x, face.y, face.width, face.height}));
        const float expected = VarianceOfLaplacian(cut);
        EXPECT_NEAR(lines[0].at("variance").get<float>(), expected, 1e-4F * expected) << text;
    }
}

}  // namespace
