#include <stdexcept>

#include "Quarry/Memory.h"

void CreateResponse(float a, float b, float c, float d, double weight, Response* out) {
    if (out == nullptr) throw std::invalid_argument("CreateResponse: out is null; a Response to fill is needed");
    out->Weight = weight;
    // Crosswise: the third float is the height, the fourth the width. Hosts rely on the order.
    out->Rect = {a, b, d, c};
}

void DestroyResponse(Response* response) {
    delete response;
}
