// Skins as folders.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tools::window {

/// The skin.xml of a folder, in any letter case; nothing if there is none.
std::optional<std::filesystem::path> findSkinFile(const std::filesystem::path& folder);

/// The same. Throws ToolError if there is none.
std::filesystem::path skinFile(const std::filesystem::path& folder);

/// The content of that file. Throws ToolError.
std::string skinText(const std::filesystem::path& file);

/// The folder of the skin that a person means: a path with a slash in it, or the name of a folder beside
/// `library` or, if there is no such skin, in the current one. Absolute. Throws ToolError.
std::filesystem::path skinFolderFor(const std::string& nameOrFolder, const std::filesystem::path& library);

} // namespace tools::window
