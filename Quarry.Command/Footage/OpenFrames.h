#pragma once

#include <memory>
#include <string>

#include "FrameSource.h"

namespace quarry::command {

/// @param input  a video file, a folder of pictures, a pattern of their names (`shots/*.png`), or a camera's number;
///               pictures come in the order of their names, 25 per second
/// @throws Failure  nothing of that name exists, or it cannot be read
std::unique_ptr<FrameSource> OpenFrames(const std::string& input);

}  // namespace quarry::command
