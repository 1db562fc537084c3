#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace quarry::command {

/// The object on one line, with the line end. Bytes that are not UTF-8 are replaced.
inline std::string JsonLine(const nlohmann::ordered_json& object) {
    return object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

}  // namespace quarry::command
