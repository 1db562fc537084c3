#include "Quarry.Frame/Records/Buffers.h"
#include "Quarry/Memory.h"

FloatImageUpdaterResult* CreateFloatImageUpdaterResult(int width, int height) {
    auto result = std::make_unique<FloatImageUpdaterResult>();
    result->Image = CreateFloatImage(width, height);
    return result.release();
}

void DestroyFloatImageUpdaterResult(FloatImageUpdaterResult*& result) {
    if (result == nullptr) return;
    DestroyFloatImage(result->Image);
    quarry::DeleteRecord(result);
}

DepthMapCalcResult CreateDepthMapCalcResult(int width, int height) {
    return {0, CreateFloatImage(width, height)};
}

void DestroyDepthMapCalcResult(DepthMapCalcResult* result) {
    if (result != nullptr) DestroyFloatImage(result->DepthMap);
}

SODResult* CreateSODResult(int width, int height, int count) {
    auto result = std::make_unique<SODResult>();
    auto points = quarry::NewArray<FloatPoint>(count);
    result->Count = count;
    result->Mask = CreateMask(width, height);
    result->Points = points.release();
    return result.release();
}

void DestroySODResult(SODResult*& result) {
    if (result == nullptr) return;
    DestroyMask(result->Mask);
    quarry::DeleteArray(result->Points);
    quarry::DeleteRecord(result);
}
