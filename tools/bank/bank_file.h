// A bank as hosts keep it: an .fxb file that holds all programs as one opaque chunk of the plug-in's own
// records. The words of the header are big-endian, the records little-endian.
#pragma once

#include "tools/bank/bank_program.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace bank {

/// All records.
constexpr std::size_t kChunkSize = 14336;
/// What stands ahead of the chunk.
constexpr std::size_t kHeaderSize = 160;

/// The whole file. Names must have passed the table's checks.
std::vector<std::uint8_t> bankFileBytes(const Bank& bank);

/// The records alone, as a host hands them to the plug-in.
std::vector<std::uint8_t> chunkBytes(const Bank& bank);

/// Reads a file's bytes. Throws BankError if they are not a bank of this plug-in in one chunk. What stands in
/// the free slots of the records is passed over.
Bank parseBankFile(std::span<const std::uint8_t> bytes, const std::string& fileName);

} // namespace bank
