// Each processor of the host side gives what the library's own functions give, and keeps nothing.
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <limits>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "Quarry/Host.hpp"
#include "support/Footage.h"
#include "support/KeepsNothing.h"
#include "support/RawCalls.h"
#include "support/Scenes.h"

namespace quarry::test {
namespace {

constexpr const char* kFaceModel = "/usr/share/opencv4/haarcascades/haarcascade_frontalface_alt.xml";

ImageView View(const cv::Mat& frame, uint64_t timestamp = 0) {
    return {frame.data, frame.cols, frame.rows, timestamp};
}

void ExpectSame(const ImageArgument& image, const Image& raw) {
    ASSERT_EQ(image.width(), raw.width);
    ASSERT_EQ(image.height(), raw.height);
    EXPECT_EQ(image.stride(), raw.stride);
    EXPECT_EQ(image.timestamp(), raw.timestamp);
    EXPECT_EQ(std::memcmp(image.data(), raw.data, image.elements().size()), 0);
}

void ExpectSame(const MaskArgument& mask, const Mask& raw) {
    ASSERT_EQ(mask.width(), raw.width);
    ASSERT_EQ(mask.height(), raw.height);
    EXPECT_EQ(std::memcmp(mask.data(), raw.data, mask.elements().size()), 0);
}

template <class T>
void ExpectSame(Span<T> elements, const T* raw, int32_t count) {
    ASSERT_EQ(elements.size(), static_cast<std::size_t>(count));
    EXPECT_EQ(std::memcmp(elements.data(), raw, elements.size() * sizeof(T)), 0);
}

/// Three white rectangles on black.
cv::Mat Blobs() {
    cv::Mat frame = cv::Mat::zeros(60, 80, CV_8UC3);
    for (const cv::Rect& blob : {cv::Rect(5, 5, 20, 10), cv::Rect(40, 30, 30, 25), cv::Rect(50, 4, 6, 6)}) {
        cv::rectangle(frame, blob, cv::Scalar::all(255), cv::FILLED);
    }
    return frame;
}

TEST(HostHeaderProcessors, VarianceOfLaplacian) {
    const cv::Mat frame = RandomFrame(61, 47, 1);
    VarianceOfLaplacian sharpness;
    RawResult<VoLOutputData> raw(CreateCVLaplacianVarianceProcessor, ProcessOptions{}, VoLInputData{0, ImageOf(frame)});
    EXPECT_EQ(sharpness(View(frame)), raw->Variance);
}

TEST(HostHeaderProcessors, FaceVarianceOfLaplacian) {
    const cv::Mat frame = RandomFrame(61, 47, 2);
    FaceVarianceOfLaplacian sharpness;
    RawResult<VoLOutputData> raw(CreateCVFaceLaplacianVarianceProcessor, ProcessOptions{},
                                 FaceVoLInputData{0, ImageOf(frame), 30, 20, 12, 17});
    EXPECT_EQ(sharpness(View(frame), {30, 20, 12, 17}), raw->Variance);
}

TEST(HostHeaderProcessors, ImageSubtractor) {
    const cv::Mat first = RandomFrame(33, 21, 3);
    const cv::Mat second = RandomFrame(33, 21, 4);
    RawResult<ImageOperationResult> raw(CreateCVImageAbsSubtractor, BinaryImageOperationOptions{},
                                        BinaryImageOperationData{0, ImageOf(first, 77), ImageOf(second)});
    EXPECT_TRUE(KeepsNothing([&] {
        ImageSubtractor subtract;
        ExpectSame(subtract(View(first, 77), View(second)), *raw->Image);
    }));
}

TEST(HostHeaderProcessors, CosineSimilarity) {
    std::vector<float> first(512);
    std::array<float, 512> second{};
    for (std::size_t i = 0; i < first.size(); ++i) {
        first[i] = static_cast<float>(i % 13) - 5.0F;
        second[i] = static_cast<float>(i % 7) - 2.5F;
    }
    CosineSimilarity similarity;
    RawResult<CosineOutputData> raw(CreateCVCosineSimilarity, ProcessOptions{},
                                    EmbeddingData{0, 0, first.data(), 0, second.data()});
    EXPECT_EQ(similarity(first, second), raw->Similarity);
    EXPECT_NE(similarity(first, second), similarity(first, first));
}

TEST(HostHeaderProcessors, FastNlMeansDenoising) {
    const cv::Mat frame = RandomFrame(24, 18, 5);
    RawResult<FilterResult> raw(CreateCVFastNlMeansDenoisingFilter, FilterOptions{}, FilterData{0, ImageOf(frame, 3)});
    EXPECT_TRUE(KeepsNothing([&] {
        FastNlMeansDenoising denoise;
        ExpectSame(denoise(View(frame, 3)), *raw->Image);
    }));
}

TEST(HostHeaderProcessors, OpticalFlowLine) {
    std::vector<AbsVector> motion(std::size_t{20} * 10);
    for (std::size_t i = 0; i < motion.size(); ++i) {
        motion[i] = {static_cast<float>(i % 5), static_cast<float>(i % 3) - 1.0F};
    }
    AbsVectorMatrix matrix = {20, 10, motion.data()};
    RawResult<OFLineResult> raw(CreateCVOpticalFlowLineProcessor, OFLineOptions{},
                                OFLineData{0, {}, &matrix, 0.1F, 0.2F, 0.8F, 0.9F, 12, 0});
    EXPECT_TRUE(KeepsNothing([&] {
        OpticalFlowLine across;
        const OpticalFlowLine::Values values = across(FlowView(motion, 20, 10), {{0.1F, 0.2F}, {0.8F, 0.9F}}, 12);
        ExpectSame<float>(values, raw->Values, raw->ValuesCount);
    }));
}

TEST(HostHeaderProcessors, ObjectContour) {
    cv::Mat mask;
    cv::extractChannel(Blobs(), mask, 0);
    ObjectContour::Options options;
    options.tracing = Tracing::EveryPixel;
    options.selection = Selection::LongestDiagonal;
    const RelRect area = {0.0F, 0.0F, 0.9F, 0.95F};
    RawResult<ContourResult> raw(CreateCVContourCalculator, ContourCalcingOptions{0, 0, 1, 1},
                                 ContourCalcingInputData{0, {mask.data, mask.cols, mask.rows}, area});
    EXPECT_TRUE(KeepsNothing([&] {
        ObjectContour contourOf(options);
        const OutlineResult outline = contourOf(MaskView(mask.data, mask.cols, mask.rows), area);
        EXPECT_GT(outline.size(), 50U);
        ExpectSame<FloatPoint>(outline, raw->Contour->Points, raw->Contour->Count);
        EXPECT_EQ(outline.area(), raw->Contour->Area);
        EXPECT_EQ(outline.perimeter(), raw->Contour->Perimeter);
    }));
}

TEST(HostHeaderProcessors, ContourGrid) {
    const cv::Mat frame = Blobs();
    ContourGrid::Options options;
    options.cellFillRate = 0.25F;
    options.minContourAreaRate = 0.01F;
    std::vector<uint8_t> expected;
    {
        const RawHandle handle = RawCreate(CreateCVContourMaskProcessor, ContourMaskProcessorOptions{0, 0.25F, 0.01F});
        auto input = FramedInput<ContourMaskProcessorData>();
        auto result = FramedResult<ContourMaskProcessorResult>();
        *input = {0, ImageOf(frame), 8, 6};
        Process(handle.get(), input.as<ProcessData>(), result.as<ProcessResult>());
        expected.assign(result->Mask->data, result->Mask->data + 48);
        DestroyContourMaskProcessorResult(result.record());
    }
    EXPECT_TRUE(KeepsNothing([&] {
        ContourGrid grid(options);
        const ContourGrid::Cells cells = grid(View(frame), {8, 6});
        EXPECT_EQ(cells.At(5, 4), 1);
        ExpectSame(cells, Mask{expected.data(), 8, 6});
    }));
}

TEST(HostHeaderProcessors, ContourIntersection) {
    const std::vector<FloatPoint> polygon = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
    const std::vector<FloatPoint> inside = {{2, 2}, {4, 2}, {3, 4}};
    const std::vector<FloatPoint> outside = {{20, 2}, {40, 2}, {30, 4}};
    const std::vector<FloatPoint> crossing = {{2, 2}, {40, 2}, {30, 4}};
    ContourIntersection place;
    EXPECT_EQ(place(polygon, inside), ContourPosition::Inside);
    EXPECT_EQ(place(polygon, outside), ContourPosition::Outside);
    EXPECT_EQ(place(polygon, crossing), ContourPosition::Crossing);
}

TEST(HostHeaderProcessors, ContourRate) {
    std::vector<FloatPoint> current = {{0.1F, 0.1F}, {0.5F, 0.15F}, {0.6F, 0.7F}, {0.2F, 0.5F}};
    std::vector<FloatPoint> previous = {{0.1F, 0.1F}, {0.9F, 0.1F}, {0.3F, 0.4F}};
    ContourRate::Options options;
    options.measure = ShapeMeasure::I2;
    ContourRate rate(options);
    RawResult<ContourRateMeasuringOutputData> raw(
        CreateCVContourRateCalculator, ContourRateMeasuringOptions{0, 0, 2},
        ContourRateMeasuringInputData{0, {current.data(), 4, 0, 0}, {previous.data(), 3, 0, 0}, 640, 480, 9, 40});
    EXPECT_EQ(rate(current, previous, {640, 480, 40, 9}), raw->Rate);
    EXPECT_GT(raw->Rate, 0);
    EXPECT_EQ(rate(current, previous, {0, 480, 40, 9}), 9);
}

TEST(HostHeaderProcessors, ContourClusters) {
    const cv::Mat frame = Blobs();
    ContourClusters::Options options;
    options.outlinePrecision = 0.3F;
    options.minContourAreaRate = 0.01F;
    RawResult<ClustererResult> raw(CreateCVClustererContours, ClustererOptions{0, 0.3F, 0.01F},
                                   ClustererData{0, ImageOf(frame)});
    EXPECT_TRUE(KeepsNothing([&] {
        ContourClusters find(options);
        const ContourClusters::Clusters clusters = find(View(frame));
        ASSERT_EQ(clusters.size(), 2U);
        ASSERT_EQ(raw->Count, 2);
        for (std::size_t i = 0; i < clusters.size(); ++i) {
            EXPECT_EQ(clusters[i].CenterX, raw->Clusters[i].CenterX);
            EXPECT_EQ(clusters[i].CenterY, raw->Clusters[i].CenterY);
            EXPECT_EQ(clusters[i].Contour->Area, raw->Clusters[i].Contour->Area);
            ExpectSame(PointsOf(*clusters[i].Contour), raw->Clusters[i].Contour->Points,
                       raw->Clusters[i].Contour->Count);
        }
    }));
}

TEST(HostHeaderProcessors, RectExtractor) {
    const cv::Mat frame = RandomFrame(50, 40, 6);
    for (const Interpolation interpolation : {Interpolation::Nearest, Interpolation::Bilinear}) {
        RectExtractor::Options options;
        options.interpolation = interpolation;
        RawResult<RectExtractorResult> raw(CreateCVRectExtractor,
                                           RectExtractorOptions{0, 0, static_cast<uint16_t>(interpolation)},
                                           RectExtractorData{0, ImageOf(frame, 12), 20, 15, 22, 11, 33.5});
        EXPECT_TRUE(KeepsNothing([&] {
            RectExtractor extract(options);
            ExpectSame(extract(View(frame, 12), {20, 15, 22, 11, 33.5}), *raw->Image);
        }));
    }
}

TEST(HostHeaderProcessors, ClothingColors) {
    const cv::Mat frame = RandomFrame(100, 200, 7);
    std::vector<FloatPoint> body(17, {0.5F, 0.1F});
    body[5] = {0.3F, 0.2F};
    body[6] = {0.7F, 0.2F};
    body[11] = {0.35F, 0.5F};
    body[12] = {0.65F, 0.5F};
    body[13] = {0.35F, 0.7F};
    body[14] = {0.65F, 0.7F};
    body[15] = {0.35F, 0.9F};
    body[16] = {0.65F, 0.9F};
    cv::theRNG().state = 42;
    RawResult<KMeanResult> raw(CreateCVKMeanColorExtractor, KMeanOptions{},
                               KMeanData{0, ImageOf(frame), {{17}, body.data()}});
    EXPECT_TRUE(KeepsNothing([&] {
        ClothingColors colorsOf;
        cv::theRNG().state = 42;
        const ClothingColorsResult colors = colorsOf(View(frame), body);
        ExpectSame<float>(colors, raw->Colors, raw->Count * 3);
        EXPECT_EQ(colors.torso(1).red, raw->Colors[3]);
        EXPECT_EQ(colors.legs(0).green, raw->Colors[7]);
        EXPECT_EQ(colors.legs(1).blue, raw->Colors[11]);
    }));
}

void ExpectSameDetections(const Detections& detections, const ClassificationResult& raw, bool weighted) {
    ASSERT_EQ(detections.size(), static_cast<std::size_t>(raw.Count));
    for (std::size_t i = 0; i < detections.size(); ++i) {
        const RelRect& rect = detections[i].Rect;
        const RelRect& expected = raw.Responses[i].Rect;
        EXPECT_EQ(rect.X, expected.X);
        EXPECT_EQ(rect.Y, expected.Y);
        EXPECT_EQ(rect.Width, expected.Width);
        EXPECT_EQ(rect.Height, expected.Height);
        if (weighted) {
            EXPECT_EQ(detections[i].Weight, raw.Responses[i].Weight);
        }
    }
}

/// Large shapes: some of them pass for faces.
cv::Mat Shapes() {
    cv::Mat frame = RandomFrame(640, 480, 8);
    cv::blur(frame, frame, {25, 25});
    cv::normalize(frame, frame, 0, 255, cv::NORM_MINMAX);
    return frame;
}

TEST(HostHeaderProcessors, CascadeDetector) {
    if (!std::filesystem::exists(kFaceModel)) GTEST_SKIP() << kFaceModel << " is not installed";
    cv::setNumThreads(1);  // detections come in the order in which OpenCV's threads end
    const cv::Mat frame = Shapes();
    CascadeDetector::Options options;
    options.modelPath = kFaceModel;
    options.minSide = 20;
    options.maxSide = 300;
    options.mode = CascadeMode::Eager;
    const RelRect area = {0.1F, 0.1F, 0.8F, 0.85F};
    RawResult<ClassificationResult> raw(CreateCVCascadeClassifier, ClassificationOptions{0, 0, 20, 300, 1, kFaceModel},
                                        ClassificationData{0, ImageOf(frame), 0, {}, 1, &area});
    EXPECT_GT(raw->Count, 0);
    CascadeDetector detect(options);
    EXPECT_TRUE(KeepsNothing([&] {
        ExpectSameDetections(detect(View(frame), area), {0, raw->Count, raw->Responses}, false);
    }));
}

TEST(HostHeaderProcessors, CascadeDetectorTakesLimitsThatNoObjectReaches) {
    if (!std::filesystem::exists(kFaceModel)) GTEST_SKIP() << kFaceModel << " is not installed";
    const cv::Mat frame = Shapes();
    const RelRect area = {0.1F, 0.1F, 0.8F, 0.85F};
    const auto countWithin = [&](double minSide, double maxSide) {
        CascadeDetector::Options options;
        options.modelPath = kFaceModel;
        options.minSide = minSide;
        options.maxSide = maxSide;
        options.mode = CascadeMode::Eager;
        CascadeDetector detect(options);
        return detect(View(frame), area).size();
    };
    const std::size_t all = countWithin(-1, -1);
    EXPECT_GT(all, 0U);
    for (const double limit : {std::numeric_limits<double>::infinity(), 1e300, 2147483648.0, 2147483647.0, 480.0}) {
        EXPECT_EQ(countWithin(-1, limit), all) << limit;
        EXPECT_EQ(countWithin(limit, limit), 0U) << limit;
    }
}

TEST(HostHeaderProcessors, PeopleDetectorFindsNobodyInNoise) {
    PeopleDetector detect;
    EXPECT_TRUE(detect(View(RandomFrame(80, 150, 9))).empty());
}

TEST(HostHeaderProcessors, PeopleDetector) {
    cv::setNumThreads(1);  // detections come in the order in which OpenCV's threads end
    const std::vector<cv::Mat> frames = PedestrianFrames(1);
    if (frames.empty()) GTEST_SKIP() << "the footage is not there";
    PeopleDetector::Options options;
    options.sensitivity = 0.6F;
    options.minHeight = 0.1;
    options.maxHeight = 0.9;
    const ClassificationOptions rawOptions = {0, 0.6F, 0.1, 0.9, 0, nullptr};
    const std::vector<RelRect> areas = {{0, 0, 0.6F, 1}, {0.4F, 0, 0.6F, 1}};
    RawResult<ClassificationResult> whole(CreateCVHogSvmHumanClassifier, rawOptions,
                                          ClassificationData{0, ImageOf(frames[0]), 1, {}, 0, nullptr});
    RawResult<ClassificationResult> parts(CreateCVHogSvmHumanClassifier, rawOptions,
                                          ClassificationData{0, ImageOf(frames[0]), 0, {}, 2, areas.data()});
    EXPECT_GT(whole->Count, 0);
    PeopleDetector detect(options);
    ExpectSameDetections(detect(View(frames[0])), {0, whole->Count, whole->Responses}, true);
    ExpectSameDetections(detect(View(frames[0]), areas), {0, parts->Count, parts->Responses}, true);
}

TEST(HostHeaderProcessors, PeopleDetectorTakesLimitsThatNobodyReaches) {
    const std::vector<cv::Mat> frames = PedestrianFrames(1);
    if (frames.empty()) GTEST_SKIP() << "the footage is not there";
    const auto countWithin = [&](double minHeight, double maxHeight) {
        PeopleDetector::Options options;
        options.minHeight = minHeight;
        options.maxHeight = maxHeight;
        PeopleDetector detect(options);
        return detect(View(frames[0])).size();
    };
    const std::size_t all = countWithin(0, 1);
    EXPECT_GT(all, 0U);
    for (const double limit : {std::numeric_limits<double>::infinity(), 1e300, 1e10, 2.0}) {
        EXPECT_EQ(countWithin(0, limit), all) << limit;
        EXPECT_EQ(countWithin(limit, limit), 0U) << limit;
    }
}

TEST(HostHeaderProcessors, ColorComparison) {
    const cv::Mat first = RandomFrame(40, 30, 10);
    const cv::Mat second = MovingSquare(40, 30, 2);
    for (const HistogramMeasure measure :
         {HistogramMeasure::Correlation, HistogramMeasure::ChiSquare, HistogramMeasure::Intersection,
          HistogramMeasure::Bhattacharyya, HistogramMeasure::AlternativeChiSquare, HistogramMeasure::KullbackLeibler}) {
        ColorComparison::Options options;
        options.measure = measure;
        ColorComparison compare(options);
        const RelRect area = {0.25F, 0.25F, 0.5F, 0.5F};
        RawResult<ColorComparingOutputData> raw(CreateCVColorComparator,
                                                ColorComparingOptions{0, 0, static_cast<int32_t>(measure)},
                                                ColorComparingInputData{0, ImageOf(first), ImageOf(second), area});
        EXPECT_EQ(compare(View(first), View(second), area), raw->Similarity) << static_cast<int32_t>(measure);
    }
}

TEST(HostHeaderProcessors, FirePixels) {
    cv::Mat frame = cv::Mat::zeros(60, 80, CV_8UC3);
    cv::rectangle(frame, cv::Rect(20, 15, 30, 25), cv::Scalar(20, 140, 255), cv::FILLED);
    RawResult<FireOutputData> raw(CreateCVPixelwiseFireProcessor, ProcessOptions{}, FireInputData{0, ImageOf(frame)});
    EXPECT_TRUE(KeepsNothing([&] {
        FirePixels search;
        const FirePixels::Flames flames = search(View(frame));
        EXPECT_EQ(flames.At(30, 25), 255);
        EXPECT_EQ(flames.At(0, 0), 0);
        ExpectSame(flames, *raw->FireMask);
    }));
}

TEST(HostHeaderProcessors, SimilarityTransform) {
    const cv::Mat frame = RandomFrame(90, 70, 11);
    std::array<FloatPoint, 5> source = {{{20, 20}, {60, 22}, {40, 40}, {25, 55}, {57, 56}}};
    std::array<FloatPoint, 5> destination = {{{10, 12}, {38, 11}, {25, 24}, {14, 36}, {37, 35}}};
    SimilarityTransform::Options options;
    options.width = 48;
    options.height = 50;
    RawResult<TransformResult> raw(
        CreateCVAffineTransformProcessor, TransformOptions{0, 0, 48, 50},
        AffineTransformData{0, ImageOf(frame, 21), {{5}, destination.data()}, {{5}, source.data()}});
    EXPECT_TRUE(KeepsNothing([&] {
        SimilarityTransform align(options);
        ExpectSame(align(View(frame, 21), source, destination), *raw->ResultImage);
    }));
    SimilarityTransform alignToDefault;
    EXPECT_EQ(alignToDefault(View(frame), source, destination).width(), 112);
}

TEST(HostHeaderProcessors, RotationTransform) {
    const cv::Mat frame = RandomFrame(45, 35, 12);
    RawResult<TransformResult> raw(CreateCVRotationTransformProcessor, TransformOptions{0, 0, 45, 35},
                                   RotationTransformData{0, ImageOf(frame, 4), 25, 1.5});
    EXPECT_TRUE(KeepsNothing([&] {
        RotationTransform rotate({45, 35});
        ExpectSame(rotate(View(frame, 4), 25, 1.5), *raw->ResultImage);
    }));
}

}  // namespace
}  // namespace quarry::test
