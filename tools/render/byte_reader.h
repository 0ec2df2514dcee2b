// Reading files that are made of bytes, whole ones into memory and big-endian numbers out of them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace tools::render {

/// The whole file. Throws ToolError, naming it, if it cannot be read or is longer than `limit` bytes.
std::vector<std::uint8_t> readBytes(const std::filesystem::path& path, std::uintmax_t limit);

/// The same as text.
std::string readText(const std::filesystem::path& path, std::uintmax_t limit);

/// The big-endian number of `size` bytes, 1 to 4, that starts at `offset`; the bytes must be there.
std::uint32_t bigEndian(std::span<const std::uint8_t> bytes, std::size_t offset, std::size_t size);

} // namespace tools::render
