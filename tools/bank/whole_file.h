// Reading and writing of files in one piece.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace bank {

/// All bytes of a file. Throws BankError naming it.
std::vector<std::uint8_t> readWholeFile(const std::filesystem::path& path);

/// Makes or replaces a file. It appears whole or not at all: whoever looks at `path` sees the old content or
/// the new one. Throws BankError naming the file, and then leaves no part of it behind.
void writeWholeFile(const std::filesystem::path& path, std::span<const std::uint8_t> bytes);
void writeWholeFile(const std::filesystem::path& path, const std::string& text);

/// The same with several files of the same content. Nothing is written if one of them cannot be made.
void writeWholeFiles(const std::vector<std::filesystem::path>& paths, std::span<const std::uint8_t> bytes);

} // namespace bank
