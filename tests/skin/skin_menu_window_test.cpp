// The menu of skins in a window that is seen, whose host goes on while the message about a choice stands.
#include "skin_bench.h"

#include "skin/skin_menu.h"

#include "vstgui/lib/cframe.h"
#include "vstgui/lib/events.h"

#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>

// Xlib defines words that the headers above use, so it comes last.
#include "virtual_screen.h"

namespace {

class SkinMenuWindow : public testing::Test {
  protected:
    SkinMenuWindow() {
        setenv("DISPLAY", screen().name().c_str(), 1);
        bench.drawPicture("ground.png", 100, 50);
        bench.writeSkin(R"(<background filename="ground.png"/><skinselector x="0" y="0" w="40" h="10"/>)");
        platform::replaceMessageBox(&goOn, this);
    }
    ~SkinMenuWindow() override {
        if (window != None)
            XDestroyWindow(screen().display(), window);
    }

    /// One for the process, as the toolkit stays with the first it has met.
    static test::VirtualScreen& screen() {
        static test::VirtualScreen theScreen;
        return theScreen;
    }

    void open() {
        window = XCreateSimpleWindow(screen().display(), screen().root(), 0, 0, 100, 50, 0, 0, 0);
        XMapWindow(screen().display(), window);
        XSync(screen().display(), False);
        editor = &bench.makeEditor();
        ASSERT_TRUE(editor->open(reinterpret_cast<void*>(window)));
    }

    /// By a key for the menu, which stands behind its last entry. The editor may end in it.
    void chooseLastSkin() {
        editor->frame->setFocusView(editor->controlOf(skin::kSkinSelectorTag));
        VSTGUI::KeyboardEvent up(VSTGUI::EventType::KeyDown);
        up.virt = VSTGUI::VirtualKey::Up;
        editor->frame->dispatchEvent(up);
    }

    static void goOn(void* test, const char*, const char*, const platform::MessageLook&) {
        auto& self = *static_cast<SkinMenuWindow*>(test);
        ++self.messages;
        self.meanwhile();
    }

    test::SkinBench bench;
    test::ExposedEditor<skin::xmlGuiEditor>* editor = nullptr;
    std::function<void()> meanwhile; ///< what the host does while the message stands
    int messages = 0;
    Window window = None;
};

TEST_F(SkinMenuWindow, MayBeClosedWhileTheMessageStands) {
    open();
    meanwhile = [this] { editor->close(); };
    chooseLastSkin();
    EXPECT_EQ(messages, 1);
    EXPECT_EQ(editor->frame, nullptr);
}

TEST_F(SkinMenuWindow, MayEndWithItsEditorWhileTheMessageStands) {
    open();
    meanwhile = [this] { bench.effect().setEditor(nullptr); };
    chooseLastSkin();
    EXPECT_EQ(messages, 1);
    EXPECT_EQ(bench.effect().getEditor(), nullptr);
}

} // namespace
