#pragma once

#include <string>
#include <vector>

#include "Demo/Section.h"

namespace quarry::command {

/// The whole page: it needs no other file, no network and no script.
std::string PageHtml(const Footage& footage, const std::vector<Section>& sections);

}  // namespace quarry::command
