// A skin to begin with.
#pragma once

#include <filesystem>

namespace tools::window {

/// Makes `folder`, a whole skin with a control for every parameter: its skin.xml and all its pictures. Leaves
/// nothing behind if that fails. Throws ToolError naming the folder.
void makeSkin(const std::filesystem::path& folder);

} // namespace tools::window
