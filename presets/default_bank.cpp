#include "presets/default_bank.h"

#include "base/four_character_code.h"
#include "parameters/parameter_table.h"
#include "platform/files.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <optional>
#include <vector>

namespace presets {
namespace {

constexpr std::int32_t kChunkMagic = base::fourCharacterCode("CcnK");
constexpr std::int32_t kPlainBank = base::fourCharacterCode("FxBk");
constexpr std::int32_t kChunkBank = base::fourCharacterCode("FBCh");
/// Banks of an older version of the effect carry this id.
constexpr std::int32_t kOlderUniqueID = base::fourCharacterCode("vmdl");

// Byte offsets in the file.
constexpr std::size_t kChunkMagicOffset = 0;
constexpr std::size_t kFxMagicOffset = 8;
constexpr std::size_t kFxIDOffset = 16;
constexpr std::size_t kNumProgramsOffset = 24;
constexpr std::size_t kHeaderSize = 156;
constexpr std::size_t kChunkSizeOffset = 156;
constexpr std::size_t kChunkOffset = 160;

// In each record of a plain bank.
constexpr std::size_t kNumParamsOffset = 24;
constexpr std::size_t kParamsOffset = 56;
constexpr std::int64_t kRecordSize = 60;

/// The most bytes of a file that are read; far more than a bank has.
constexpr std::size_t kLargestImage = 16 * 1024 * 1024;

using Image = std::vector<unsigned char>;

/// Four bytes as they stand in memory, or nothing where the image ends before them.
std::optional<std::int32_t> wordAt(const Image& image, std::size_t offset) {
    std::int32_t word;
    if (image.size() < sizeof word || offset > image.size() - sizeof word)
        return std::nullopt;
    std::memcpy(&word, image.data() + offset, sizeof word);
    return word;
}

std::int32_t headerWord(const Image& image, std::size_t offset) {
    return swappedWord(wordAt(image, offset).value());
}

bool isBank(const Image& image) {
    if (image.size() < kHeaderSize || headerWord(image, kChunkMagicOffset) != kChunkMagic)
        return false;
    const std::int32_t fxMagic = headerWord(image, kFxMagicOffset);
    return fxMagic == kPlainBank || fxMagic == kChunkBank;
}

/// Whether the chunk that a bank announces lies within the file. An image of full size may be the start of a
/// larger file: its chunk counts as complete here, and is refused for its size later.
bool holdsItsChunk(const Image& image) {
    const auto chunkSize = wordAt(image, kChunkSizeOffset);
    return chunkSize && (image.size() == kLargestImage ||
                         swappedWord(*chunkSize) <= static_cast<std::int64_t>(image.size() - kChunkOffset));
}

void loadChunkBank(Image& image, BankReceiver& receiver) {
    receiver.setChunk(image.data() + kChunkOffset, headerWord(image, kChunkSizeOffset), false);
}

/// One record into the current program. False when the image ends within the record.
bool loadRecord(const Image& image, std::size_t record, std::int32_t numParams, BankReceiver& receiver) {
    for (std::int32_t id = 0; id < std::min(numParams, parameters::kNumParameters); ++id) {
        const auto word = wordAt(image, record + kParamsOffset + 4 * static_cast<std::size_t>(id));
        if (!word)
            return false;
        receiver.setParameter(id, std::bit_cast<float>(swappedWord(*word)));
    }
    return true;
}

/// Steps through the records by their own counts, not byte-swapped, up to the end of the image at most.
void loadPlainBank(const Image& image, BankReceiver& receiver) {
    const std::int32_t selected = receiver.getProgram();
    const std::int32_t numPrograms = headerWord(image, kNumProgramsOffset);
    auto record = static_cast<std::int64_t>(kHeaderSize);
    for (std::int32_t program = 0; program < numPrograms; ++program) {
        receiver.setProgram(program);
        const auto numParams = wordAt(image, static_cast<std::size_t>(record) + kNumParamsOffset);
        if (!numParams || !loadRecord(image, static_cast<std::size_t>(record), *numParams, receiver))
            break;
        const std::int64_t stride = kRecordSize + 4 * std::int64_t{*numParams};
        if (stride <= 0)
            break;
        record += stride;
    }
    receiver.setProgram(selected);
}

} // namespace

std::int32_t swappedWord(std::int32_t word) {
    const auto shiftedUp = static_cast<std::int32_t>(static_cast<std::uint32_t>(word) << 16);
    const std::int32_t high = ((word & 0x00FF0000) | (word >> 16)) >> 8;
    const auto low =
        static_cast<std::int32_t>(static_cast<std::uint32_t>(shiftedUp | (word & 0x0000FF00)) << 8);
    return high | low;
}

void loadDefaultBank(const std::string& path, BankReceiver& receiver) {
    constexpr char caption[] = "Preset loader";
    std::optional<Image> image = platform::readWholeFile(path, kLargestImage);
    if (!image) {
        receiver.reportProblem("Default bank error: file not found", caption);
        return;
    }
    constexpr char notABank[] = "Default bank error: not an fxb file";
    if (!isBank(*image)) {
        receiver.reportProblem(notABank, caption);
        return;
    }
    const std::int32_t fxID = headerWord(*image, kFxIDOffset);
    if (fxID != receiver.uniqueID() && fxID != kOlderUniqueID) {
        receiver.reportProblem("Default bank error: wrong unique ID", caption);
        return;
    }
    if (headerWord(*image, kFxMagicOffset) == kPlainBank)
        loadPlainBank(*image, receiver);
    else if (holdsItsChunk(*image))
        loadChunkBank(*image, receiver);
    else
        receiver.reportProblem(notABank, caption);
}

} // namespace presets
