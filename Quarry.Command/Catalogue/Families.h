/// @file
/// The catalogue's chapters, in its order: related operations together.
#pragma once

#include <vector>

#include "Catalogue/Catalogue.h"

namespace quarry::command {

std::vector<Operation> SharpnessOperations();
std::vector<Operation> PictureOperations();
std::vector<Operation> StreamOperations();
std::vector<Operation> FlowOperations();
std::vector<Operation> ContourOperations();
std::vector<Operation> PersonOperations();
std::vector<Operation> ColourOperations();
std::vector<Operation> GeometryOperations();

}  // namespace quarry::command
