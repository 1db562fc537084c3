#pragma once

#include <cstring>
#include <tuple>

#include "Quarry/Quarry.h"

namespace quarry {

/// The fields of a result record that the library writes. All other bytes (padding, fields that are not listed) keep
/// what the host had there.
template <class Result>
struct RecordFields;

template <>
struct RecordFields<VoLOutputData> {
    static constexpr auto value = std::tuple{&VoLOutputData::Status, &VoLOutputData::Variance};
};
template <>
struct RecordFields<ImageOperationResult> {
    static constexpr auto value = std::tuple{&ImageOperationResult::Status, &ImageOperationResult::Image};
};
template <>
struct RecordFields<CosineOutputData> {
    static constexpr auto value = std::tuple{&CosineOutputData::Status, &CosineOutputData::Similarity};
};
template <>
struct RecordFields<FilterResult> {
    static constexpr auto value = std::tuple{&FilterResult::Status, &FilterResult::Image};
};
template <>
struct RecordFields<ContourResult> {
    static constexpr auto value = std::tuple{&ContourResult::Status, &ContourResult::Contour};
};
template <>
struct RecordFields<ContourMaskProcessorResult> {
    static constexpr auto value = std::tuple{&ContourMaskProcessorResult::Status, &ContourMaskProcessorResult::Mask};
};
template <>
struct RecordFields<ContourInstersectionProcessorResult> {
    static constexpr auto value =
        std::tuple{&ContourInstersectionProcessorResult::Status, &ContourInstersectionProcessorResult::Position};
};
template <>
struct RecordFields<ContourRateMeasuringOutputData> {
    static constexpr auto value =
        std::tuple{&ContourRateMeasuringOutputData::Status, &ContourRateMeasuringOutputData::Rate};
};
template <>
struct RecordFields<ClustererResult> {
    static constexpr auto value = std::tuple{&ClustererResult::Clusters, &ClustererResult::Count};
};
template <>
struct RecordFields<RectExtractorResult> {
    static constexpr auto value = std::tuple{&RectExtractorResult::Status, &RectExtractorResult::Image};
};
template <>
struct RecordFields<KMeanResult> {
    static constexpr auto value = std::tuple{&KMeanResult::Status, &KMeanResult::Count, &KMeanResult::Colors};
};
template <>
struct RecordFields<ClassificationResult> {
    static constexpr auto value =
        std::tuple{&ClassificationResult::Status, &ClassificationResult::Count, &ClassificationResult::Responses};
};
template <>
struct RecordFields<ColorComparingOutputData> {
    static constexpr auto value = std::tuple{&ColorComparingOutputData::Status, &ColorComparingOutputData::Similarity};
};
template <>
struct RecordFields<FireOutputData> {
    static constexpr auto value = std::tuple{&FireOutputData::Status, &FireOutputData::FireMask};
};
template <>
struct RecordFields<TransformResult> {
    static constexpr auto value = std::tuple{&TransformResult::Status, &TransformResult::ResultImage};
};
template <>
struct RecordFields<OFLineResult> {
    static constexpr auto value = std::tuple{&OFLineResult::Values, &OFLineResult::ValuesCount};
};
template <>
struct RecordFields<BackgroundResult> {
    static constexpr auto value = std::tuple{&BackgroundResult::Status, &BackgroundResult::ForegroundMask,
                                             &BackgroundResult::BackgroundImage, &BackgroundResult::ReservedImage};
};
template <>
struct RecordFields<OFCResult> {
    static constexpr auto value = std::tuple{&OFCResult::Status, &OFCResult::FlowMatrix};
};
template <>
struct RecordFields<MosseTrackerResult> {
    static constexpr auto value = std::tuple{&MosseTrackerResult::Status, &MosseTrackerResult::TargetRect,
                                             &MosseTrackerResult::Found, &MosseTrackerResult::Zero};
};

/// Writes a result into the host's record, field by field.
template <class Result>
void WriteFields(const Result& from, Result* to) {
    // NOLINTNEXTLINE(bugprone-sizeof-expression): where a field is a pointer, the pointer is what is copied
    std::apply([&](auto... field) { (std::memcpy(&(to->*field), &(from.*field), sizeof(from.*field)), ...); },
               RecordFields<Result>::value);
}

}  // namespace quarry
