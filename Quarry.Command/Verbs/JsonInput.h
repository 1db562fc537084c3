#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace quarry::command {

/// @throws Failure  there is no such file or it is not JSON
nlohmann::json ReadJson(const std::string& path);

/// A number that the library takes.
/// @param named  file and place, as errors name it: "face.json: value 3"
/// @throws Failure  it is not a number or too large
float SinglePrecision(const nlohmann::json& value, const std::string& named);

}  // namespace quarry::command
