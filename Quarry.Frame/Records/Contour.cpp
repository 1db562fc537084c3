#include "Quarry.Frame/Records/Buffers.h"
#include "Quarry/Memory.h"

Contour* CreateContour(int count) {
    auto contour = std::make_unique<Contour>();
    contour->Count = count;
    contour->Points = quarry::NewArray<FloatPoint>(count).release();
    return contour.release();
}

void DestroyContour(Contour*& contour) {
    if (contour == nullptr) return;
    quarry::DeleteArray(contour->Points);
    quarry::DeleteRecord(contour);
}
