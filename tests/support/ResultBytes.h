#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "Quarry/Quarry.h"

/// What a result says to its host, as bytes to compare: pointers are followed, and what the library leaves unwritten
/// does not count.
namespace quarry::test {

class ResultBytes {
public:
    explicit ResultBytes(const VoLOutputData& result) { Add(result.Status, result.Variance); }
    explicit ResultBytes(const CosineOutputData& result) { Add(result.Status, result.Similarity); }
    explicit ResultBytes(const ColorComparingOutputData& result) { Add(result.Status, result.Similarity); }
    explicit ResultBytes(const ContourRateMeasuringOutputData& result) { Add(result.Status, result.Rate); }
    explicit ResultBytes(const ContourInstersectionProcessorResult& result) { Add(result.Status, result.Position); }
    explicit ResultBytes(const ImageOperationResult& result) { Add(result.Status, *result.Image); }
    explicit ResultBytes(const FilterResult& result) { Add(result.Status, *result.Image); }
    explicit ResultBytes(const RectExtractorResult& result) { Add(result.Status, *result.Image); }
    explicit ResultBytes(const TransformResult& result) { Add(result.Status, *result.ResultImage); }
    explicit ResultBytes(const FireOutputData& result) { Add(result.Status, *result.FireMask); }
    explicit ResultBytes(const ContourMaskProcessorResult& result) { Add(result.Status, *result.Mask); }
    explicit ResultBytes(const ContourResult& result) { Add(result.Status, *result.Contour); }
    explicit ResultBytes(const ClustererResult& result) {
        Add(result.Count);
        for (int32_t i = 0; i < result.Count; ++i) {
            Add(*result.Clusters[i].Contour, result.Clusters[i].CenterX, result.Clusters[i].CenterY);
        }
    }
    explicit ResultBytes(const KMeanResult& result) {
        Add(result.Status, result.Count);
        AddArray(result.Colors, result.Count * 3);
    }
    explicit ResultBytes(const OFLineResult& result) {
        Add(result.ValuesCount);
        AddArray(result.Values, result.ValuesCount);
    }
    explicit ResultBytes(const BackgroundResult& result) {
        Add(result.Status, *result.BackgroundImage, result.ReservedImage->timestamp);
        AddArray(result.ForegroundMask, result.BackgroundImage->width * result.BackgroundImage->height);
    }
    explicit ResultBytes(const OFCResult& result) {
        Add(result.Status, result.FlowMatrix->width, result.FlowMatrix->height);
        AddArray(result.FlowMatrix->data, result.FlowMatrix->width * result.FlowMatrix->height);
    }
    explicit ResultBytes(const MosseTrackerResult& result) { Add(result.Status, result.TargetRect, result.Found); }

    /// @param weighted  whether the detector gives its detections weights
    explicit ResultBytes(const ClassificationResult& result, bool weighted = true) {
        Add(result.Status, result.Count);
        // Detectors search in several threads and note what they find as it comes.
        std::vector<std::vector<uint8_t>> detections;
        for (int32_t i = 0; i < result.Count; ++i) {
            const Response& response = result.Responses[i];
            ResultBytes detection;
            detection.Add(response.Rect, weighted ? response.Weight : 0.0);
            detections.push_back(detection.bytes);
        }
        std::sort(detections.begin(), detections.end());
        for (const auto& detection : detections) bytes.insert(bytes.end(), detection.begin(), detection.end());
    }

    std::vector<uint8_t> bytes;

private:
    ResultBytes() = default;

    template <class... Values>
    void Add(const Values&... values) {
        (AddOne(values), ...);
    }
    template <class Value>
    void AddOne(const Value& value) {
        AddArray(&value, 1);
    }
    void AddOne(const Image& image) {
        Add(image.width, image.height, image.stride, image.timestamp);
        AddArray(image.data, image.height * image.stride);
    }
    void AddOne(const Mask& mask) {
        Add(mask.width, mask.height);
        AddArray(mask.data, mask.width * mask.height);
    }
    void AddOne(const Contour& contour) {
        Add(contour.Count, contour.Area, contour.Perimeter);
        AddArray(contour.Points, contour.Count);
    }
    template <class Value>
    void AddArray(const Value* values, int32_t count) {
        const auto* const begin = reinterpret_cast<const uint8_t*>(values);
        bytes.insert(bytes.end(), begin, begin + static_cast<std::size_t>(count) * sizeof(Value));
    }
};

}  // namespace quarry::test
