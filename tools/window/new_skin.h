// A new skin as a starting point for an author.
#pragma once

#include <filesystem>

namespace tools::window {

/// Creates `folder` with a complete skin: skin.xml with a control for every parameter, and all pictures.
/// Removes the folder again if that fails. Throws ToolError naming the folder, or the file.
void makeSkin(const std::filesystem::path& folder);

} // namespace tools::window
