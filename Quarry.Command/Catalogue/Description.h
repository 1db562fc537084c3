/// @file
/// Describes an operation of the catalogue in several formats.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "Catalogue.h"

namespace quarry::command {

/// "processor" or "updater".
const char* NameOf(Kind kind);

/// Plain text for a terminal.
std::string TextOf(const Operation& operation);

/// A page in Markdown that begins with a heading of the first level.
std::string MarkdownOf(const Operation& operation);

/// JSON for programs, by which a host in another language can lay out its records.
nlohmann::ordered_json JsonOf(const Operation& operation);

}  // namespace quarry::command
