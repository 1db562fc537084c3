/// @file
/// Operations that measure: sharpness, similarity, colours, motion across a line.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "Quarry/Host/Operation.hpp"
#include "Quarry/Host/Results.hpp"

namespace quarry {

/// Sharpness of a frame: the variance of its Laplacian, in squared grey levels.
class VarianceOfLaplacian : public detail::Processor<CreateCVLaplacianVarianceProcessor, VoLInputData, VoLOutputData> {
public:
    struct Options {};

    explicit VarianceOfLaplacian(const Options& /*options*/ = {}) : Processor(ProcessOptions{}) {}

    /// @throws cv::Exception  the frame is empty
    float operator()(const ImageArgument& frame) { return Value({0, frame.record()}).Variance; }
};

/// Where a face is, in pixels.
struct FaceEllipse {
    int centerX = 0;
    int centerY = 0;
    int halfWidth = 0;   ///< 0 or more
    int halfHeight = 0;  ///< 0 or more
};

/// Sharpness of a face: the variance of the Laplacian of a frame that is black outside an ellipse.
class FaceVarianceOfLaplacian
    : public detail::Processor<CreateCVFaceLaplacianVarianceProcessor, FaceVoLInputData, VoLOutputData> {
public:
    struct Options {};

    explicit FaceVarianceOfLaplacian(const Options& /*options*/ = {}) : Processor(ProcessOptions{}) {}

    /// @throws std::invalid_argument  a value of the ellipse does not fit 16 bits
    /// @throws cv::Exception          the frame is empty, or a half-axis is negative
    float operator()(const ImageArgument& frame, const FaceEllipse& face) {
        return Value({0, frame.record(), detail::Short("quarry::FaceEllipse.centerX", face.centerX),
                      detail::Short("quarry::FaceEllipse.centerY", face.centerY),
                      detail::Short("quarry::FaceEllipse.halfWidth", face.halfWidth),
                      detail::Short("quarry::FaceEllipse.halfHeight", face.halfHeight)})
            .Variance;
    }
};

/// Cosine of the angle between two embeddings: -1..1, apart from rounding; not-a-number if all values of one are 0.
class CosineSimilarity : public detail::Processor<CreateCVCosineSimilarity, EmbeddingData, CosineOutputData> {
public:
    struct Options {};
    static constexpr std::size_t kLength = 512;  ///< number of values of an embedding

    explicit CosineSimilarity(const Options& /*options*/ = {}) : Processor(ProcessOptions{}) {}

    /// @throws std::invalid_argument  an embedding does not have 512 values
    double operator()(Span<float> first, Span<float> second) {
        return Value({0, 0, Checked("first", first), 0, Checked("second", second)}).Similarity;
    }

private:
    static const float* Checked(const char* which, Span<float> embedding) {
        if (embedding.size() != kLength) {
            detail::Refuse(std::string("quarry::CosineSimilarity: the ") + which + " embedding has " +
                           std::to_string(embedding.size()) + " values; 512 are needed");
        }
        return embedding.data();
    }
};

/// How histograms are compared.
enum class HistogramMeasure : int32_t {
    Correlation = 0,
    ChiSquare = 1,
    Intersection = 2,
    Bhattacharyya = 3,
    AlternativeChiSquare = 4,
    KullbackLeibler = 5
};

/// How alike the colours of one region are in two frames, by the options' measure of hue and saturation histograms.
class ColorComparison
    : public detail::Processor<CreateCVColorComparator, ColorComparingInputData, ColorComparingOutputData> {
public:
    struct Options {
        HistogramMeasure measure = HistogramMeasure::Correlation;
    };

    ColorComparison() : ColorComparison(Options{}) {}
    explicit ColorComparison(const Options& options) : Processor({0, 0, static_cast<int32_t>(options.measure)}) {}

    /// @param area  relative to the first frame; it covers the same pixels in both frames
    /// @throws cv::Exception  the area is empty or does not lie inside both frames
    double operator()(const ImageArgument& first, const ImageArgument& second, const RelRect& area = kWholeFrame) {
        return Value({0, first.record(), second.record(), area}).Similarity;
    }
};

/// A straight line, in fractions of the width and height of a motion field.
struct RelLine {
    FloatPoint start;
    FloatPoint end;
};

/// The motion across a line of a motion field: the signed distances of its moved pixels from the line, in pixels, from
/// its start to its end. Distances to the right, as seen from the start, are positive.
class OpticalFlowLine : public detail::Processor<CreateCVOpticalFlowLineProcessor, OFLineData, OFLineResult> {
public:
    struct Options {};
    using Values = ListResult<OFLineResult>;  ///< elements of type float

    explicit OpticalFlowLine(const Options& /*options*/ = {}) : Processor(OFLineOptions{}) {}

    /// @param field        the result of a DenseOpticalFlow, or a field of the host
    /// @param valuesCount  number of values wanted, 0 or more
    /// @throws std::invalid_argument  `valuesCount` is negative
    Values operator()(const FlowView& field, const RelLine& line, int valuesCount) {
        AbsVectorMatrix matrix = field.record();
        return Values(handle(),
                      OFLineData{0, {}, &matrix, line.start.X, line.start.Y, line.end.X, line.end.Y, valuesCount, 0});
    }
};

/// A colour, each channel 0..1.
struct RgbColor {
    float red;
    float green;
    float blue;
};

/// The four colours that ClothingColors found. Its elements are 12 floats, three per colour.
class ClothingColorsResult : public ListResult<KMeanResult> {
public:
    using ListResult::ListResult;

    /// @param rank  0 for the first colour, 1 for the second; it is not checked
    RgbColor torso(std::size_t rank) const { return At(rank); }
    /// @param rank  0 for the first colour, 1 for the second; it is not checked
    RgbColor legs(std::size_t rank) const { return At(2 + rank); }

private:
    RgbColor At(std::size_t index) const { return {data()[3 * index], data()[3 * index + 1], data()[3 * index + 2]}; }
};

/// The two dominant colours of a person's upper body and the two of the legs; the colour of more pixels comes first.
class ClothingColors : public detail::Processor<CreateCVKMeanColorExtractor, KMeanData, KMeanResult> {
public:
    struct Options {};
    static constexpr std::size_t kKeypoints = 17;

    explicit ClothingColors(const Options& /*options*/ = {}) : Processor(KMeanOptions{}) {}

    /// @param frame      B, G, R
    /// @param keypoints  of the body, in relative coordinates, in the COCO order; only the first 17 are read
    /// @throws std::invalid_argument  there are fewer than 17 keypoints
    /// @throws cv::Exception          the torso or the legs cover fewer than two pixels
    ClothingColorsResult operator()(const ImageArgument& frame, Span<FloatPoint> keypoints) {
        if (keypoints.size() < kKeypoints) {
            detail::Refuse("quarry::ClothingColors: " + std::to_string(keypoints.size()) +
                           " keypoints are given; 17 are needed");
        }
        const int32_t count = detail::CountOf("quarry::ClothingColors: keypoints", keypoints.size());
        return {handle(), KMeanData{0, frame.record(), {{count}, detail::Unconst(keypoints.data())}}};
    }
};

}  // namespace quarry
