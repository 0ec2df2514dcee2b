// An effect in a folder of its own with a skin beside it, for tests of what happens when memory runs out.
#pragma once

#include "failing_memory.h"

#include "desk/private_folder.h"
#include "doors/vst2/velmo_delay.h"
#include "parameters/parameter_table.h"
#include "platform/message_box.h"
#include "platform/module_folder.h"
#include "platform/settings.h"

#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>

#include <gtest/gtest.h>

namespace test {

using namespace vst2;

inline std::intptr_t host(AEffect*, std::int32_t opcode, std::int32_t, std::intptr_t, void*, float) {
    return opcode == audioMasterVersion ? kVstVersion : 0;
}

/// A person who has never chosen a skin.
class NoSettings final : public platform::SettingsStore {
  public:
    std::optional<std::string> read(const std::string&) override { return std::nullopt; }
    bool write(const std::string&, const std::string&) override { return false; }
};

/// One object of each kind, and faults that give messages.
inline constexpr char skinText[] = R"(<GUI>
<CONSTANTS>left = 2, top, nosuch * 2 = 5</CONSTANTS>
<background filename="squares.png"/>
<about x="0" y="0" w="20" h="20" bitmap_pop="squares.bmp"/>
<ViewTaps x="0" y="0" w="100" h="100"/>
<NoteDisplay x="1" y="2" w="3" h="4" id="40" fontcolor="FFFFFF" backcolor="000000"/>
<slider id="0" x="left" y="top" len="30" style="2" bitmap_handle="squares.gif"/>
<knob id="1" x="2" y="2" w="10" h="1" stackbmp="y" bitmap_handle="squares.jpg"/>
<knob id="3" x="2" y="2" w="10" h="1" bitmap_handle="nowhere.png"/>
<onoff id="5" x="2" y="2" bitmap_handle="glass.png"/>
<vswitch id="2" x="2" y="2" entries="3" bitmap_handle="squares.png"/>
<hswitch id="2" x="2" y="2" entries="3" bitmap_handle="squares.png"/>
<kick id="50" x="2" y="2" bitmap_handle="squares.png"/>
<vumeter id="51" x="2" y="2" leds="4" style="2" bitmap_off="squares.png" bitmap_on="torn.png"/>
<autodisp id="6" link="6" x="2" y="2" w="10" h="10" fontcolor="FF0000" transparent="y" font="2"/>
<display id="52" x="2" y="2" w="10" h="10"/>
<anydisp x="2" y="2" w="10" h="10"/>
<optionmenu id="7" x="2" y="2" w="10" h="10"><list><entry>one</entry><entry>two</entry></list></optionmenu>
<optionmenu id="53" x="2" y="2" w="10" h="10"/>
<skinselector x="2" y="2" w="10" h="10"/>
<update src="0" dst="6"/>
<knob id="8" x="1"/>
</GUI>)";

/// Effects in a folder of their own, beside which that skin lies.
class ShortOfMemory : public testing::Test {
  protected:
    ShortOfMemory() {
        const std::filesystem::path skin = std::filesystem::path(folder.path()) / "Quillon Skin";
        std::filesystem::create_directory(skin);
        std::ofstream(skin / "skin.xml") << skinText;
        for (const char* picture :
             {"squares.png", "squares.bmp", "squares.gif", "squares.jpg", "glass.png", "torn.png"})
            std::filesystem::copy(std::filesystem::path(QUILLON_PICTURES) / picture, skin / picture);
        platform::replaceModuleFolder((std::filesystem::path(folder.path()) / "").string());
        platform::replaceSettingsStore(&settings);
        platform::replaceMessageBox(
            [](void* context, const char*, const char*, const platform::MessageLook&) {
                ++static_cast<ShortOfMemory*>(context)->messages;
            },
            this);
    }
    ~ShortOfMemory() override {
        platform::replaceMessageBox(nullptr, nullptr);
        platform::replaceSettingsStore(nullptr);
        platform::replaceModuleFolder({});
    }

    static AEffect* make() { return (new vst2_door::velmo_delay(&host))->getAeffect(); }

    /// Runs `call` with ever more memory until it has enough, once for each kind of shortage; `restore` after
    /// each. Says how often memory was short.
    static long atEveryAllocation(const std::function<void()>& call, const std::function<void()>& restore) {
        long shortages = 0;
        for (const Shortage shortage : {Shortage::once, Shortage::lasting})
            for (long allocations = 0;; ++allocations) {
                SCOPED_TRACE("failing from allocation " + std::to_string(allocations) +
                             (shortage == Shortage::once ? ", once" : ", and ever after"));
                bool wasShort = false;
                {
                    const MemoryFor memory(allocations, shortage);
                    EXPECT_NO_THROW(call());
                    wasShort = memory.hasFailed();
                }
                restore();
                if (testing::Test::HasFailure())
                    return shortages;
                if (!wasShort)
                    break;
                ++shortages;
            }
        return shortages;
    }

    desk::PrivateFolder folder;
    NoSettings settings;
    int messages = 0;
};

inline std::intptr_t dispatch(AEffect* effect, std::int32_t opcode, std::int32_t index = 0,
                              std::intptr_t value = 0, void* ptr = nullptr, float opt = 0.0f) {
    return effect->dispatcher(effect, opcode, index, value, ptr, opt);
}

/// An effect with a window: unseen, unless there is a `parent`.
class WindowShortOfMemory : public ShortOfMemory {
  protected:
    ~WindowShortOfMemory() override { EXPECT_EQ(dispatch(effect, effClose), 1); }

    void open() { dispatch(effect, effEditOpen, 0, 0, parent); }
    void close() { dispatch(effect, effEditClose); }
    void expectToOpen() {
        close();
        messages = 0;
        EXPECT_EQ(dispatch(effect, effEditOpen, 0, 0, parent), 1);
        EXPECT_EQ(messages, 2) << "of what is wrong with the skin";
    }

    AEffect* const effect = make();
    void* parent = nullptr;
};

} // namespace test
