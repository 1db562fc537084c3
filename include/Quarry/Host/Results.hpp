/// @file
/// The results that own their buffers.
#pragma once

#include <cstddef>
#include <cstdint>

#include "Quarry/Host/Handle.hpp"
#include "Quarry/Host/Views.hpp"

namespace quarry {

namespace detail {

template <class Record>
const Image& ImageIn(const Record& record) {
    return *record.Image;
}
inline const Image& ImageIn(const TransformResult& record) {
    return *record.ResultImage;
}

inline const Mask& MaskIn(const ContourMaskProcessorResult& record) {
    return *record.Mask;
}
inline const Mask& MaskIn(const FireOutputData& record) {
    return *record.FireMask;
}

inline Span<FloatPoint> ElementsIn(const ContourResult& record) {
    return {record.Contour->Points, static_cast<std::size_t>(record.Contour->Count)};
}
inline Span<Cluster> ElementsIn(const ClustererResult& record) {
    return {record.Clusters, static_cast<std::size_t>(record.Count)};
}
inline Span<Response> ElementsIn(const ClassificationResult& record) {
    return {record.Responses, static_cast<std::size_t>(record.Count)};
}
inline Span<float> ElementsIn(const OFLineResult& record) {
    return {record.Values, static_cast<std::size_t>(record.ValuesCount)};
}
inline Span<float> ElementsIn(const KMeanResult& record) {
    return {record.Colors, static_cast<std::size_t>(record.Count) * 3};
}

}  // namespace detail

/// A picture that an operation made, 3 bytes per pixel, rows packed. It converts to an ImageArgument.
template <class Record>
class ImageResult : public Owned<Record> {
public:
    using Owned<Record>::Owned;

    /// Valid as long as this result.
    ImageView view() const& {
        const Image& image = detail::ImageIn(this->record());
        return {image.data, image.width, image.height, image.timestamp};
    }
    ImageView view() const&& = delete;
    operator ImageView() const& { return view(); }
    /// Deleted, since the view of a temporary would outlive its pixels. A call takes a temporary as an ImageArgument.
    operator ImageView() const&& = delete;

    int width() const { return view().width(); }
    int height() const { return view().height(); }
    /// Bytes from one row to the next: 3 times the width, since rows are packed.
    int stride() const { return view().stride(); }
    const uint8_t* data() const { return view().data(); }
    /// Frame time in ticks of 100 ns.
    uint64_t timestamp() const { return view().timestamp(); }
};

/// A mask that an operation made, one byte per pixel, rows packed. It converts to a MaskArgument.
template <class Record>
class MaskResult : public Owned<Record> {
public:
    using Owned<Record>::Owned;

    /// Valid as long as this result.
    MaskView view() const& {
        const Mask& mask = detail::MaskIn(this->record());
        return {mask.data, mask.width, mask.height};
    }
    MaskView view() const&& = delete;
    operator MaskView() const& { return view(); }
    /// Deleted, since the view of a temporary would outlive its pixels. A call takes a temporary as a MaskArgument.
    operator MaskView() const&& = delete;

    int width() const { return view().width(); }
    int height() const { return view().height(); }
    int stride() const { return view().stride(); }
    const uint8_t* data() const { return view().data(); }
    /// @param x, y  inside the mask; they are not checked
    uint8_t At(int x, int y) const { return view().At(x, y); }
};

/// The elements of a result, to iterate over or to pass on as a Span; valid as long as the result.
template <class Record>
class ListResult : public Owned<Record> {
    using Elements = decltype(detail::ElementsIn(Record{}));

public:
    using Owned<Record>::Owned;

    auto data() const { return elements().data(); }
    std::size_t size() const { return elements().size(); }
    bool empty() const { return elements().empty(); }
    auto begin() const { return elements().begin(); }
    auto end() const { return elements().end(); }
    /// @param index  below `size()`; it is not checked
    const auto& operator[](std::size_t index) const { return data()[index]; }

private:
    Elements elements() const { return detail::ElementsIn(this->record()); }
};

}  // namespace quarry
