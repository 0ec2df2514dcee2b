// A picture as a file.
#pragma once

#include "desk/picture.h"

#include <filesystem>

namespace desk {
class Canvas;
}

namespace tools::window {

/// Writes a PNG, whole or not at all. Throws ToolError naming the file.
void writePng(const desk::Picture& picture, const std::filesystem::path& file);
void writePng(desk::Canvas& canvas, const std::filesystem::path& file);

} // namespace tools::window
