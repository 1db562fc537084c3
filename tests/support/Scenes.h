#pragma once

#include <cstdint>
#include <opencv2/core.hpp>

#include "Quarry/SharedRecords.h"

namespace quarry::test {

/// Noise in all three channels, the same for the same seed.
cv::Mat RandomFrame(int width, int height, uint64_t seed);

/// A textured still background with a bright square that moves a few pixels per step.
cv::Mat MovingSquare(int width, int height, int step);

/// A soft ground with little contrast.
cv::Mat Ground(int width, int height);

/// Something to follow: soft blots of full contrast.
cv::Mat Pattern(int width, int height, uint64_t seed);

/// The part of a picture that lies on the frame, drawn with its left top pixel at a place.
void Draw(cv::Mat& frame, const cv::Mat& picture, const cv::Point& place);

/// A mask, 255 on 0: one object that stands in the middle quarter of the frame, with a hole, and smaller ones around
/// it.
cv::Mat ObjectMask(int width, int height);

/// The objects of that mask in noisy colours on black.
cv::Mat PaintedObjects(int width, int height);

/// Tongues of fire, about a tenth of the frame, before a dark textured background.
cv::Mat FireScene(int width, int height);

cv::Mat BlackFrame(int width, int height);

/// A black frame with one rectangle.
cv::Mat FrameWith(const cv::Size& size, const cv::Rect& object, const cv::Scalar& color = cv::Scalar::all(255));

/// Blobs, rings, lines and single pixels in random colours, some of them nearly black, on black.
cv::Mat RandomScene(const cv::Size& size, uint64_t seed);

/// The pixels of a packed frame as the host's Image; the frame keeps them.
Image ImageOf(const cv::Mat& frame, uint64_t timestamp = 0);

}  // namespace quarry::test
