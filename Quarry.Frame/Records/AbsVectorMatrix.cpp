#include "Quarry.Frame/Records/Buffers.h"
#include "Quarry/Memory.h"

AbsVectorMatrix* CreateAbsVectorMatrix(int width, int height) {
    auto matrix = std::make_unique<AbsVectorMatrix>();
    matrix->width = width;
    matrix->height = height;
    matrix->data = quarry::NewZeroedArray<AbsVector>(quarry::Product(width, height)).release();
    return matrix.release();
}

void DestroyAbsVectorMatrix(AbsVectorMatrix*& matrix) {
    if (matrix == nullptr) return;
    quarry::DeleteArray(matrix->data);
    quarry::DeleteRecord(matrix);
}
