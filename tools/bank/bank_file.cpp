#include "tools/bank/bank_file.h"

#include "presets/delay_program.h"
#include "vst2/vst2.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace bank {
namespace {

constexpr auto kChunkMagic = static_cast<std::uint32_t>(vst2::fourCharacterCode("CcnK"));
constexpr auto kOpaqueBankMagic = static_cast<std::uint32_t>(vst2::fourCharacterCode("FBCh"));
constexpr auto kUniqueId = static_cast<std::uint32_t>(vst2::fourCharacterCode("qlvd"));
/// The id that banks of earlier days carry.
constexpr auto kOlderUniqueId = static_cast<std::uint32_t>(vst2::fourCharacterCode("vmdl"));
constexpr std::uint32_t kFormatVersion = 1;
constexpr std::uint32_t kPluginVersion = 1;

/// Offsets of the header's words.
enum HeaderOffset : std::size_t {
    kMagicAt = 0,
    kByteSizeAt = 4,
    kFxMagicAt = 8,
    kVersionAt = 12,
    kFxIdAt = 16,
    kFxVersionAt = 20,
    kNumProgramsAt = 24,
    kFutureAt = 28,
    kChunkSizeAt = 156,
};
static_assert(kChunkSize == kNumPrograms * sizeof(presets::DelayProgram));

void putBigEndian(std::vector<std::uint8_t>& bytes, std::size_t offset, std::uint32_t word) {
    for (std::size_t i = 0; i < 4; ++i)
        bytes[offset + i] = static_cast<std::uint8_t>(word >> (24 - 8 * i));
}

std::uint32_t bigEndian(std::span<const std::uint8_t> bytes, std::size_t offset) {
    std::uint32_t word = 0;
    for (std::size_t i = 0; i < 4; ++i)
        word = (word << 8) | bytes[offset + i];
    return word;
}

presets::DelayProgram recordOf(const BankProgram& program) {
    presets::DelayProgram record;
    std::fill(std::begin(record.values), std::end(record.values), 0.0f);
    std::copy(program.values.begin(), program.values.end(), record.values);
    std::fill(std::begin(record.name), std::end(record.name), '\0');
    std::copy_n(program.name.begin(), std::min(program.name.size(), kMaxNameLength), record.name);
    return record;
}

BankProgram programOf(const presets::DelayProgram& record) {
    BankProgram program;
    std::copy_n(record.values, program.values.size(), program.values.begin());
    program.name.assign(record.name, std::find(record.name, record.name + kMaxNameLength, '\0'));
    return program;
}

} // namespace

std::vector<std::uint8_t> chunkBytes(const Bank& bank) {
    std::vector<std::uint8_t> chunk(kChunkSize);
    for (std::size_t number = 0; number < bank.size(); ++number) {
        const presets::DelayProgram record = recordOf(bank[number]);
        std::memcpy(chunk.data() + number * sizeof record, &record, sizeof record);
    }
    return chunk;
}

std::vector<std::uint8_t> bankFileBytes(const Bank& bank) {
    std::vector<std::uint8_t> bytes(kHeaderSize);
    putBigEndian(bytes, kMagicAt, kChunkMagic);
    // The size counts what follows the word itself.
    putBigEndian(bytes, kByteSizeAt, static_cast<std::uint32_t>(kHeaderSize + kChunkSize - kFxMagicAt));
    putBigEndian(bytes, kFxMagicAt, kOpaqueBankMagic);
    putBigEndian(bytes, kVersionAt, kFormatVersion);
    putBigEndian(bytes, kFxIdAt, kUniqueId);
    putBigEndian(bytes, kFxVersionAt, kPluginVersion);
    putBigEndian(bytes, kNumProgramsAt, static_cast<std::uint32_t>(kNumPrograms));
    putBigEndian(bytes, kChunkSizeAt, static_cast<std::uint32_t>(kChunkSize));
    const auto chunk = chunkBytes(bank);
    bytes.insert(bytes.end(), chunk.begin(), chunk.end());
    return bytes;
}

Bank parseBankFile(std::span<const std::uint8_t> bytes, const std::string& fileName) {
    const auto refuse = [&](const std::string& what) { throw BankError(fileName + ": " + what); };
    if (bytes.size() < 4 || bigEndian(bytes, kMagicAt) != kChunkMagic)
        refuse("not an fxb file");
    if (bytes.size() < kHeaderSize)
        refuse("an fxb file that ends within its header");
    if (bigEndian(bytes, kFxMagicAt) != kOpaqueBankMagic)
        refuse("not a bank of one chunk");
    const std::uint32_t id = bigEndian(bytes, kFxIdAt);
    if (id != kUniqueId && id != kOlderUniqueId)
        refuse("a bank of another plug-in");
    if (bytes.size() - kHeaderSize < bigEndian(bytes, kChunkSizeAt))
        refuse("an fxb file that ends before the end of its bank");
    if (bigEndian(bytes, kChunkSizeAt) != kChunkSize)
        refuse("the chunk is not one of " + std::to_string(kNumPrograms) + " programs");
    Bank bank;
    for (std::size_t number = 0; number < bank.size(); ++number) {
        presets::DelayProgram record;
        std::memcpy(&record, bytes.data() + kHeaderSize + number * sizeof record, sizeof record);
        bank[number] = programOf(record);
    }
    return bank;
}

} // namespace bank
