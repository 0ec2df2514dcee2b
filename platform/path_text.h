// Between paths of the standard library, which hold any letter, and the text in which this room's other
// calls, and plug-ins, name files: bytes in the code page of the machine on Windows, and the same bytes on
// Linux.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace platform {

/// The path that a text means.
std::filesystem::path pathFromText(const std::string& text);

/// The text for a path. Where the code page lacks a letter, the short names that the file system keeps for
/// what is there; nothing if it keeps none.
std::optional<std::string> textOfPath(const std::filesystem::path& path);

} // namespace platform
