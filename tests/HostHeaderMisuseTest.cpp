// What the library itself would not notice, or would abort at, is refused with a message that says what is needed.
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include "Quarry/Host.hpp"
#include "support/Refusal.h"

namespace quarry::test {
namespace {

const std::vector<uint8_t>& Pixels() {
    static const std::vector<uint8_t> pixels(std::size_t{8} * 6 * 3, 9);
    return pixels;
}

ImageView Frame() {
    return {Pixels(), 8, 6};
}

TEST(HostHeaderMisuse, OfPixels) {
    EXPECT_EQ(RefusalOf([] { (void)ImageView(Pixels(), 9, 6); }),
              "quarry::ImageView: 144 elements are given; 9 x 6 pixels of 3 need 162");
    EXPECT_EQ(RefusalOf([] {
                  (void)ImageView({Pixels().data(), 143}, 8, 6);
              }),
              "quarry::ImageView: 143 elements are given; 8 x 6 pixels of 3 need 144");
    EXPECT_EQ(RefusalOf([] { (void)ImageView(Pixels().data(), -8, 6); }),
              "quarry::ImageView: the size is -8 x 6; each side must be 0 or more");
    EXPECT_EQ(RefusalOf([] { (void)ImageView(Pixels(), 8, -6); }),
              "quarry::ImageView: the size is 8 x -6; each side must be 0 or more");
    EXPECT_EQ(RefusalOf([] { (void)ImageView(Pixels().data(), 715827883, 1); }),
              "quarry::ImageView: the width is 715827883; at most 715827882 is allowed");
    EXPECT_EQ(RefusalOf([] { (void)ImageView(static_cast<const uint8_t*>(nullptr), 8, 6); }),
              "quarry::ImageView: null is given for 8 x 6 pixels");
}

TEST(HostHeaderMisuse, OfRows) {
    EXPECT_EQ(RefusalOf([] { (void)ImageView::FromRows(Pixels().data(), 7, 6, 24); }),
              "quarry::ImageView: rows are 24 bytes apart; packed rows of 7 pixels, 21 bytes apart, are needed");
    EXPECT_EQ(RefusalOf([] { (void)ImageView::FromRows(Pixels().data(), 6, 6, 24, 4); }),
              "quarry::ImageView: 4 channels are given; 3 are needed");
    EXPECT_EQ(RefusalOf([] { (void)ImageView::FromRows(Pixels().data(), -8, 6, -24); }),
              "quarry::ImageView: the size is -8 x 6; each side must be 0 or more");
    EXPECT_EQ(RefusalOf([] { (void)MaskView::FromRows(Pixels().data(), 7, 6, 8); }),
              "quarry::MaskView: rows are 8 bytes apart; packed rows of 7 pixels, 7 bytes apart, are needed");
    EXPECT_EQ(RefusalOf([] { (void)MaskView::FromRows(Pixels().data(), 8, 6, 24, 3); }),
              "quarry::MaskView: 3 channels are given; 1 are needed");
}

TEST(HostHeaderMisuse, OfMasksAndFields) {
    EXPECT_EQ(RefusalOf([] { (void)MaskView(Pixels(), 13, 12); }),
              "quarry::MaskView: 144 elements are given; 13 x 12 pixels of 1 need 156");
    const std::array<AbsVector, 5> motion{};
    EXPECT_EQ(RefusalOf([&] { (void)FlowView(motion, 3, 2); }),
              "quarry::FlowView: 5 elements are given; 3 x 2 pixels of 1 need 6");
}

TEST(HostHeaderMisuse, OfArrays) {
    uint8_t pixels[30] = {};
    const AbsVector motion[5] = {};
    EXPECT_EQ(RefusalOf([&] { (void)ImageView(pixels, 100, 100); }),
              "quarry::ImageView: 30 elements are given; 100 x 100 pixels of 3 need 30000");
    EXPECT_EQ(RefusalOf([&] { (void)MaskView(pixels, 31, 1); }),
              "quarry::MaskView: 30 elements are given; 31 x 1 pixels of 1 need 31");
    EXPECT_EQ(RefusalOf([&] { (void)FlowView(motion, 3, 2); }),
              "quarry::FlowView: 5 elements are given; 3 x 2 pixels of 1 need 6");
    BackgroundModel model;
    EXPECT_EQ(RefusalOf([&] {
                  model.Update({pixels, 4, 3, 1});
              }),
              "quarry::ImageView: 30 elements are given; 4 x 3 pixels of 3 need 36");
}

TEST(HostHeaderMisuse, OfFacesAndRectangles) {
    FaceVarianceOfLaplacian sharpness;
    EXPECT_EQ(RefusalOf([&] {
                  sharpness(Frame(), {40000, 1, 1, 1});
              }),
              "quarry::FaceEllipse.centerX is 40000; -32768 to 32767 is allowed");
    RectExtractor extract;
    EXPECT_EQ(RefusalOf([&] {
                  extract(Frame(), {1, 1, 1, -32769, 0});
              }),
              "quarry::TurnedRect.height is -32769; -32768 to 32767 is allowed");
    MosseTracker tracker;
    EXPECT_EQ(RefusalOf([&] {
                  tracker.Start(Frame(), {1, 1, 70000, 1});
              }),
              "quarry::Box.width is 70000; -32768 to 32767 is allowed");
}

TEST(HostHeaderMisuse, OfFramesOfDifferentSizes) {
    ImageSubtractor subtract;
    EXPECT_EQ(RefusalOf([&] { subtract(Frame(), ImageView(Pixels(), 6, 8)); }),
              "quarry::ImageSubtractor: the first frame is 8 x 6, the second 6 x 8; equal sizes are needed");
    RotationTransform rotate({6, 8});
    EXPECT_EQ(RefusalOf([&] { rotate(Frame(), 30); }),
              "quarry::RotationTransform: the frame is 8 x 6; the options' 6 x 8 is needed");
}

TEST(HostHeaderMisuse, OfOutputSizes) {
    EXPECT_EQ(RefusalOf([] {
                  RotationTransform({0, 8});
              }),
              "quarry::RotationTransform::Options: the size is 0 x 8; each side must be 1 or more");
    SimilarityTransform::Options options;
    options.height = -1;
    EXPECT_EQ(RefusalOf([&] { (void)SimilarityTransform(options); }),
              "quarry::SimilarityTransform::Options: the size is 112 x -1; each side must be 1 or more");
    ContourGrid grid;
    EXPECT_EQ(RefusalOf([&] {
                  grid(Frame(), {4, 0});
              }),
              "quarry::GridSize: the size is 4 x 0; each side must be 1 or more");
}

TEST(HostHeaderMisuse, OfEmbeddings) {
    CosineSimilarity similarity;
    const std::vector<float> right(512, 1);
    const std::vector<float> wrong(511, 1);
    EXPECT_EQ(RefusalOf([&] { similarity(wrong, right); }),
              "quarry::CosineSimilarity: the first embedding has 511 values; 512 are needed");
    EXPECT_EQ(RefusalOf([&] { similarity(right, std::vector<float>(513)); }),
              "quarry::CosineSimilarity: the second embedding has 513 values; 512 are needed");
}

TEST(HostHeaderMisuse, OfPoints) {
    const std::vector<FloatPoint> four(4, {1, 1});
    const std::vector<FloatPoint> five(5, {1, 1});
    SimilarityTransform align;
    EXPECT_EQ(RefusalOf([&] { align(Frame(), four, four); }),
              "quarry::SimilarityTransform: 4 source points and 4 destination points are given; 5 of each are needed");
    EXPECT_EQ(RefusalOf([&] { align(Frame(), five, four); }),
              "quarry::SimilarityTransform: 5 source points and 4 destination points are given; 5 of each are needed");
    ClothingColors colors;
    EXPECT_EQ(RefusalOf([&] { colors(Frame(), std::vector<FloatPoint>(16)); }),
              "quarry::ClothingColors: 16 keypoints are given; 17 are needed");
}

TEST(HostHeaderMisuse, OfContours) {
    const std::vector<FloatPoint> none;
    const std::vector<FloatPoint> some(3, {0.5F, 0.5F});
    ContourRate rate;
    EXPECT_EQ(RefusalOf([&] {
                  rate(none, some, {8, 6, 40, 0});
              }),
              "quarry::ContourRate: current contour: 0 points are given; at least 1 is needed");
    EXPECT_EQ(RefusalOf([&] {
                  rate(some, none, {8, 6, 40, 0});
              }),
              "quarry::ContourRate: previous contour: 0 points are given; at least 1 is needed");
    EXPECT_EQ(RefusalOf([&] {
                  rate(some, some, {8, 60000, 40, 0});
              }),
              "quarry::ContourTiming.frameHeight is 60000; -32768 to 32767 is allowed");
    ContourIntersection place;
    EXPECT_EQ(RefusalOf([&] { place(none, some); }),
              "quarry::ContourIntersection: polygon: 0 points are given; at least 1 is needed");
    EXPECT_EQ(RefusalOf([&] { place(some, none); }),
              "quarry::ContourIntersection: contour: 0 points are given; at least 1 is needed");
}

TEST(HostHeaderMisuse, OfModels) {
    CascadeDetector::Options options;
    EXPECT_EQ(RefusalOf([&] { (void)CascadeDetector(options); }),
              "quarry::CascadeDetector::Options.modelPath is empty; the path of a cascade file is needed");
    options.modelPath = "no/such/model.xml";
    EXPECT_EQ(RefusalOf([&] { (void)CascadeDetector(options); }),
              "quarry::CascadeDetector::Options.modelPath is \"no/such/model.xml\"; no file can be read there");
    options.modelPath = std::filesystem::temp_directory_path().string();
    EXPECT_EQ(RefusalOf([&] { (void)CascadeDetector(options); }),
              "quarry::CascadeDetector::Options.modelPath is \"" + options.modelPath + "\"; no file can be read there");
}

TEST(HostHeaderMisuse, OfFractions) {
    PeopleDetector::Options people;
    people.sensitivity = 1.5F;
    EXPECT_EQ(RefusalOf([&] { (void)PeopleDetector(people); }),
              "quarry::PeopleDetector::Options.sensitivity is 1.500000; 0 to 1 is allowed");
    BackgroundModel::Options background;
    background.sensitivity = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(RefusalOf([&] { (void)BackgroundModel(background); }),
              "quarry::BackgroundModel::Options.sensitivity is nan; 0 to 1 is allowed");
    DenseOpticalFlow::Options flow;
    flow.quality = -0.5F;
    EXPECT_EQ(RefusalOf([&] { (void)DenseOpticalFlow(flow); }),
              "quarry::DenseOpticalFlow::Options.quality is -0.500000; 0 to 1 is allowed");
}

TEST(HostHeaderMisuse, OfLimits) {
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    CascadeDetector::Options cascade;
    cascade.minSide = kNan;
    EXPECT_EQ(RefusalOf([&] { (void)CascadeDetector(cascade); }),
              "quarry::CascadeDetector::Options.minSide is nan; a number, or infinity, is needed");
    cascade.minSide = -1;
    cascade.maxSide = kNan;
    EXPECT_EQ(RefusalOf([&] { (void)CascadeDetector(cascade); }),
              "quarry::CascadeDetector::Options.maxSide is nan; a number, or infinity, is needed");
    PeopleDetector::Options people;
    people.minHeight = kNan;
    EXPECT_EQ(RefusalOf([&] { (void)PeopleDetector(people); }),
              "quarry::PeopleDetector::Options.minHeight is nan; a number, or infinity, is needed");
    people.minHeight = 0;
    people.maxHeight = -kNan;
    EXPECT_EQ(RefusalOf([&] { (void)PeopleDetector(people); }),
              "quarry::PeopleDetector::Options.maxHeight is nan; a number, or infinity, is needed");
}

TEST(HostHeaderMisuse, OfClocks) {
    BackgroundModel model;
    EXPECT_EQ(RefusalOf([&] { model.Update(Frame()); }),
              "quarry::BackgroundModel: the frame's timestamp is 0; 1 or more, in ticks of 100 ns, is needed");
    model.Update({Pixels(), 8, 6, 20});
    EXPECT_EQ(RefusalOf([&] {
                  model.Update({Pixels(), 8, 6, 19});
              }),
              "quarry::BackgroundModel: the frame's timestamp is 19; at least that of the frame before it, 20, is "
              "needed");
    EXPECT_EQ(model.Update({Pixels(), 8, 6, 20}), Accumulating);
}

}  // namespace
}  // namespace quarry::test
