// What the reader of the factory bank asks of the effect, and what it says instead.
#include "presets/default_bank.h"

#include "base/four_character_code.h"
#include "desk/private_folder.h"
#include "platform/files.h"
#include "support/program_bank.h"

#include <string>

#include <gtest/gtest.h>

namespace {

using namespace conversation;
using presets::swappedWord;

TEST(SwappedWord, TurnsAWordRoundWhileItsLastByteIsBelow128) {
    EXPECT_EQ(swappedWord(0x12345678), 0x78563412);
    EXPECT_EQ(swappedWord(0x7F000080), static_cast<std::int32_t>(0x8000007Fu));
}

TEST(SwappedWord, KeepsTheLastByteAloneFrom128OnUnderOnes) {
    for (const std::uint32_t word : {0x80345678u, 0xFF000000u, 0x9A00007Fu, 0xC1FFFFFFu})
        EXPECT_EQ(static_cast<std::uint32_t>(swappedWord(static_cast<std::int32_t>(word))),
                  turnedAround(word))
            << word;
    EXPECT_EQ(swappedWord(static_cast<std::int32_t>(0x80000000u)), -128);
}

/// Notes what is asked of it, in words.
class NotingReceiver final : public presets::BankReceiver {
  public:
    std::string asked;
    std::string problems;

  private:
    std::int32_t uniqueID() override { return base::fourCharacterCode("qlvd"); }
    std::int32_t getProgram() override { return 7; }
    void setProgram(std::int32_t program) override { asked += "program " + std::to_string(program) + ", "; }
    void setParameter(std::int32_t id, float value) override {
        asked += std::to_string(id) + "=" + std::to_string(value) + ", ";
    }
    std::int32_t setChunk(void* data, std::int32_t byteSize, bool isPreset) override {
        asked += std::string(isPreset ? "preset" : "bank") + " of " + std::to_string(byteSize) +
                 " bytes from " + std::to_string(*static_cast<unsigned char*>(data)) + ", ";
        return 1;
    }
    void reportProblem(const char* text, const char* caption) override {
        problems += std::string(caption) + ": " + text;
    }
};

constexpr char kNoBank[] = "Preset loader: Default bank error: not an fxb file";

class DefaultBank : public testing::Test {
  protected:
    /// What is asked of the effect, or the problem that it is told of.
    std::string load(const Bytes& image) {
        platform::writeWholeFile("bank.fxb", image.data(), image.size());
        return loadFile("bank.fxb");
    }
    std::string loadFile(const std::string& path) {
        NotingReceiver receiver;
        presets::loadDefaultBank(path, receiver);
        return receiver.asked + receiver.problems;
    }
    static Bytes cut(const Bytes& bytes, std::size_t size) {
        return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)};
    }
    /// A record whose count of values stands as memory holds it, and values of 0.5, 1.5, ...
    static Bytes record(std::uint32_t count) {
        BankImage image(60 + 4 * std::size_t{count});
        image.littleEndian(24, count);
        for (std::uint32_t id = 0; id < count; ++id)
            image.bigEndian(56 + 4 * std::size_t{id}, static_cast<float>(id) + 0.5f);
        return image.bytes();
    }

    desk::PrivateFolder folder;
};

TEST_F(DefaultBank, ThatIsMissingIsNamedSo) {
    EXPECT_EQ(loadFile("nowhere.fxb"), "Preset loader: Default bank error: file not found");
}

TEST_F(DefaultBank, OfOneChunkIsHandedOnWhole) {
    EXPECT_EQ(load(chunkBank(Bytes(100, 9))), "bank of 100 bytes from 9, ");
}

TEST_F(DefaultBank, WhoseChunkLacksItsLastByteIsNone) {
    const Bytes bank = chunkBank(Bytes(100, 9));
    EXPECT_EQ(load(cut(bank, bank.size() - 1)), kNoBank);
}

TEST_F(DefaultBank, OfAnotherPluginIsRefusedAndNotRead) {
    EXPECT_EQ(load(BankImage(chunkBank(Bytes(100, 9))).code(16, "abcd").bytes()),
              "Preset loader: Default bank error: wrong unique ID");
}

TEST_F(DefaultBank, WithAnotherMarkIsNone) {
    EXPECT_EQ(load(BankImage(chunkBank(Bytes(100, 9))).code(0, "CcnX").bytes()), kNoBank);
    EXPECT_EQ(load(BankImage(chunkBank(Bytes(100, 9))).code(8, "FPCh").bytes()), kNoBank);
}

TEST_F(DefaultBank, OfAHeaderAloneSelectsItsFirstProgramAndGoesBack) {
    const Bytes header = bankHeader("FxBk", 3).bytes();
    EXPECT_EQ(load(header), "program 0, program 7, ");
    EXPECT_EQ(load(cut(header, kBankHeaderSize - 1)), kNoBank);
}

TEST_F(DefaultBank, OfRecordsIsWalkedByTheirOwnCounts) {
    const Bytes bank = bankHeader("FxBk", 2).append(record(2)).append(record(1)).bytes();
    EXPECT_EQ(load(bank), "program 0, 0=0.500000, 1=1.500000, program 1, 0=0.500000, program 7, ");
}

TEST_F(DefaultBank, OfRecordsGivesEveryValueThatIsComplete) {
    const Bytes bank = bankHeader("FxBk", 1).append(record(2)).bytes();
    // Behind the values a record has four bytes more.
    EXPECT_EQ(load(cut(bank, bank.size() - 4)), "program 0, 0=0.500000, 1=1.500000, program 7, ");
    EXPECT_EQ(load(cut(bank, bank.size() - 5)), "program 0, 0=0.500000, program 7, ");
}

} // namespace
