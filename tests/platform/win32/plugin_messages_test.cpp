// The message boxes of the finished library, as a person meets them in a host.

#include "desk/private_folder.h"
#include "desk/shared_library.h"
#include "registry_key.h"
#include "shown_box.h"
#include "vst2/vst2.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>

namespace {

namespace files = std::filesystem;
using Texts = std::vector<std::string>;
using test::ShownBox;
using vst2::AEffect;

const files::path delivered = files::absolute(QUILLON_LIBRARY);

std::intptr_t answerVersion(AEffect*, std::int32_t opcode, std::int32_t, std::intptr_t, void*, float) {
    return opcode == vst2::audioMasterVersion ? 2400 : 0;
}

/// The library in a folder with nothing beside it but one skin, whose only object is at fault.
class PluginMessages : public testing::Test {
  protected:
    PluginMessages() {
        files::create_directories("plug-in\\Quillon Skin");
        files::copy_file(delivered, "plug-in\\QuillonMultitapDelay.dll");
        std::ofstream("plug-in\\Quillon Skin\\skin.xml") << "<GUI><knob y=\"1\"/></GUI>";
        library.emplace("plug-in\\QuillonMultitapDelay.dll");
        enter = reinterpret_cast<AEffect* (*)(vst2::audioMasterCallback)>(library->symbol("VSTPluginMain"));
    }
    ~PluginMessages() override {
        if (effect)
            effect->dispatcher(effect, vst2::effClose, 0, 0, nullptr, 0.0f);
    }

    /// Makes an effect without anybody seeing the box that says that there is no bank.
    void makeEffect() {
        const ShownBox box([this] { effect = enter(answerVersion); }, "Preset loader");
        ASSERT_TRUE(box.acknowledge());
        ASSERT_NE(effect, nullptr);
    }

    desk::PrivateFolder folder;
    test::PrivateRegistry registry{HKEY_CURRENT_USER};
    std::optional<desk::SharedLibrary> library;
    AEffect* (*enter)(vst2::audioMasterCallback) = nullptr;
    AEffect* effect = nullptr;
};

TEST_F(PluginMessages, HoldUpTheHostUntilAMissingBankIsAcknowledged) {
    const ShownBox box([this] { effect = enter(answerVersion); }, "Preset loader");
    EXPECT_EQ(box.texts(), Texts{"Default bank error: file not found"});
    EXPECT_EQ(box.buttons().size(), 1u);
    EXPECT_EQ(box.owner(), nullptr);
    EXPECT_EQ(box.icon(), nullptr);
    EXPECT_EQ(effect, nullptr);
    EXPECT_TRUE(box.acknowledge());
    EXPECT_NE(effect, nullptr);
}

TEST_F(PluginMessages, RefuseChunksOfTheWrongSize) {
    makeEffect();
    std::array<unsigned char, 200> chunk = {};
    for (const bool isPreset : {true, false}) {
        std::intptr_t answer = 0;
        const ShownBox box(
            [&] {
                answer = effect->dispatcher(effect, vst2::effSetChunk, isPreset, 113, chunk.data(), 0.0f);
            },
            "Error!");
        EXPECT_EQ(box.texts(), Texts{isPreset ? "Can't load preset, wrong file size!"
                                              : "Can't load bank, wrong file size!"});
        EXPECT_EQ(box.owner(), nullptr);
        EXPECT_EQ(box.icon(), nullptr);
        EXPECT_TRUE(box.acknowledge());
        EXPECT_EQ(answer, 1);
    }
}

TEST_F(PluginMessages, TellASkinsFaultWithTheIconOfAnError) {
    makeEffect();
    const ShownBox box([this] { effect->dispatcher(effect, vst2::effEditOpen, 0, 0, nullptr, 0.0f); },
                       "Skin Error");
    EXPECT_EQ(box.texts(), Texts{"Missing tag x for object knob"});
    EXPECT_EQ(box.owner(), nullptr);
    EXPECT_EQ(box.icon(), LoadIconA(nullptr, IDI_HAND));
    EXPECT_TRUE(box.acknowledge());
}

} // namespace
