#include "Quarry.OpenCV/VarianceOfLaplacian.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <opencv2/imgproc.hpp>

#include "Quarry.OpenCV/PackedFrame.h"

namespace {

/// Number of squares whose sum fits 32 bits: none exceeds (4 x 255)^2.
constexpr int kSquaresInAnInt = std::numeric_limits<int32_t>::max() / (4 * 255 * 4 * 255);

struct Rows {
    const uint8_t* above;
    const uint8_t* here;
    const uint8_t* below;
};

/// The index, or its reflection if it is one beyond the picture: that of the neighbour inside, or 0 if there is none.
int ReflectedIndex(int index, int count) {
    return cv::borderInterpolate(index, count, cv::BORDER_REFLECT_101);
}

const uint8_t* ReflectedRow(const cv::Mat& grey, int row) {
    return grey.ptr(ReflectedIndex(row, grey.rows));
}

int16_t Laplacian(const Rows& rows, int left, int column, int right) {
    return static_cast<int16_t>(rows.above[column] + rows.below[column] + rows.here[left] + rows.here[right] -
                                4 * rows.here[column]);
}

/// The square of the Laplacian at an end of a row, where both neighbours are the pixel inside.
int64_t SquareAtEnd(const Rows& rows, int column, int inside) {
    const int64_t value = Laplacian(rows, inside, column, inside);
    return value * value;
}

int64_t SquaresOfRow(const Rows& rows, int columns) {
    int64_t sum = SquareAtEnd(rows, 0, ReflectedIndex(-1, columns));
    if (columns == 1) return sum;
    const int last = columns - 1;
    sum += SquareAtEnd(rows, last, last - 1);
    for (int c = 1; c < last;) {
        int32_t part = 0;
        for (const int end = c + std::min(kSquaresInAnInt, last - c); c < end; ++c) {
            const int16_t value = Laplacian(rows, c - 1, c, c + 1);
            part += value * value;
        }
        sum += part;
    }
    return sum;
}

int64_t SumOfSquares(const cv::Mat& grey) {
    int64_t sum = 0;
    for (int row = 0; row < grey.rows; ++row) {
        const Rows rows{ReflectedRow(grey, row - 1), grey.ptr(row), ReflectedRow(grey, row + 1)};
        sum += SquaresOfRow(rows, grey.cols);
    }
    return sum;
}

/// The sum of the Laplacian. Inside the picture the contributions of a pixel to its four neighbours cancel its own
/// weight of -4. Only the differences between the reflected pixels and the border pixels remain.
int64_t Sum(const cv::Mat& grey) {
    const int lastColumn = grey.cols - 1;
    const int leftInside = ReflectedIndex(-1, grey.cols);
    const int rightInside = ReflectedIndex(grey.cols, grey.cols);
    int64_t sum = 0;
    for (int row = 0; row < grey.rows; ++row) {
        const uint8_t* const here = grey.ptr(row);
        sum += here[leftInside] - here[0] + here[rightInside] - here[lastColumn];
    }
    const uint8_t* const top = grey.ptr(0);
    const uint8_t* const topInside = ReflectedRow(grey, -1);
    const uint8_t* const bottom = grey.ptr(grey.rows - 1);
    const uint8_t* const bottomInside = ReflectedRow(grey, grey.rows);
    for (int column = 0; column < grey.cols; ++column) {
        sum += topInside[column] - top[column] + bottomInside[column] - bottom[column];
    }
    return sum;
}

/// The deviation as OpenCV computes it.
double PlainDeviation(const cv::Mat& grey) {
    cv::Mat laplacian;
    cv::Laplacian(grey, laplacian, CV_64F);
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::meanStdDev(laplacian, mean, deviation);
    return deviation[0];
}

/// The same deviation from the sums, which are exact in both cases: the steps round as those of cv::meanStdDev do.
double DeviationOfSums(int64_t sum, int64_t squares, std::size_t pixels) {
    const double share = 1.0 / static_cast<double>(pixels);
    const double mean = static_cast<double>(sum) * share;
    return std::sqrt(std::max(static_cast<double>(squares) * share - mean * mean, 0.0));
}

}  // namespace

float quarry::VarianceOfLaplacian(const cv::Mat& grey, std::size_t pixels) {
    const double deviation =
        pixels <= kCountablePixels ? DeviationOfSums(Sum(grey), SumOfSquares(grey), pixels) : PlainDeviation(grey);
    // The square of the narrowed deviation, not the narrowed variance: they differ in the last bits.
    const auto narrowed = static_cast<float>(deviation);
    return narrowed * narrowed;
}

VoLOutputData VarianceOfLaplacianProcessor::DoProcess(VoLInputData data) {
    cv::Mat grey;
    cv::cvtColor(quarry::PackedFrame(data.Image), grey, cv::COLOR_BGR2GRAY);
    return {0, quarry::VarianceOfLaplacian(grey, grey.total())};
}
