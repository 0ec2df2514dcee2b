// The positions, kinds and ids of a skin's objects, drawn over a picture of its window.
#pragma once

#include "desk/picture.h"
#include "tools/skin_check/object_outline.h"

#include <filesystem>
#include <vector>

namespace tools::window {

/// Writes the picture as a PNG, with a frame and a label for each object. Later objects cover earlier ones.
/// Throws ToolError naming the file.
void writeOutlined(const desk::Picture& picture, const std::vector<ObjectOutline>& outlines,
                   const std::filesystem::path& file);

} // namespace tools::window
