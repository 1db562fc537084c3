#include "Quarry/Memory.h"

ImageOperationResult CreateImageOperationResult(int width, int height, int stride, unsigned long long timestamp) {
    return {0, CreateImage(width, height, stride, timestamp)};
}

void DestroyImageOperationResult(ImageOperationResult* result) {
    if (result != nullptr) DestroyImage(result->Image);
}

FilterResult CreateFilterResult(int width, int height, int stride, unsigned long long timestamp) {
    return {0, CreateImage(width, height, stride, timestamp)};
}

void DestroyFilterResult(FilterResult* result) {
    if (result != nullptr) DestroyImage(result->Image);
}

TransformResult CreateTransformResult(int width, int height, int stride, unsigned long long timestamp) {
    return {0, CreateImage(width, height, stride, timestamp)};
}

void DestroyTransformResult(TransformResult* result) {
    if (result != nullptr) DestroyImage(result->ResultImage);
}

RectExtractorResult CreateRectExtractorResult(int width, int height, int stride, unsigned long long timestamp) {
    return {0, CreateImage(width, height, stride, timestamp)};
}

void DestroyRectExtractorResult(RectExtractorResult* result) {
    if (result != nullptr) DestroyImage(result->Image);
}
