#pragma once

#include <string>
#include <vector>

namespace quarry::command {

/// Whether somebody who wrote `written` may have meant `name`: it is a part of the name, or the two have the same
/// letters but for two at most.
bool IsNear(const std::string& written, const std::string& name);

/// The question that ends an error: "; did you mean flow or follow?". Empty when there are no names.
std::string DidYouMean(const std::vector<std::string>& names);

}  // namespace quarry::command
