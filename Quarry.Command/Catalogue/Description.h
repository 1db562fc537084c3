/// @file
/// An operation of the catalogue, written out.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "Catalogue.h"

namespace quarry::command {

/// "processor" or "updater".
const char* NameOf(Kind kind);

/// For a terminal.
std::string TextOf(const Operation& operation);

/// A page that begins with a heading of the first level.
std::string MarkdownOf(const Operation& operation);

/// For programs: a host in another language can lay out its records by it.
nlohmann::ordered_json JsonOf(const Operation& operation);

}  // namespace quarry::command
