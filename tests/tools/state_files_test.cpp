// Bank files and chunks, and what is refused among them.

#include "tools/common/tool_error.h"
#include "tools/render/state_files.h"
#include "vst2/vst2.h"

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

namespace {

using tools::render::Bytes;
using tools::render::parseBankFile;

void put(Bytes& bytes, std::size_t offset, std::uint32_t value) {
    for (int i = 0; i < 4; ++i)
        bytes[offset + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(value >> (24 - 8 * i));
}

void put(Bytes& bytes, std::size_t offset, const char (&code)[5]) {
    put(bytes, offset, static_cast<std::uint32_t>(vst2::fourCharacterCode(code)));
}

Bytes bankFile(const char (&kind)[5], const Bytes& chunk) {
    constexpr std::size_t headerSize = 160;
    Bytes bytes(headerSize + chunk.size());
    put(bytes, 0, "CcnK");
    put(bytes, 8, kind);
    put(bytes, 16, "qlvd");
    put(bytes, 156, static_cast<std::uint32_t>(chunk.size()));
    std::copy(chunk.begin(), chunk.end(), bytes.begin() + headerSize);
    return bytes;
}

void expectRefused(const Bytes& bytes, const std::string& reason) {
    try {
        parseBankFile(bytes);
        FAIL() << "was read; expected: " << reason;
    } catch (const tools::ToolError& error) {
        EXPECT_NE(std::string(error.what()).find(reason), std::string::npos) << error.what();
    }
}

TEST(BankFile, GivesTheChunkAndTheEffectsId) {
    const auto bank = parseBankFile(bankFile("FBCh", {1, 2, 3, 200}));
    EXPECT_EQ(bank.effectId, vst2::fourCharacterCode("qlvd"));
    EXPECT_EQ(bank.chunk, (Bytes{1, 2, 3, 200}));
}

TEST(BankFile, ReadsASizeWhoseBytesAreAllInUse) {
    const Bytes chunk(0x1FF80);
    EXPECT_EQ(parseBankFile(bankFile("FBCh", chunk)).chunk.size(), chunk.size());
}

TEST(BankFile, TakesNoNoticeOfWhatStandsBehindTheChunk) {
    Bytes bytes = bankFile("FBCh", {1, 2});
    bytes.push_back(9);
    EXPECT_EQ(parseBankFile(bytes).chunk, (Bytes{1, 2}));
}

TEST(BankFile, RefusesPlainParametersAndPresets) {
    expectRefused(bankFile("FxBk", {1}), "a bank of plain parameters");
    expectRefused(bankFile("FPCh", {1}), "a preset, not a bank");
    expectRefused(bankFile("FxCk", {1}), "a preset, not a bank");
}

TEST(BankFile, RefusesWhatIsNoBank) {
    expectRefused({}, "not a bank file");
    expectRefused(Bytes(200), "not a bank file");
    expectRefused(bankFile("Huh?", {1}), "not a bank file");
}

TEST(BankFile, RefusesWhatEndsTooSoon) {
    Bytes bytes = bankFile("FBCh", {1, 2, 3});
    bytes.pop_back();
    expectRefused(bytes, "ends before the end of its bank");
    for (const std::size_t size : {100u, 28u, 27u, 12u, 11u, 8u, 4u}) {
        SCOPED_TRACE(size);
        bytes.resize(size);
        expectRefused(bytes, "ends within its header");
    }
}

} // namespace
