/// @file
/// Adapters between Host.hpp and OpenCV: views over matrices, matrices over results. They copy no pixels unless their
/// comment says so.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <opencv2/core.hpp>
#include <string>

#include "Quarry/Host.hpp"

namespace quarry {

namespace detail {

/// The name of a matrix type, such as CV_8UC3.
inline std::string TypeText(int type) {
    static constexpr std::array kDepths = {"8U", "8S", "16U", "16S", "32S", "32F", "64F", "16F"};
    return "CV_" + std::string(kDepths.at(static_cast<std::size_t>(CV_MAT_DEPTH(type)))) + "C" +
           std::to_string(CV_MAT_CN(type));
}

/// @param function  the called function, for the message
inline void CheckMatrix(const char* function, const cv::Mat& matrix, int type) {
    if (matrix.dims > 2) {
        Refuse(std::string(function) + ": a matrix of " + std::to_string(matrix.dims) + " dimensions is given; 2 are " +
               "needed");
    }
    if (matrix.type() != type) {
        Refuse(std::string(function) + ": a matrix of type " + TypeText(matrix.type()) + " is given; " +
               TypeText(type) + " is needed");
    }
}

inline void CheckPacked(const char* function, const cv::Mat& matrix) {
    if (matrix.isContinuous()) return;
    Refuse(std::string(function) + ": rows are " + std::to_string(matrix.step[0]) + " bytes apart; packed rows, " +
           std::to_string(static_cast<std::size_t>(matrix.cols) * matrix.elemSize()) +
           " bytes apart, are needed (PackedImage and PackedMask copy what is not packed)");
}

}  // namespace detail

/// A view of a frame; the pixels still belong to the matrix.
/// @param frame      CV_8UC3, rows packed
/// @param timestamp  frame time in ticks of 100 ns
/// @throws std::invalid_argument  the matrix has another type, or its rows are padded, as those of a region are
inline ImageView ViewOf(const cv::Mat& frame, uint64_t timestamp = 0) {
    detail::CheckMatrix("quarry::ViewOf", frame, CV_8UC3);
    detail::CheckPacked("quarry::ViewOf", frame);
    return {frame.data, frame.cols, frame.rows, timestamp};
}

/// A view of a mask; the pixels still belong to the matrix.
/// @param mask  CV_8UC1, rows packed
/// @throws std::invalid_argument  the matrix has another type, or its rows are padded, as those of a region are
inline MaskView MaskViewOf(const cv::Mat& mask) {
    detail::CheckMatrix("quarry::MaskViewOf", mask, CV_8UC1);
    detail::CheckPacked("quarry::MaskViewOf", mask);
    return {mask.data, mask.cols, mask.rows};
}

/// A frame whose rows are packed: it shares the pixels of a packed matrix and copies those of any other. Its views are
/// valid as long as it lives.
class PackedImage {
public:
    /// @param frame       CV_8UC3, of any stride
    /// @param timestamp_  frame time in ticks of 100 ns
    /// @throws std::invalid_argument  the matrix has another type
    explicit PackedImage(const cv::Mat& frame, uint64_t timestamp_ = 0) : timestamp(timestamp_) {
        detail::CheckMatrix("quarry::PackedImage", frame, CV_8UC3);
        packed = frame.isContinuous() ? frame : frame.clone();
    }

    ImageView view() const& { return ViewOf(packed, timestamp); }
    ImageView view() const&& = delete;
    operator ImageView() const& { return view(); }
    operator ImageView() const&& = delete;
    const cv::Mat& matrix() const { return packed; }

private:
    cv::Mat packed;
    uint64_t timestamp;
};

/// The same for a mask, CV_8UC1.
class PackedMask {
public:
    explicit PackedMask(const cv::Mat& mask) {
        detail::CheckMatrix("quarry::PackedMask", mask, CV_8UC1);
        packed = mask.isContinuous() ? mask : mask.clone();
    }

    MaskView view() const& { return MaskViewOf(packed); }
    MaskView view() const&& = delete;
    operator MaskView() const& { return view(); }
    operator MaskView() const&& = delete;
    const cv::Mat& matrix() const { return packed; }

private:
    cv::Mat packed;
};

/// A CV_8UC3 header over the pixels of a view, without a copy. Do not write to it; it is valid as long as the pixels.
inline cv::Mat MatOf(const ImageView& image) {
    return cv::Mat(image.height(), image.width(), CV_8UC3, detail::Unconst(image.data()));
}
/// The same for a mask, CV_8UC1.
inline cv::Mat MatOf(const MaskView& mask) {
    return cv::Mat(mask.height(), mask.width(), CV_8UC1, detail::Unconst(mask.data()));
}
/// The same for a motion field, CV_32FC2: displacements to the right and down, in pixels.
inline cv::Mat MatOf(const FlowView& field) {
    return cv::Mat(field.height(), field.width(), CV_32FC2, detail::Unconst(field.data()));
}

/// A copy of the pixels, which the matrix owns.
inline cv::Mat CloneOf(const ImageArgument& image) {
    return MatOf(image).clone();
}
inline cv::Mat CloneOf(const MaskArgument& mask) {
    return MatOf(mask).clone();
}
inline cv::Mat CloneOf(const FlowView& field) {
    return MatOf(field).clone();
}

}  // namespace quarry
