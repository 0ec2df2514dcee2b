// What becomes of the window while the editor asks its host for room.
#include "controls/midi_learn.h"
#include "editor/my_editor.h"

#include "skin_bench.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <utility>

// Xlib defines words that the headers above use, so it comes last.
#include "virtual_screen.h"

namespace {

std::array<base::Shared<float>, parameters::kMaxTaps> gains;

class Exposed final : public editor::myEditor {
  public:
    explicit Exposed(vst2_door::AudioEffectX* owner) : myEditor(owner, gains) {}

    auto countOverlays() const {
        return std::ranges::count_if(controls(), [](VSTGUI::CControl* control) {
            return dynamic_cast<controls::CMidiLearn*>(control) != nullptr;
        });
    }
};

TEST(AnEditorThatAsksForRoom, HasEachOverlayOnceWhereTheHostClosesAndReopensIt) {
    test::VirtualScreen screen;
    setenv("DISPLAY", screen.name().c_str(), 1);
    const Window window = XCreateSimpleWindow(screen.display(), screen.root(), 0, 0, 120, 80, 0, 0, 0);
    XMapWindow(screen.display(), window);
    XSync(screen.display(), False);
    void* const parent = reinterpret_cast<void*>(window);
    constexpr char knobs[] =
        R"(<knob id="6" x="0" y="0" w="40" h="40"/><knob id="7" x="40" y="0" w="40" h="40"/>)";

    test::SkinBench bench;
    bench.drawPicture("small.png", 120, 80);
    bench.drawPicture("large.png", 160, 90);
    bench.writeSkin(std::string(R"(<background filename="small.png"/>)") + knobs);
    auto& editor = bench.makeEditor<Exposed>();
    bench.writeSkin(std::string(R"(<background filename="large.png"/>)") + knobs);
    bool isReopened = false;
    bench.effect().hostCan = {"sizeWindow"};
    bench.effect().whenAsked = [&](const test::HostCall& call) {
        if (call.opcode != vst2::audioMasterSizeWindow || std::exchange(isReopened, true))
            return;
        editor.close();
        EXPECT_TRUE(editor.open(parent));
        EXPECT_EQ(editor.countOverlays(), 2);
    };
    EXPECT_TRUE(editor.open(parent));
    EXPECT_TRUE(isReopened);
    EXPECT_EQ(editor.countOverlays(), 2);
    editor.close();
    XDestroyWindow(screen.display(), window);
}

} // namespace
