// Recognises a file by what it holds, wherever it lies and whenever it was written.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace tools::render {

/// 16 hexadecimal digits (64-bit FNV-1a), against mistakes and not against forgery.
std::string contentHash(std::string_view bytes);

/// The same of a file's content. Throws ToolError naming the file.
std::string contentHashOf(const std::filesystem::path& file);

} // namespace tools::render
