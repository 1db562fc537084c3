#include "JsonInput.h"

#include <cmath>
#include <fstream>
#include <limits>

#include "Console.h"
#include "Media.h"

namespace quarry::command {

nlohmann::json ReadJson(const std::string& path) {
    CheckIsFile(path);
    std::ifstream stream(path, std::ios::binary);
    try {
        return nlohmann::json::parse(stream);
    } catch (const nlohmann::json::exception&) {
        throw Failure(path + (stream.bad() ? ": cannot be read" : ": not JSON"));
    }
}

float SinglePrecision(const nlohmann::json& value, const std::string& named) {
    if (!value.is_number()) throw Failure(named + " is not a number");
    const double number = value.get<double>();
    if (std::abs(number) > static_cast<double>(std::numeric_limits<float>::max())) {
        throw Failure(named + " is too large for single precision");
    }
    return static_cast<float>(number);
}

}  // namespace quarry::command
