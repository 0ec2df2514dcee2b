// The built library's editors when the X server goes and another one comes.
#include "support/shown_editor.h"

#include "child_process.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace {

using namespace test;
using namespace vst2;

constexpr std::int32_t kLamp = 16;

class EditorOnALostDisplay : public conversation::QuietPlugin {
  protected:
    EditorOnALostDisplay() {
        std::filesystem::copy(QUILLON_WINDOW_SKINS, module.folder(),
                              std::filesystem::copy_options::recursive);
    }

    static std::unique_ptr<VirtualScreen> newScreen() {
        auto screen = std::make_unique<VirtualScreen>();
        setenv("DISPLAY", screen->name().c_str(), 1);
        return screen;
    }

    /// Opens the editor of an instance, whose first window is gone, in a window at the same place.
    static bool openOn(VirtualScreen& screen, host::Plugin& plugin) {
        const Window window = XCreateSimpleWindow(screen.display(), screen.root(), 0, 0, kSkinWidth,
                                                  kSkinHeight, 0, 0, 0xFF00FF);
        XMapWindow(screen.display(), window);
        XSync(screen.display(), False);
        return plugin.dispatch(effEditOpen, 0, 0, reinterpret_cast<void*>(window)) == 1;
    }

    /// The ground, the text of the hint line, and a lamp that takes a click.
    static void expectAlive(VirtualScreen& screen, host::Plugin& plugin) {
        const auto serveUntil = [&](const std::function<bool()>& condition) {
            return waitUntil([&] {
                plugin.dispatch(effEditIdle);
                return condition();
            });
        };
        ASSERT_TRUE(serveUntil([&] { return screen.pixel(kSkinWidth - 2, 2) == kGrey; }));
        EXPECT_TRUE(serveUntil([&] {
            for (int x = 10; x < 210; ++x)
                if (screen.pixel(x, 224) != kGrey)
                    return true;
            return false;
        })) << "no text";
        const float before = plugin.getParameter(kLamp);
        screen.movePointer(218, 18);
        screen.click();
        EXPECT_TRUE(serveUntil([&] { return plugin.getParameter(kLamp) != before; }));
    }
};

TEST_F(EditorOnALostDisplay, OpensAgainOnTheNextOne) {
    auto first = newScreen();
    ShownEditor editor(library(), *first, 0, 0);
    ASSERT_TRUE(editor.open());
    expectAlive(*first, editor.plugin());
    first->stopServer();
    for (int i = 0; i < 5; ++i)
        editor.serve();
    editor.close();
    EXPECT_FALSE(editor.open()) << "there is no display now";
    editor.serve();
    editor.close();

    const auto second = newScreen();
    ASSERT_TRUE(openOn(*second, editor.plugin()));
    expectAlive(*second, editor.plugin());
    editor.close();
}

TEST_F(EditorOnALostDisplay, OpensAgainBeforeAnybodyHasNoticedTheLoss) {
    auto first = newScreen();
    ShownEditor editor(library(), *first, 0, 0);
    ASSERT_TRUE(editor.open());
    expectAlive(*first, editor.plugin());
    first->stopServer();
    const auto second = newScreen();
    editor.close();
    ASSERT_TRUE(openOn(*second, editor.plugin()));
    expectAlive(*second, editor.plugin());
    editor.close();
}

TEST_F(EditorOnALostDisplay, OpensAgainWhileAnotherOneWaitsToBeClosed) {
    auto first = newScreen();
    ShownEditor editor(library(), *first, 0, 0);
    ASSERT_TRUE(editor.open());
    expectAlive(*first, editor.plugin());
    // Above it.
    ShownEditor other(library(), *first, 0, 0);
    ASSERT_TRUE(other.open());
    expectAlive(*first, other.plugin());
    first->stopServer();
    const auto second = newScreen();
    editor.close();
    ASSERT_TRUE(openOn(*second, editor.plugin()));
    expectAlive(*second, editor.plugin());
    other.plugin().setParameter(kLamp, 1.0f);
    other.serve();
    other.close();
    expectAlive(*second, editor.plugin());
    ASSERT_TRUE(openOn(*second, other.plugin()));
    expectAlive(*second, other.plugin());
    other.close();
    editor.close();
}

} // namespace
