// The programs and their chunks from inside, byte for byte.
#include "presets/program_store.h"
#include "support/program_bank.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string>

#include <gtest/gtest.h>

namespace {

using namespace conversation;
using presets::DelayProgram;

TEST(DefaultProgram, IsWrittenToItsLastByteWhateverTheMemoryHeld) {
    alignas(DelayProgram) unsigned char memory[sizeof(DelayProgram)];
    std::memset(memory, 0xAA, sizeof memory);
    const auto* const program = new (memory) DelayProgram;
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(program);
    EXPECT_EQ(Bytes(bytes, bytes + sizeof *program), bytesOf(defaultProgram()));
}

/// 128 programs that differ in every byte that a program may hold, the free slots and the reserved bytes too.
Bytes anyBank() {
    Bytes bank(kBankSize);
    for (std::size_t i = 0; i < bank.size(); ++i)
        bank[i] = static_cast<std::uint8_t>(i * 7 + i / kProgramSize + 1);
    return bank;
}

class Store : public testing::Test, private presets::ProblemReceiver {
  protected:
    Store() {
        store.allocate();
        store.clearStaging();
    }

    void take(const Bytes& chunk, std::int32_t program, bool isPreset) {
        store.setChunk(chunk.data(), static_cast<std::int32_t>(chunk.size()), program, isPreset, *this);
    }
    Bytes chunk(std::int32_t program, bool isPreset) {
        void* data = nullptr;
        const std::int32_t size = store.getChunk(&data, program, isPreset);
        const auto* const bytes = static_cast<const std::uint8_t*>(data);
        return {bytes, bytes + size};
    }

    presets::ProgramStore store;
    std::string messages;

  private:
    void reportProblem(const char* text, const char* caption) override {
        messages += std::string(caption) + ": " + text;
    }
};

TEST_F(Store, KeepsEveryByteOfABank) {
    take(anyBank(), 0, false);
    EXPECT_EQ(chunk(0, false), anyBank());
    // In the programs themselves, and not only in the copy that the host gets.
    store.clearStaging();
    EXPECT_EQ(chunk(0, false), anyBank());
    EXPECT_EQ(messages, "");
}

TEST_F(Store, KeepsEveryByteOfAPresetInItsPlace) {
    const Bytes bank = anyBank();
    const Bytes preset(bank.begin(), bank.begin() + kProgramSize);
    for (const std::int32_t program : {0, 1, 127}) {
        take(preset, program, true);
        EXPECT_EQ(chunk(program, true), preset) << program;
    }
    EXPECT_EQ(chunk(2, true), bytesOf(defaultProgram()));
}

TEST_F(Store, PutsAShortPresetOverTheFrontOfAProgram) {
    take(Bytes(5, 0x11), 127, true);
    Bytes expected = bytesOf(defaultProgram());
    std::fill_n(expected.begin(), 5, std::uint8_t{0x11});
    EXPECT_EQ(chunk(127, true), expected);
}

TEST_F(Store, RefusesChunksOfAWrongSizeWithAMessage) {
    take(Bytes(kProgramSize + 1), 0, true);
    EXPECT_EQ(messages, "Error!: Can't load preset, wrong file size!");
    messages.clear();
    for (const std::size_t size : {kBankSize - 1, kBankSize + 1, std::size_t{0}}) {
        take(Bytes(size), 0, false);
        EXPECT_EQ(messages, "Error!: Can't load bank, wrong file size!") << size;
        messages.clear();
    }
    EXPECT_EQ(chunk(0, false), bytesOf(defaultPrograms()));
}

TEST_F(Store, HandsOutBytesThatStayAsTheyAreUntilTheNextChunk) {
    void* data = nullptr;
    store.getChunk(&data, 127, true);
    const Bytes before(static_cast<std::uint8_t*>(data), static_cast<std::uint8_t*>(data) + kProgramSize);
    store.setValue(127, 3, 0.75f);
    store.setName(127, "Another");
    EXPECT_EQ(std::memcmp(data, before.data(), before.size()), 0);
    EXPECT_NE(chunk(127, true), before);
}

TEST_F(Store, CutsNamesAt24BytesAndFillsThemUpWithNuls) {
    store.setName(5, "A name of some thirty characters");
    char text[26];
    std::memset(text, 'x', sizeof text);
    store.getName(5, text);
    EXPECT_STREQ(text, "A name of some thirty ch");
    EXPECT_EQ(text[25], 'x');
    store.setName(5, "Short");
    EXPECT_EQ(programOf(chunk(5, true)).name[5], '\0');
    EXPECT_EQ(programOf(chunk(5, true)).name[23], '\0');
}

} // namespace
