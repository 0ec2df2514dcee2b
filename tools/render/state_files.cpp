#include "tools/render/state_files.h"

#include "tools/common/input_file.h"
#include "tools/common/tool_error.h"
#include "tools/render/big_endian.h"
#include "vst2/vst2.h"

namespace tools::render {

namespace {

constexpr std::uintmax_t kLongestFile = 256u << 20;
constexpr std::size_t kSizeOffset = 156;
constexpr std::size_t kChunkOffset = 160;

std::int32_t codeAt(std::span<const std::uint8_t> bytes, std::size_t offset) {
    return static_cast<std::int32_t>(bigEndian(bytes, offset, 4));
}

} // namespace

BankFile parseBankFile(std::span<const std::uint8_t> bytes) {
    if (bytes.size() < 4 || codeAt(bytes, 0) != vst2::fourCharacterCode("CcnK"))
        throw ToolError("is not a bank file");
    if (bytes.size() < 28)
        throw ToolError("ends within its header");
    const std::int32_t kind = codeAt(bytes, 8);
    if (kind == vst2::fourCharacterCode("FxBk"))
        throw ToolError(
            "is a bank of plain parameters; only banks that hold the effect's own chunk can be loaded");
    if (kind == vst2::fourCharacterCode("FxCk") || kind == vst2::fourCharacterCode("FPCh"))
        throw ToolError("is a preset, not a bank");
    if (kind != vst2::fourCharacterCode("FBCh"))
        throw ToolError("is not a bank file");
    if (bytes.size() < kChunkOffset)
        throw ToolError("ends within its header");
    const std::size_t size = bigEndian(bytes, kSizeOffset, 4);
    if (size > bytes.size() - kChunkOffset)
        throw ToolError("ends before the end of its bank");
    const auto chunk = bytes.subspan(kChunkOffset, size);
    return {codeAt(bytes, 16), Bytes(chunk.begin(), chunk.end())};
}

BankFile readBankFile(const std::filesystem::path& path) {
    const Bytes bytes = readBytes(path, kLongestFile);
    try {
        return parseBankFile(bytes);
    } catch (const ToolError& error) {
        throw ToolError(path.string() + " " + error.what());
    }
}

Bytes readChunkFile(const std::filesystem::path& path) {
    return readBytes(path, kLongestFile);
}

} // namespace tools::render
