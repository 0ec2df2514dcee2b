// Reading whole files. Pipes are read too, and what is wrong with a file is told.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace tools {

/// The whole file. Throws ToolError, naming it, if it cannot be read or is longer than `limit` bytes.
std::vector<std::uint8_t> readBytes(const std::filesystem::path& path, std::uintmax_t limit = UINTMAX_MAX);

/// The same as text.
std::string readText(const std::filesystem::path& path, std::uintmax_t limit = UINTMAX_MAX);

} // namespace tools
