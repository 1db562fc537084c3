/// @file
/// Operations that turn frames into a picture or a mask.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "Quarry/Host/Operation.hpp"
#include "Quarry/Host/Results.hpp"

namespace quarry {

/// Absolute difference of two frames, byte by byte, with the first one's timestamp.
class ImageSubtractor
    : public detail::Processor<CreateCVImageAbsSubtractor, BinaryImageOperationData, ImageOperationResult> {
public:
    struct Options {};
    using Picture = ImageResult<ImageOperationResult>;

    explicit ImageSubtractor(const Options& /*options*/ = {}) : Processor(BinaryImageOperationOptions{}) {}

    /// @throws std::invalid_argument  the frames' sizes differ
    Picture operator()(const ImageArgument& first, const ImageArgument& second) {
        if (first.width() != second.width() || first.height() != second.height()) {
            detail::Refuse("quarry::ImageSubtractor: the first frame is " +
                           detail::SizeText(first.width(), first.height()) + ", the second " +
                           detail::SizeText(second.width(), second.height()) + "; equal sizes are needed");
        }
        return {handle(), BinaryImageOperationData{0, first.record(), second.record()}};
    }
};

/// A denoised copy of a frame, by non-local means, with the frame's timestamp.
class FastNlMeansDenoising : public detail::Processor<CreateCVFastNlMeansDenoisingFilter, FilterData, FilterResult> {
public:
    struct Options {};
    using Picture = ImageResult<FilterResult>;

    explicit FastNlMeansDenoising(const Options& /*options*/ = {}) : Processor(FilterOptions{}) {}

    Picture operator()(const ImageArgument& frame) { return {handle(), FilterData{0, frame.record()}}; }
};

/// A rectangle in a frame, turned about its centre, in pixels.
struct TurnedRect {
    int centerX = 0;
    int centerY = 0;
    int width = 0;       ///< 0 or more
    int height = 0;      ///< 0 or more
    double degrees = 0;  ///< rounded to single precision
};

/// How pixels are interpolated.
enum class Interpolation : uint16_t { Nearest = 0, Bilinear = 1 };

/// A turned rectangle, cut out of a frame upright, with the frame's timestamp; black where it leaves the frame.
class RectExtractor : public detail::Processor<CreateCVRectExtractor, RectExtractorData, RectExtractorResult> {
public:
    struct Options {
        Interpolation interpolation = Interpolation::Bilinear;
    };
    using Picture = ImageResult<RectExtractorResult>;

    RectExtractor() : RectExtractor(Options{}) {}
    explicit RectExtractor(const Options& options) : Processor({0, 0, static_cast<uint16_t>(options.interpolation)}) {}

    /// @throws std::invalid_argument  a value of the rectangle does not fit 16 bits, a side of it is negative, or the
    ///                                frame has no pixels in a row
    /// @throws cv::Exception          a side of the frame has 32767 pixels or more
    Picture operator()(const ImageArgument& frame, const TurnedRect& rect) {
        return {handle(),
                RectExtractorData{0, frame.record(), detail::Short("quarry::TurnedRect.centerX", rect.centerX),
                                  detail::Short("quarry::TurnedRect.centerY", rect.centerY),
                                  detail::Short("quarry::TurnedRect.width", rect.width),
                                  detail::Short("quarry::TurnedRect.height", rect.height), rect.degrees}};
    }
};

/// Aligns a frame to a layout of five points, with the similarity transform that carries the source points onto the
/// destination points with the least squared error. Output pixels that map outside the frame are black.
class SimilarityTransform
    : public detail::Processor<CreateCVAffineTransformProcessor, AffineTransformData, TransformResult> {
public:
    struct Options {
        int width = 112;   ///< of the output, pixels
        int height = 112;  ///< of the output, pixels
    };
    using Picture = ImageResult<TransformResult>;
    static constexpr std::size_t kPoints = 5;

    SimilarityTransform() : SimilarityTransform(Options{}) {}
    /// @throws std::invalid_argument  a side of the output is below 1
    explicit SimilarityTransform(const Options& options) : Processor(RecordOf(options)) {}

    /// @param source       in frame pixels
    /// @param destination  in output pixels
    /// @throws std::invalid_argument  there are not five points of each
    /// @throws cv::Exception          the frame is empty or too large to warp
    Picture operator()(const ImageArgument& frame, Span<FloatPoint> source, Span<FloatPoint> destination) {
        if (source.size() != kPoints || destination.size() != kPoints) {
            detail::Refuse("quarry::SimilarityTransform: " + std::to_string(source.size()) + " source points and " +
                           std::to_string(destination.size()) + " destination points are given; 5 of each are needed");
        }
        return {handle(), AffineTransformData{0, frame.record(), PointsOf(destination), PointsOf(source)}};
    }

private:
    static TransformOptions RecordOf(const Options& options) {
        detail::CheckOutputSize("quarry::SimilarityTransform::Options", options.width, options.height);
        return {0, 0, options.width, options.height};
    }
    static PointArray PointsOf(Span<FloatPoint> points) {
        return {{static_cast<int32_t>(points.size())}, detail::Unconst(points.data())};
    }
};

/// Turns a frame about its centre, and scales it, on a canvas that holds the whole turned frame; then resizes the
/// canvas to the frame's size. The result has the frame's timestamp and is black where the frame does not cover it.
class RotationTransform
    : public detail::Processor<CreateCVRotationTransformProcessor, RotationTransformData, TransformResult> {
public:
    struct Options {
        int width;   ///< of every frame, pixels
        int height;  ///< of every frame, pixels
    };
    using Picture = ImageResult<TransformResult>;

    /// @throws std::invalid_argument  a side is below 1
    explicit RotationTransform(const Options& options) : Processor(RecordOf(options)), size(options) {}

    /// @param degrees  positive turns counter-clockwise
    /// @param scale    of the picture on its canvas; the canvas keeps its size
    /// @throws std::invalid_argument  the frame does not have the options' size
    /// @throws cv::Exception          a side is 32767 pixels or more
    Picture operator()(const ImageArgument& frame, double degrees, double scale = 1) {
        if (frame.width() != size.width || frame.height() != size.height) {
            detail::Refuse("quarry::RotationTransform: the frame is " +
                           detail::SizeText(frame.width(), frame.height()) + "; the options' " +
                           detail::SizeText(size.width, size.height) + " is needed");
        }
        return {handle(), RotationTransformData{0, frame.record(), degrees, scale}};
    }

private:
    static TransformOptions RecordOf(const Options& options) {
        detail::CheckOutputSize("quarry::RotationTransform::Options", options.width, options.height);
        return {0, 0, options.width, options.height};
    }

    Options size;
};

/// The flame region of a frame: a mask of its size, 255 flame and 0 none.
class FirePixels : public detail::Processor<CreateCVPixelwiseFireProcessor, FireInputData, FireOutputData> {
public:
    struct Options {};
    using Flames = MaskResult<FireOutputData>;

    explicit FirePixels(const Options& /*options*/ = {}) : Processor(ProcessOptions{}) {}

    /// @throws std::invalid_argument  the frame has more than 2147483647 pixels
    Flames operator()(const ImageArgument& frame) { return {handle(), FireInputData{0, frame.record()}}; }
};

}  // namespace quarry
