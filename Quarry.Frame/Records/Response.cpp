#include <stdexcept>

#include "Quarry/Memory.h"

void CreateResponse(float a, float b, float c, float d, double weight, Response* out) {
    if (out == nullptr) throw std::invalid_argument("CreateResponse: out is null; a Response to fill is needed");
    out->Weight = weight;
    // The third float is the height and the fourth the width: the order is part of the interface.
    out->Rect = {a, b, d, c};
}

void DestroyResponse(Response* response) {
    delete response;
}
