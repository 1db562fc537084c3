#pragma once

#include <string>
#include <vector>

namespace quarry::command {

/// Whether somebody who wrote `written` may have meant `name`: it is a part of the name, or at most two letters are not
/// in both.
bool IsNear(const std::string& written, const std::string& name);

/// The question that goes with an error: "; did you mean flow or follow?". Empty when there are no names.
std::string DidYouMean(const std::vector<std::string>& names);

}  // namespace quarry::command
