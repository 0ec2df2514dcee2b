// The files that carry an effect's state: a bare chunk, as a host keeps it in its project, and a bank file
// (.fxb), which is a chunk with a published header before it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

namespace tools::render {

using Bytes = std::vector<std::uint8_t>;

/// A bank file's content.
struct BankFile {
    std::int32_t effectId = 0; ///< unique id of the effect it was made by
    Bytes chunk;               ///< to be handed to the effect as a bank
};

/// Reads a bank of one chunk. Throws ToolError, without the file's name, for anything else; banks of plain
/// parameters are told apart.
BankFile parseBankFile(std::span<const std::uint8_t> bytes);

/// parseBankFile() of a file; its errors name the file.
BankFile readBankFile(const std::filesystem::path& path);

/// The bytes of a chunk file. Throws ToolError naming the file.
Bytes readChunkFile(const std::filesystem::path& path);

} // namespace tools::render
