// The editor as a person meets it: in a host's window, under a real pointer.
#include "desk/message_watch.h"
#include "support/shown_editor.h"

#include "child_process.h"

#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>
#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <thread>
#include <utility>

namespace {

using namespace test;
using namespace vst2;
using conversation::kTaps;

// The parameters of the controls in the skin.
constexpr std::int32_t kKnob = 6, kHorizontal = 14, kVertical = 13, kLamp = 16, kUpright = 8, kFlat = 11,
                       kMenu = 5, kTapsKnob = kTaps;

/// The hint line, and the value below the knob.
constexpr int kHint[] = {10, 215, 200, 18};
constexpr int kKnobText[] = {10, 52, 40, 14};

/// What another program sees of the screen.
class SeparateConnection {
  public:
    explicit SeparateConnection(VirtualScreen& screen) : display_(XOpenDisplay(screen.name().c_str())) {}
    ~SeparateConnection() { XCloseDisplay(display_); }
    SeparateConnection(const SeparateConnection&) = delete;
    SeparateConnection& operator=(const SeparateConnection&) = delete;

    std::vector<Pixel> part(int x, int y, unsigned width, unsigned height) const {
        XImage* const image =
            XGetImage(display_, DefaultRootWindow(display_), x, y, width, height, AllPlanes, ZPixmap);
        std::vector<Pixel> pixels;
        for (int row = 0; row < image->height; ++row)
            for (int column = 0; column < image->width; ++column)
                pixels.push_back(XGetPixel(image, column, row) & 0xFFFFFF);
        XDestroyImage(image);
        return pixels;
    }
    /// The window on the screen itself with this title, or None.
    Window windowCalled(const std::string& title) const {
        Window ignored = None, found = None, *children = nullptr;
        unsigned count = 0;
        XQueryTree(display_, DefaultRootWindow(display_), &ignored, &ignored, &children, &count);
        for (unsigned i = 0; i < count; ++i) {
            char* name = nullptr;
            if (XFetchName(display_, children[i], &name) && name == title)
                found = children[i];
            XFree(name);
        }
        XFree(children);
        return found;
    }
    std::vector<Window> childrenOf(Window window) const {
        Window ignored = None, *children = nullptr;
        unsigned count = 0;
        std::vector<Window> found;
        if (XQueryTree(display_, window, &ignored, &ignored, &children, &count) && children) {
            found.assign(children, children + count);
            XFree(children);
        }
        return found;
    }
    /// Puts a window over all others.
    Window cover(int x, int y, unsigned width, unsigned height) const {
        const Window window =
            XCreateSimpleWindow(display_, DefaultRootWindow(display_), x, y, width, height, 0, 0, 0x123456);
        XMapRaised(display_, window);
        XSync(display_, False);
        return window;
    }
    void uncover(Window cover) const {
        XDestroyWindow(display_, cover);
        XSync(display_, False);
    }
    Window transientFor(Window window) const {
        Window owner = None;
        return window != None && XGetTransientForHint(display_, window, &owner) ? owner : None;
    }
    // A hand at work while the test's own thread is kept by a message. Places are those of the screen.
    void press(int x, int y, unsigned button = kLeft) const {
        XTestFakeMotionEvent(display_, -1, x, y, CurrentTime);
        XTestFakeButtonEvent(display_, button, True, CurrentTime);
        XSync(display_, False);
    }
    void release(unsigned button = kLeft) const {
        XTestFakeButtonEvent(display_, button, False, CurrentTime);
        XSync(display_, False);
    }
    void click(int x, int y, unsigned button = kLeft) const {
        press(x, y, button);
        release(button);
    }
    /// Types into a window, whichever has the keyboard.
    void typeInto(Window window, KeySym symbol) const {
        XSetInputFocus(display_, window, RevertToParent, CurrentTime);
        const KeyCode key = XKeysymToKeycode(display_, symbol);
        XTestFakeKeyEvent(display_, key, True, CurrentTime);
        XTestFakeKeyEvent(display_, key, False, CurrentTime);
        XSync(display_, False);
    }
    /// False while another program has the pointer to itself.
    bool canTakePointer() const {
        const int answer = XGrabPointer(display_, DefaultRootWindow(display_), False, ButtonPressMask,
                                        GrabModeAsync, GrabModeAsync, None, None, CurrentTime);
        XUngrabPointer(display_, CurrentTime);
        XSync(display_, False);
        return answer == GrabSuccess;
    }

  private:
    Display* display_;
};

/// Counts the windows that come up on the screen itself, also those that are gone before anybody looks.
class MappedWindows {
  public:
    explicit MappedWindows(VirtualScreen& screen) : display_(XOpenDisplay(screen.name().c_str())) {
        XSelectInput(display_, DefaultRootWindow(display_), SubstructureNotifyMask);
        XSync(display_, False);
    }
    ~MappedWindows() { XCloseDisplay(display_); }
    MappedWindows(const MappedWindows&) = delete;
    MappedWindows& operator=(const MappedWindows&) = delete;

    /// Since the construction.
    int count() {
        XSync(display_, False);
        while (XPending(display_) > 0) {
            XEvent event;
            XNextEvent(display_, &event);
            count_ += event.type == MapNotify ? 1 : 0;
        }
        return count_;
    }

  private:
    Display* display_;
    int count_ = 0;
};

class WindowedEditor : public EditorOnScreen {
  protected:
    static std::vector<Pixel> hint(ShownEditor& editor) {
        return editor.part(kHint[0], kHint[1], kHint[2], kHint[3]);
    }
    /// A click on the lamp, whose effect tells that all before it has been worked off.
    static void serveAll(ShownEditor& editor) {
        const float next = editor.value(kLamp) >= 0.5f ? 0.0f : 1.0f;
        editor.click(218, 18);
        ASSERT_TRUE(editor.becomes(kLamp, next));
    }
    std::vector<Window> childrenOf(Window window) {
        Window ignored = None, *children = nullptr;
        unsigned count = 0;
        std::vector<Window> found;
        if (XQueryTree(screen().display(), window, &ignored, &ignored, &children, &count) && children) {
            found.assign(children, children + count);
            XFree(children);
        }
        return found;
    }
    /// Where the entries of the skin's own menu are seen, below it.
    static std::vector<Pixel> menuPlace(ShownEditor& editor) { return editor.part(10, 92, 80, 60); }
    /// When all that was done before has been drawn.
    static std::vector<Pixel> restingMenuPlace(ShownEditor& editor) {
        serveAll(editor);
        serveUntilStill(editor, 10, 92, 80, 60);
        return menuPlace(editor);
    }
    static void openMenu(ShownEditor& editor) {
        const auto before = restingMenuPlace(editor);
        editor.click(50, 80);
        ASSERT_TRUE(editor.serveUntil([&] { return menuPlace(editor) != before; }));
    }
    static void serveUntilStill(ShownEditor& editor, int x, int y, int width, int height) {
        int same = 0;
        std::vector<Pixel> last;
        ASSERT_TRUE(editor.serveUntil([&] {
            const auto now = editor.part(x, y, width, height);
            same = std::exchange(last, now) == now ? same + 1 : 0;
            return same == 60;
        }));
    }
    /// A hand that rests, for as long as the toolkit needs to notice.
    static void holdAtLeast(ShownEditor& editor, std::chrono::milliseconds time) {
        const auto end = std::chrono::steady_clock::now() + time;
        ASSERT_TRUE(editor.serveUntil([&] { return std::chrono::steady_clock::now() >= end; }));
    }
    /// Chooses the first skin in the menu of skins, does something while the message about it stands, on a
    /// thread of its own, and acknowledges the message.
    void chooseSkin(ShownEditor& editor, const std::function<void(const SeparateConnection&)>& meanwhile) {
        const auto resting = editor.part(100, 92, 70, 50);
        std::atomic<bool> isDone = false;
        const desk::MessageWatch watch(
            [&](const desk::ShownMessage&) {
                if (!isDone)
                    meanwhile(SeparateConnection(screen()));
                isDone = true;
            },
            [&] { return isDone.load(); });
        editor.click(135, 80);
        ASSERT_TRUE(editor.changes(resting, 100, 92, 70, 50));
        editor.click(135, 100);
        ASSERT_TRUE(editor.serveUntil([&] { return isDone.load(); }));
    }
    /// As if it had been chosen in another instance.
    static void chooseBlue() {
        const std::string folder = std::string(std::getenv("XDG_CONFIG_HOME")) + "/Quillon Software";
        std::filesystem::create_directories(folder);
        std::ofstream(folder + "/Quillon Multitap Delay.conf") << "SkinName=blue\n";
    }
    static ERect rectOf(ShownEditor& editor) {
        ERect* size = nullptr;
        editor.plugin().dispatch(effEditGetRect, 0, 0, &size);
        return *size;
    }
    std::string chosenSkin() const {
        std::ifstream file(std::string(std::getenv("XDG_CONFIG_HOME")) +
                           "/Quillon Software/Quillon Multitap Delay.conf");
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
};

/// begin, automate any number of times, end.
void expectGesture(const std::vector<std::int32_t>& told) {
    ASSERT_GE(told.size(), 3u);
    EXPECT_EQ(told.front(), audioMasterBeginEdit);
    EXPECT_EQ(told.back(), audioMasterEndEdit);
    for (std::size_t i = 1; i + 1 < told.size(); ++i)
        EXPECT_EQ(told[i], audioMasterAutomate);
}

TEST_F(WindowedEditor, ShowsTheSkinInTheSizeThatTheHostWasTold) {
    auto& editor = show();
    EXPECT_EQ(editor.width(), kSkinWidth);
    EXPECT_EQ(editor.height(), kSkinHeight);
    EXPECT_EQ(editor.pixel(kSkinWidth - 1, kSkinHeight - 1), kGrey);
    EXPECT_EQ(childrenOf(editor.window()).size(), 1u);
}

TEST_F(WindowedEditor, OpensFromBelowALongPath) {
    const std::string settings = std::string(std::getenv("XDG_CONFIG_HOME")) + "/Quillon Software";
    std::filesystem::create_directories(settings);
    for (const std::size_t length : {300u, 1000u}) {
        SCOPED_TRACE(length);
        std::string place = here("");
        while (place.size() < length)
            place += std::string(50, 'd') + "/";
        std::filesystem::create_directories(place);
        conversation::ModuleCopy copy(place + "module");
        std::filesystem::copy(module.folder(), copy.folder(),
                              std::filesystem::copy_options::recursive |
                                  std::filesystem::copy_options::skip_existing);
        const conversation::Bytes map(84, 7);
        conversation::writeFile(copy.beside(conversation::kMapFile), map);
        for (const auto& [skin, width] : {std::pair("Quillon Skin", kSkinWidth), std::pair("blue", 160)}) {
            std::ofstream(settings + "/Quillon Multitap Delay.conf") << "SkinName=" << skin << "\n";
            std::filesystem::remove(here(conversation::kMapFile));
            ShownEditor editor(copy.library(), screen());
            EXPECT_EQ(editor.width(), width);
            EXPECT_TRUE(editor.open());
            EXPECT_TRUE(editor.showsPixel(2, 2, width == 160 ? kBlue : kGrey));
            editor.close();
            editor.destroyInstance();
            EXPECT_EQ(conversation::readFile(here(conversation::kMapFile)), map);
        }
    }
}

TEST_F(WindowedEditor, LetsAKnobBeDraggedAndTellsTheHostOfTheGesture) {
    auto& editor = show();
    const float before = editor.value(kKnob);
    const auto text = editor.part(kKnobText[0], kKnobText[1], kKnobText[2], kKnobText[3]);
    editor.plugin().clearCalls();
    ASSERT_TRUE(editor.drag(30, 30, 30, 5, [&] { return editor.value(kKnob) > before + 0.05f; }));
    ASSERT_TRUE(editor.serveUntil([&] {
        const auto told = editor.toldOf(kKnob);
        return !told.empty() && told.back() == audioMasterEndEdit;
    }));
    expectGesture(editor.toldOf(kKnob));
    EXPECT_TRUE(editor.changes(text, kKnobText[0], kKnobText[1], kKnobText[2], kKnobText[3]))
        << "the value below the knob";
}

TEST_F(WindowedEditor, LetsASliderBeDraggedFromEndToEnd) {
    auto& editor = show();
    editor.plugin().clearCalls();
    const int handle = 60 + static_cast<int>(editor.value(kHorizontal) * 100.0f) + 5;
    EXPECT_TRUE(editor.drag(handle, 18, 185, 18, [&] { return editor.value(kHorizontal) == 1.0f; }));
    EXPECT_TRUE(editor.showsPixel(165, 18, 0xFF8000));
    expectGesture(editor.toldOf(kHorizontal));
    EXPECT_TRUE(editor.drag(165, 18, 45, 18, [&] { return editor.value(kHorizontal) == 0.0f; }));
    EXPECT_TRUE(editor.showsPixel(65, 18, 0xFF8000));
}

TEST_F(WindowedEditor, LetsAnUprightSliderRiseWithTheHand) {
    auto& editor = show();
    editor.plugin().setParameter(kVertical, 0.0f);
    ASSERT_TRUE(editor.showsPixel(188, 95, 0xFF8000)) << "at rest it stands at the bottom";
    EXPECT_TRUE(editor.drag(188, 95, 188, 2, [&] { return editor.value(kVertical) == 1.0f; }));
    EXPECT_TRUE(editor.showsPixel(188, 15, 0xFF8000));
}

TEST_F(WindowedEditor, SwitchesALampOnAndOff) {
    auto& editor = show();
    editor.plugin().setParameter(kLamp, 0.0f);
    ASSERT_TRUE(editor.showsPixel(218, 18, 0x800000));
    editor.plugin().clearCalls();
    editor.click(218, 18);
    EXPECT_TRUE(editor.becomes(kLamp, 1.0f));
    EXPECT_TRUE(editor.showsPixel(218, 18, 0x00FF00));
    expectGesture(editor.toldOf(kLamp));
    editor.click(218, 18);
    EXPECT_TRUE(editor.becomes(kLamp, 0.0f));
}

TEST_F(WindowedEditor, StepsThroughASwitchOfThreeWays) {
    auto& editor = show();
    editor.plugin().setParameter(kUpright, 0.0f);
    ASSERT_TRUE(editor.showsPixel(248, 18, 0xFF0000));
    editor.click(248, 24);
    EXPECT_TRUE(editor.becomes(kUpright, 1.0f));
    EXPECT_TRUE(editor.showsPixel(248, 18, 0x0000FF));
    editor.click(248, 18);
    EXPECT_TRUE(editor.becomes(kUpright, 0.5f));
    EXPECT_TRUE(editor.showsPixel(248, 18, 0x00FF00));

    editor.plugin().setParameter(kFlat, 0.0f);
    editor.click(262 + 40, 18);
    EXPECT_TRUE(editor.becomes(kFlat, 1.0f));
}

TEST_F(WindowedEditor, LightsAKickButtonOnlyWhileItIsHeld) {
    auto& editor = show();
    ASSERT_TRUE(editor.showsPixel(218, 48, 0x800000));
    editor.point(218, 48);
    editor.press(kLeft);
    EXPECT_TRUE(editor.showsPixel(218, 48, 0x00FF00));
    editor.release(kLeft);
    EXPECT_TRUE(editor.showsPixel(218, 48, 0x800000));
}

TEST_F(WindowedEditor, FollowsTheHostsChanges) {
    auto& editor = show();
    editor.plugin().setParameter(kHorizontal, 1.0f);
    EXPECT_TRUE(editor.showsPixel(165, 18, 0xFF8000));
    editor.plugin().setParameter(kHorizontal, 0.0f);
    EXPECT_TRUE(editor.showsPixel(65, 18, 0xFF8000));
    editor.plugin().setParameter(kHorizontal, 1.0f);
    editor.plugin().setProgram(5);
    EXPECT_EQ(editor.value(kHorizontal), 0.5f);
    EXPECT_TRUE(editor.showsPixel(115, 18, 0xFF8000));
}

TEST_F(WindowedEditor, ShowsInTheHintLineWhatIsDragged) {
    auto& editor = show();
    serveAll(editor);
    ASSERT_TRUE(editor.serveUntil([&] {
        const auto pixels = hint(editor);
        return std::ranges::any_of(pixels, [](Pixel pixel) { return pixel != kGrey; });
    }));
    const auto resting = hint(editor);
    editor.point(30, 30);
    editor.press(kLeft);
    EXPECT_TRUE(editor.changes(resting, kHint[0], kHint[1], kHint[2], kHint[3]));
    editor.release(kLeft);
    EXPECT_TRUE(editor.serveUntil([&] { return hint(editor) == resting; }));
}

TEST_F(WindowedEditor, ShowsTheRestingHintInOnePlaceBeforeAndAfterADrag) {
    auto& editor = show();
    std::vector<Pixel> last;
    ASSERT_TRUE(editor.serveUntil([&] {
        const auto pixels = hint(editor);
        return std::ranges::any_of(pixels, [](Pixel pixel) { return pixel != kGrey; }) &&
               std::exchange(last, pixels) == pixels;
    }));
    const auto resting = last;
    editor.point(30, 30);
    editor.press(kLeft);
    EXPECT_TRUE(editor.changes(resting, kHint[0], kHint[1], kHint[2], kHint[3]));
    editor.release(kLeft);
    EXPECT_TRUE(editor.serveUntil([&] { return hint(editor) == resting; }));
}

TEST_F(WindowedEditor, TurnsAKnobOfThePatternWithEachTickOfTheWheel) {
    auto& editor = show();
    editor.plugin().setParameter(kTapsKnob, 0.2f);
    editor.point(30, 192);
    for (const float next : {0.3f, 0.4f, 0.5f}) {
        editor.press(kWheelUp);
        editor.release(kWheelUp);
        ASSERT_TRUE(editor.becomes(kTapsKnob, next)) << editor.value(kTapsKnob);
    }
}

TEST_F(WindowedEditor, BeginsADragOfThePatternAtTheValueThatAutomationLeft) {
    auto& editor = show();
    editor.plugin().setParameter(kTapsKnob, 0.2f);
    editor.serve();
    editor.plugin().setParameter(kTapsKnob, 0.8f);
    serveAll(editor);
    ASSERT_TRUE(editor.drag(30, 192, 30, 191, [&] { return editor.value(kTapsKnob) != 0.8f; }));
    EXPECT_NEAR(editor.value(kTapsKnob), 0.805f, 0.011f) << "a pixel or two of 200";
}

TEST_F(WindowedEditor, MovesAHorizontalSliderUpAndDownWithTheWheel) {
    auto& editor = show();
    editor.plugin().setParameter(kHorizontal, 0.5f);
    ASSERT_TRUE(editor.showsPixel(115, 18, 0xFF8000));
    editor.plugin().clearCalls();
    editor.point(115, 18);
    editor.press(kWheelUp);
    editor.release(kWheelUp);
    EXPECT_TRUE(editor.becomes(kHorizontal, 0.6f)) << editor.value(kHorizontal);
    editor.press(kWheelDown);
    editor.release(kWheelDown);
    EXPECT_TRUE(editor.becomes(kHorizontal, 0.5f)) << editor.value(kHorizontal);
    ASSERT_TRUE(editor.serveUntil([&] {
        return !editor.toldOf(kHorizontal).empty() && editor.toldOf(kHorizontal).back() == audioMasterEndEdit;
    }));
    expectGesture(editor.toldOf(kHorizontal));
}

TEST_F(WindowedEditor, GoesOnWithADragThatLeavesTheWindow) {
    auto& editor = show();
    editor.plugin().setParameter(kHorizontal, 0.0f);
    ASSERT_TRUE(editor.showsPixel(65, 18, 0xFF8000));
    EXPECT_TRUE(editor.drag(65, 18, 400, -25, [&] { return editor.value(kHorizontal) == 1.0f; }));
    EXPECT_TRUE(editor.serveUntil([&] { return editor.toldOf(kHorizontal).back() == audioMasterEndEdit; }));
}

// Menus

TEST_F(WindowedEditor, SetsAParameterFromAMenu) {
    auto& editor = show();
    editor.plugin().clearCalls();
    const auto before = editor.part(10, 92, 80, 60);
    editor.click(50, 80);
    ASSERT_TRUE(editor.changes(before, 10, 92, 80, 60)) << "the menu is to be seen";
    editor.typeKey(XK_Down);
    editor.typeKey(XK_Down);
    editor.typeKey(XK_Down);
    editor.typeKey(XK_Return);
    EXPECT_TRUE(editor.becomes(kMenu, 1.0f)) << editor.value(kMenu);
    expectGesture(editor.toldOf(kMenu));
}

TEST_F(WindowedEditor, TakesAChoiceFromAMenuAtOnce) {
    auto& editor = show();
    editor.plugin().setParameter(kMenu, 0.0f);
    openMenu(editor);
    for (const std::intptr_t key : {14, 14, 4}) // down, down, return
        editor.plugin().dispatch(effEditKeyDown, 0, key);
    EXPECT_EQ(editor.value(kMenu), 0.5f) << "before any further turn";
}

TEST_F(WindowedEditor, KeepsAMenuOpenAfterASlowClick) {
    auto& editor = show();
    editor.plugin().setParameter(kMenu, 0.0f);
    const auto before = restingMenuPlace(editor);
    editor.point(50, 80);
    editor.press(kLeft);
    ASSERT_TRUE(editor.serveUntil([&] { return menuPlace(editor) != before; }));
    holdAtLeast(editor, std::chrono::milliseconds(400));
    editor.release(kLeft);
    holdAtLeast(editor, std::chrono::milliseconds(400));
    editor.click(50, 120); // the second entry
    EXPECT_TRUE(editor.becomes(kMenu, 0.5f)) << editor.value(kMenu);
}

TEST_F(WindowedEditor, LetsAnEntryBeChosenWithOneLongPress) {
    auto& editor = show();
    editor.plugin().setParameter(kMenu, 0.0f);
    const auto before = restingMenuPlace(editor);
    editor.point(50, 80);
    editor.press(kLeft);
    ASSERT_TRUE(editor.serveUntil([&] { return menuPlace(editor) != before; }));
    holdAtLeast(editor, std::chrono::milliseconds(400));
    editor.point(50, 120);
    editor.release(kLeft);
    EXPECT_TRUE(editor.becomes(kMenu, 0.5f)) << editor.value(kMenu);
}

TEST_F(WindowedEditor, LosesNoPressRightAfterAMenu) {
    auto& editor = show();
    editor.plugin().setParameter(kMenu, 0.0f);
    for (const int endOfMenu : {300, 50}) { // beside it, and on its second entry
        openMenu(editor);
        const float lamp = editor.value(kLamp);
        editor.click(endOfMenu, 120);
        editor.click(218, 18);
        EXPECT_TRUE(editor.becomes(kLamp, 1.0f - lamp));
    }
    EXPECT_EQ(editor.value(kMenu), 0.5f);
}

TEST_F(WindowedEditor, ChangesNothingWhenAMenuIsLeftByEscape) {
    auto& editor = show();
    editor.plugin().setParameter(kMenu, 0.3f);
    const auto before = restingMenuPlace(editor);
    editor.plugin().clearCalls();
    editor.click(50, 80);
    ASSERT_TRUE(editor.changes(before, 10, 92, 80, 60));
    editor.typeKey(XK_Escape);
    ASSERT_TRUE(editor.serveUntil([&] { return editor.part(10, 92, 80, 60) == before; }));
    serveAll(editor);
    EXPECT_EQ(editor.value(kMenu), 0.3f);
    EXPECT_EQ(std::ranges::count(editor.toldOf(kMenu), audioMasterAutomate), 0);
}

TEST_F(WindowedEditor, ChangesNothingWhenAMenuIsLeftByAClickBesideIt) {
    auto& editor = show();
    editor.plugin().setParameter(kMenu, 0.3f);
    const auto before = restingMenuPlace(editor);
    editor.click(50, 80);
    ASSERT_TRUE(editor.changes(before, 10, 92, 80, 60));
    editor.click(300, 120);
    ASSERT_TRUE(editor.serveUntil([&] { return editor.part(10, 92, 80, 60) == before; }));
    EXPECT_EQ(editor.value(kMenu), 0.3f);
}

TEST_F(WindowedEditor, TakesAChosenSkinAtTheNextOpening) {
    auto& editor = show();
    std::vector<desk::ShownMessage> messages;
    {
        const desk::MessageWatch watch(
            [&](const desk::ShownMessage& message) { messages.push_back(message); }, [] { return true; });
        const auto before = editor.part(100, 92, 70, 50);
        editor.click(135, 80);
        ASSERT_TRUE(editor.changes(before, 100, 92, 70, 50));
        // The two skins stand in the order of the file system.
        std::vector<std::string> order;
        for (const auto& entry : std::filesystem::directory_iterator(module.folder()))
            if (entry.is_directory())
                order.push_back(entry.path().filename());
        for (auto name = order.begin();; ++name) {
            editor.typeKey(XK_Down);
            if (*name == "blue")
                break;
        }
        editor.typeKey(XK_Return);
        ASSERT_TRUE(editor.serveUntil([&] { return chosenSkin() == "SkinName=blue\n"; })) << chosenSkin();
        ASSERT_TRUE(editor.serveUntil([&] { return !messages.empty(); }));
    }
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].caption, "SKIN SELECTED!");
    EXPECT_EQ(editor.pixel(kSkinWidth - 2, 2), kGrey) << "the open window stays as it is";
    editor.close();
    ASSERT_TRUE(editor.open());
    EXPECT_TRUE(editor.showsPixel(100, 100, kBlue));
    ShownEditor next(library(), screen(), 500, 400);
    EXPECT_EQ(next.width(), 160);
}

TEST_F(WindowedEditor, KeepsItsFirstSizeForAHostThatMakesNoRoomForASkin) {
    auto& editor = show();
    for (const char* refused : {"sizeWindow", ""}) {
        SCOPED_TRACE(refused);
        editor.close();
        chooseBlue();
        editor.plugin().behaviour().answer = [refused](const host::HostCall& call,
                                                       void*) -> std::optional<std::intptr_t> {
            const bool isRefused = call.opcode == audioMasterSizeWindow ||
                                   (call.opcode == audioMasterCanDo && call.text == refused);
            return isRefused ? std::optional<std::intptr_t>(0) : std::nullopt;
        };
        ASSERT_TRUE(editor.open());
        EXPECT_TRUE(editor.showsPixel(100, 100, kBlue));
        EXPECT_EQ(rectOf(editor).right, kSkinWidth);
        EXPECT_EQ(rectOf(editor).bottom, kSkinHeight);
    }
}

TEST_F(WindowedEditor, TellsAHostThatMakesRoomForASkinItsSize) {
    auto& editor = show();
    EXPECT_EQ(editor.plugin().callsOf(audioMasterSizeWindow), 0) << "it has the size that the host was told";
    editor.close();
    chooseBlue();
    std::vector<host::HostCall> asked;
    ERect askedAgain = {};
    editor.plugin().behaviour().answer = [&](const host::HostCall& call,
                                             void*) -> std::optional<std::intptr_t> {
        if (call.opcode != audioMasterSizeWindow)
            return std::nullopt;
        asked.push_back(call);
        askedAgain = rectOf(editor);
        return 1;
    };
    for (int opening = 0; opening < 2; ++opening) {
        ASSERT_TRUE(editor.open());
        EXPECT_TRUE(editor.showsPixel(100, 100, kBlue));
        EXPECT_EQ(rectOf(editor).right, 160);
        editor.close();
    }
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0].index, 160);
    EXPECT_EQ(asked[0].value, askedAgain.bottom);
    EXPECT_EQ(askedAgain.right, 160) << "while it is asked";
}

TEST_F(WindowedEditor, ClosesFromInsideTheHostsAnswerToASize) {
    auto& editor = show();
    editor.close();
    chooseBlue();
    editor.plugin().behaviour().answer = [&](const host::HostCall& call,
                                             void*) -> std::optional<std::intptr_t> {
        if (call.opcode == audioMasterSizeWindow)
            editor.close();
        return std::nullopt;
    };
    EXPECT_FALSE(editor.open());
    EXPECT_EQ(childrenOf(editor.window()).size(), 0u);
    editor.serve();
    editor.plugin().behaviour().answer = nullptr;
    ASSERT_TRUE(editor.open());
    EXPECT_TRUE(editor.showsPixel(100, 100, kBlue));
}

TEST_F(WindowedEditor, OpensTheMessageAboutASkinAboveTheHostsWindowWhenTheMenuHasGone) {
    auto& editor = show();
    serveAll(editor);
    serveUntilStill(editor, 100, 92, 70, 50);
    const auto resting = editor.part(100, 92, 70, 50);
    std::atomic<bool> isShown = false, menuIsGone = false, pointerIsFree = false;
    std::atomic<Window> transientFor = None;
    const desk::MessageWatch watch(
        [&](const desk::ShownMessage& message) {
            // On a thread of its own, and so on a connection of its own.
            const SeparateConnection display(screen());
            menuIsGone = display.part(40 + 100, 30 + 92, 70, 50) == resting;
            transientFor = display.transientFor(display.windowCalled(message.caption));
            pointerIsFree = display.canTakePointer();
            isShown = true;
        },
        [&] { return isShown.load(); });
    editor.click(135, 80);
    ASSERT_TRUE(editor.changes(resting, 100, 92, 70, 50));
    editor.click(135, 100);
    ASSERT_TRUE(editor.serveUntil([&] { return isShown.load(); }));
    EXPECT_TRUE(menuIsGone);
    EXPECT_TRUE(pointerIsFree) << "else nobody can click on the message";
    EXPECT_EQ(transientFor, editor.window());
}

TEST_F(WindowedEditor, ThrowsAwayWhatIsDoneToItWhileTheMessageAboutASkinStands) {
    auto& editor = show();
    serveAll(editor);
    editor.plugin().setParameter(kFlat, 0.0f);
    editor.plugin().setParameter(kTapsKnob, 0.2f);
    ASSERT_TRUE(editor.becomes(kTapsKnob, 0.2f));
    const float lamp = editor.value(kLamp), knob = editor.value(kKnob);
    editor.plugin().clearCalls();
    chooseSkin(editor, [&](const SeparateConnection& hand) {
        hand.click(40 + 218, 30 + 18);            // the lamp
        hand.click(40 + 50, 30 + 80);             // a menu
        hand.click(40 + 30, 30 + 192, kWheelUp);  // a knob
        hand.click(40 + 100, 30 + 140, kRight);   // the picture of the echoes
        hand.press(40 + 30, 30 + 30);             // another knob, dragged
        hand.click(40 + 30, 30 + 10, kWheelDown); // with a motion
        hand.release();
    });
    // This is worked off behind all the rest.
    editor.click(262 + 40, 18);
    ASSERT_TRUE(editor.becomes(kFlat, 1.0f)) << "it takes the hand again";
    EXPECT_EQ(editor.value(kLamp), lamp);
    EXPECT_EQ(editor.value(kTapsKnob), 0.2f);
    EXPECT_EQ(editor.value(kKnob), knob);
    for (const std::int32_t id : editor.idsTold())
        EXPECT_EQ(id, kFlat);
}

TEST_F(WindowedEditor, ThrowsAwayKeysWhileTheMessageAboutASkinStands) {
    auto& editor = show();
    serveAll(editor);
    MappedWindows messages(screen());
    // Ends a second one, which would keep the thread.
    std::atomic<bool> isChosen = false;
    const desk::MessageWatch watch([](const desk::ShownMessage&) {}, [&] { return isChosen.load(); });
    chooseSkin(editor, [&](const SeparateConnection& hand) {
        const auto own = hand.childrenOf(editor.window());
        ASSERT_EQ(own.size(), 1u);
        // The menu of skins is in focus by then, and would take the other one.
        hand.typeInto(own[0], XK_Up);
    });
    isChosen = true;
    const std::string chosen = chosenSkin();
    serveAll(editor);
    EXPECT_EQ(messages.count(), 1);
    EXPECT_EQ(chosenSkin(), chosen);
}

TEST_F(WindowedEditor, IsDrawnAnewAfterTheMessageAboutASkinWhereItWasUncoveredMeanwhile) {
    auto& editor = show();
    serveAll(editor);
    chooseSkin(editor, [&](const SeparateConnection& display) {
        const Window cover = display.cover(40, 30, kSkinWidth, kSkinHeight);
        display.uncover(cover);
    });
    EXPECT_TRUE(editor.showsPixel(kSkinWidth - 2, 2, kGrey));
}

TEST_F(WindowedEditor, EndsADragThatIsLetGoWhileTheMessageOfAnotherInstanceStands) {
    auto& editor = show();
    ShownEditor other(library(), screen(), 600, 10);
    ASSERT_TRUE(other.open());
    ASSERT_TRUE(other.showsPixel(kSkinWidth - 2, 2, kGrey));
    // The host's keys then go to that menu.
    const auto resting = other.part(100, 92, 70, 50);
    other.click(135, 80);
    ASSERT_TRUE(other.changes(resting, 100, 92, 70, 50));
    other.typeKey(XK_Escape);
    ASSERT_TRUE(other.serveUntil([&] { return other.part(100, 92, 70, 50) == resting; }));

    const float before = editor.value(kKnob);
    editor.plugin().clearCalls();
    editor.point(30, 30);
    editor.press(kLeft);
    ASSERT_TRUE(editor.serveUntil([&] {
        editor.point(30, editor.value(kKnob) == before ? 20 : 19);
        return editor.value(kKnob) != before;
    }));
    {
        std::atomic<bool> isLetGo = false;
        const desk::MessageWatch watch(
            [&](const desk::ShownMessage&) {
                SeparateConnection(screen()).release();
                isLetGo = true;
            },
            [&] { return isLetGo.load(); });
        other.plugin().dispatch(effEditKeyDown, 0, 12); // up
        ASSERT_TRUE(isLetGo);
    }
    EXPECT_TRUE(editor.serveUntil([&] { return editor.toldOf(kKnob).back() == audioMasterEndEdit; }));
    const float after = editor.value(kKnob);
    editor.point(30, 5);
    serveAll(editor);
    EXPECT_EQ(editor.value(kKnob), after) << "the knob is no longer in the hand";
}

TEST_F(WindowedEditor, ShowsTheMenuOfSkinsAtRestWhileItsMessageStands) {
    std::ifstream before(module.folder() + "/Quillon Skin/skin.xml");
    std::string objects((std::istreambuf_iterator<char>(before)), std::istreambuf_iterator<char>());
    const std::string plain = R"(<skinselector x="100" y="70" w="70" h="20"/>)";
    ASSERT_NE(objects.find(plain), std::string::npos);
    for (const char* pictures : {"", R"( bitmap_bk="handle.png" bitmap_bk_active="ways.png")"}) {
        SCOPED_TRACE(pictures);
        std::string skin = objects;
        skin.insert(objects.find(plain) + plain.size() - 2, pictures);
        std::ofstream(module.folder() + "/Quillon Skin/skin.xml") << skin;
        auto& editor = show();
        serveAll(editor);
        serveUntilStill(editor, 100, 70, 70, 20);
        const auto resting = editor.part(100, 70, 70, 20);
        std::vector<Pixel> seen;
        chooseSkin(editor, [&](const SeparateConnection& display) {
            seen = display.part(40 + 100, 30 + 70, 70, 20);
        });
        EXPECT_TRUE(seen == resting);
        serveAll(editor);
        serveUntilStill(editor, 100, 70, 70, 20);
        EXPECT_TRUE(editor.part(100, 70, 70, 20) == resting) << "and afterwards";
        shown_.reset();
        std::filesystem::remove_all(std::string(std::getenv("XDG_CONFIG_HOME")) + "/Quillon Software");
    }
}

TEST_F(WindowedEditor, EndsWithTheMenuOfSkinsOpen) {
    for (const bool closesFirst : {true, false}) {
        auto& editor = show();
        const auto resting = editor.part(100, 92, 70, 50);
        editor.click(135, 80);
        ASSERT_TRUE(editor.changes(resting, 100, 92, 70, 50));
        if (closesFirst)
            editor.close();
        editor.destroyInstance();
        EXPECT_EQ(childrenOf(editor.window()).size(), 0u);
        EXPECT_EQ(chosenSkin(), "");
    }
    serveAll(show());
}

TEST_F(WindowedEditor, EndsRightAfterTheMessageAboutASkin) {
    for (const bool closesFirst : {true, false}) {
        auto& editor = show();
        chooseSkin(editor, [](const SeparateConnection&) {});
        if (closesFirst)
            editor.close();
        editor.destroyInstance();
        EXPECT_EQ(childrenOf(editor.window()).size(), 0u);
        // The next one has the skin that was chosen.
        std::filesystem::remove_all(std::string(std::getenv("XDG_CONFIG_HOME")) + "/Quillon Software");
    }
    serveAll(show());
}

TEST_F(WindowedEditor, TakesKeysFromTheHostForTheMenuInFocus) {
    auto& editor = show();
    editor.plugin().setParameter(kMenu, 0.0f);
    const auto before = editor.part(10, 92, 80, 60);
    editor.click(50, 80);
    ASSERT_TRUE(editor.changes(before, 10, 92, 80, 60));
    // Down, down, return, as a host passes them on.
    for (const std::intptr_t key : {14, 14, 4})
        EXPECT_EQ(editor.plugin().dispatch(effEditKeyDown, 0, key), 1) << key;
    EXPECT_TRUE(editor.becomes(kMenu, 0.5f)) << editor.value(kMenu);
}

// The keyboard

/// A host's window that has the keyboard.
class HostAtTheKeyboard : public WindowedEditor {
  protected:
    ShownEditor& showInTheHostsWindow() {
        auto& editor = show();
        XSetInputFocus(screen().display(), editor.window(), RevertToParent, CurrentTime);
        XSync(screen().display(), False);
        return editor;
    }
    bool hasTheKeyboard(const ShownEditor& editor) {
        Window owner = None;
        int revert = 0;
        XGetInputFocus(screen().display(), &owner, &revert);
        return owner == editor.window();
    }
};

TEST_F(HostAtTheKeyboard, HasItBackAfterADrag) {
    auto& editor = showInTheHostsWindow();
    const float before = editor.value(kKnob);
    ASSERT_TRUE(editor.drag(30, 30, 30, -30, [&] { return editor.value(kKnob) != before; }));
    EXPECT_TRUE(editor.serveUntil([&] { return hasTheKeyboard(editor); }));
}

TEST_F(HostAtTheKeyboard, HasItBackWhenAMenuHasGone) {
    auto& editor = showInTheHostsWindow();
    editor.plugin().setParameter(kMenu, 0.0f);
    openMenu(editor);
    EXPECT_FALSE(hasTheKeyboard(editor)) << "the menu is used by keys too";
    for (const KeySym key : std::array<KeySym, 3>{XK_Down, XK_Down, XK_Return})
        editor.typeKey(key);
    EXPECT_TRUE(editor.becomes(kMenu, 0.5f)) << editor.value(kMenu);
    EXPECT_TRUE(editor.serveUntil([&] { return hasTheKeyboard(editor); }));
}

TEST_F(HostAtTheKeyboard, IsNoOtherProgramThatHadItBeforeThePress) {
    auto& editor = show();
    const Window other = XCreateSimpleWindow(screen().display(), screen().root(), 500, 30, 20, 20, 0, 0, 0);
    XMapWindow(screen().display(), other);
    XSetInputFocus(screen().display(), other, RevertToParent, CurrentTime);
    XSync(screen().display(), False);
    const float before = editor.value(kKnob);
    ASSERT_TRUE(editor.drag(30, 30, 30, -30, [&] { return editor.value(kKnob) != before; }));
    // The second click is served when what the drag has left to do is done.
    serveAll(editor);
    serveAll(editor);
    Window owner = None;
    int revert = 0;
    XGetInputFocus(screen().display(), &owner, &revert);
    EXPECT_EQ(owner, childrenOf(editor.window()).at(0));
    XDestroyWindow(screen().display(), other);
}

TEST_F(HostAtTheKeyboard, DoesNotGetItFromAnotherWindow) {
    auto& editor = showInTheHostsWindow();
    const Window other = XCreateSimpleWindow(screen().display(), screen().root(), 500, 30, 20, 20, 0, 0, 0);
    XMapWindow(screen().display(), other);
    const float before = editor.value(kKnob);
    editor.point(30, 30);
    editor.press(kLeft);
    ASSERT_TRUE(editor.serveUntil([&] { return !hasTheKeyboard(editor); }));
    XSetInputFocus(screen().display(), other, RevertToParent, CurrentTime);
    XSync(screen().display(), False);
    editor.point(30, 0);
    ASSERT_TRUE(editor.serveUntil([&] { return editor.value(kKnob) != before; }));
    editor.release(kLeft);
    ASSERT_TRUE(editor.serveUntil([&] {
        const auto told = editor.toldOf(kKnob);
        return !told.empty() && told.back() == audioMasterEndEdit;
    }));
    editor.serve();
    Window owner = None;
    int revert = 0;
    XGetInputFocus(screen().display(), &owner, &revert);
    EXPECT_EQ(owner, other);
    XDestroyWindow(screen().display(), other);
}

// Overlays

TEST_F(WindowedEditor, OffersAMenuAboutControllersAtARightClick) {
    auto& editor = show();
    editor.plugin().setParameter(kKnob, 0.25f);
    ASSERT_TRUE(editor.becomes(kKnob, 0.25f));
    serveAll(editor);
    const auto before = editor.part(30, 30, 90, 24);
    editor.click(30, 30, kRight);
    ASSERT_TRUE(editor.changes(before, 30, 30, 90, 24));
    editor.typeKey(XK_Down);
    editor.typeKey(XK_Return);
    EXPECT_TRUE(editor.becomes(kKnob, 1.0f)) << "the menu's entry sets the parameter to its maximum";
}

TEST_F(WindowedEditor, SetsAControlBackToItsDefaultByControlAndClick) {
    auto& editor = show();
    const float start = editor.value(kKnob);
    editor.plugin().setParameter(kKnob, 0.9f);
    editor.holdKey(XK_Control_L, true);
    editor.click(30, 30);
    EXPECT_TRUE(editor.becomes(kKnob, start));
    editor.holdKey(XK_Control_L, false);
}

TEST_F(WindowedEditor, TicksNoEntryOfTheLearnMenuBeforeAChoice) {
    auto& editor = show();
    serveAll(editor);
    const auto before = editor.part(30, 30, 90, 24);
    editor.click(30, 30, kRight);
    ASSERT_TRUE(editor.changes(before, 30, 30, 90, 24));
    serveUntilStill(editor, 30, 30, 90, 24);
    const auto tickPlace = editor.part(33, 33, 14, 15);
    EXPECT_TRUE(std::ranges::all_of(tickPlace, [&](Pixel pixel) { return pixel == tickPlace[0]; }));
    EXPECT_NE(tickPlace[0], kGrey) << "the menu itself";
    editor.typeKey(XK_Escape);
}

TEST_F(WindowedEditor, TellsTheHostOfTheRightParameterFromTheLearnMenu) {
    auto& editor = show();
    editor.plugin().setParameter(kKnob, 0.25f);
    serveAll(editor);
    editor.plugin().clearCalls();
    const auto before = editor.part(30, 30, 90, 24);
    editor.click(30, 30, kRight);
    ASSERT_TRUE(editor.changes(before, 30, 30, 90, 24));
    editor.typeKey(XK_Down);
    editor.typeKey(XK_Return);
    ASSERT_TRUE(editor.becomes(kKnob, 1.0f));
    EXPECT_EQ(editor.toldOf(kKnob),
              (std::vector<std::int32_t>{audioMasterBeginEdit, audioMasterAutomate, audioMasterEndEdit}));
    EXPECT_EQ(editor.idsTold(), (std::vector<std::int32_t>{kKnob, kKnob, kKnob}));
}

TEST_F(WindowedEditor, TellsTheHostOfNothingButParameters) {
    auto& editor = show();
    serveAll(editor);
    editor.plugin().clearCalls();
    // The kick button, a menu of actions, and keys on that menu, which then is in focus.
    editor.click(218, 48);
    const auto before = editor.part(60, 194, 60, 20);
    editor.click(90, 184);
    ASSERT_TRUE(editor.changes(before, 60, 194, 60, 20));
    for (const std::intptr_t key : {14, 4}) // down, return
        editor.plugin().dispatch(effEditKeyDown, 0, key);
    serveAll(editor);
    for (const std::int32_t id : editor.idsTold())
        EXPECT_EQ(id, kLamp);
    EXPECT_FALSE(editor.idsTold().empty());
}

TEST_F(WindowedEditor, OpensMenusAtControlAndClickToo) {
    struct Place {
        int x, y;
    };
    int messages = 0;
    const desk::MessageWatch watch([&](const desk::ShownMessage&) { ++messages; }, [] { return true; });
    for (const Place menu : {Place{135, 80}, Place{50, 80}, Place{90, 184}}) {
        SCOPED_TRACE(menu.x);
        auto& editor = show();
        const float value = editor.value(kMenu);
        editor.plugin().clearCalls();
        const auto before = editor.part(menu.x - 20, menu.y + 14, 40, 20);
        editor.holdKey(XK_Control_L, true);
        editor.click(menu.x, menu.y);
        editor.holdKey(XK_Control_L, false);
        EXPECT_TRUE(editor.changes(before, menu.x - 20, menu.y + 14, 40, 20));
        EXPECT_EQ(editor.value(kMenu), value);
        EXPECT_EQ(chosenSkin(), "");
        EXPECT_TRUE(editor.idsTold().empty());
        shown_.reset();
    }
    EXPECT_EQ(messages, 0);
}

TEST_F(WindowedEditor, TakesControlAndClickOnAButtonOrAnAboutBoxForAPlainClick) {
    auto& editor = show();
    ASSERT_TRUE(editor.showsPixel(218, 48, 0x800000));
    editor.holdKey(XK_Control_L, true);
    editor.point(218, 48);
    editor.press(kLeft);
    EXPECT_TRUE(editor.showsPixel(218, 48, 0x00FF00));
    editor.release(kLeft);
    EXPECT_TRUE(editor.showsPixel(218, 48, 0x800000));
    editor.click(145, 184); // the second box
    EXPECT_TRUE(editor.showsPixel(kSkinWidth / 2 - 48, kSkinHeight / 2 + 28, kAboutBlue));
    editor.holdKey(XK_Control_L, false);
}

TEST_F(WindowedEditor, DoesNothingHarmfulAtARightClickOnAMenu) {
    auto& editor = show();
    editor.plugin().setParameter(kMenu, 0.5f);
    const auto before = editor.part(50, 80, 60, 24);
    editor.click(50, 80, kRight);
    ASSERT_TRUE(editor.changes(before, 50, 80, 60, 24));
    editor.typeKey(XK_Escape);
    ASSERT_TRUE(editor.serveUntil([&] { return editor.part(50, 80, 60, 24) == before; }));
    EXPECT_EQ(editor.value(kMenu), 0.5f);
}

// The about box and the picture of the echoes

TEST_F(WindowedEditor, OpensTheAboutBoxByAClickAndClosesItByAnother) {
    auto& editor = show();
    const int x = kSkinWidth / 2 - 48, y = kSkinHeight / 2 + 28;
    const auto before = editor.part(x, y, 1, 1);
    editor.click(270, 180);
    EXPECT_TRUE(editor.showsPixel(x, y, kAboutBlue));
    editor.click(x, y);
    EXPECT_TRUE(editor.serveUntil([&] { return editor.part(x, y, 1, 1) == before; }));
    serveAll(editor);
}

TEST_F(WindowedEditor, LeavesTheAboutBoxClosedAtARightClick) {
    auto& editor = show();
    editor.click(270, 180, kRight);
    serveAll(editor);
    EXPECT_NE(editor.pixel(kSkinWidth / 2, kSkinHeight / 2 + 28), kAboutBlue);
}

TEST_F(WindowedEditor, DrawsTheEchoesAnewWhenThePatternChanges) {
    auto& editor = show();
    editor.plugin().setParameter(kTaps, 0.05f);
    serveAll(editor);
    const auto before = editor.part(10, 110, 200, 60);
    editor.plugin().setParameter(kTaps, 0.2f);
    EXPECT_TRUE(editor.changes(before, 10, 110, 200, 60));
}

TEST_F(WindowedEditor, TurnsThePagesOfHelpByRightClicks) {
    auto& editor = show();
    serveAll(editor);
    const auto picture = editor.part(10, 110, 200, 60);
    editor.click(100, 140, kRight);
    ASSERT_TRUE(editor.changes(picture, 10, 110, 200, 60));
    serveAll(editor);
    const auto firstPage = editor.part(10, 110, 200, 60);
    editor.click(100, 140, kRight);
    ASSERT_TRUE(editor.changes(firstPage, 10, 110, 200, 60));
    editor.click(100, 140);
    EXPECT_TRUE(editor.serveUntil([&] { return editor.part(10, 110, 200, 60) == picture; }));
}

// Windows come and go

TEST_F(WindowedEditor, OpensAndClosesAHundredTimes) {
    auto& editor = show();
    for (int round = 0; round < 100; ++round) {
        editor.close();
        EXPECT_EQ(childrenOf(editor.window()).size(), 0u) << round;
        ASSERT_TRUE(editor.open()) << round;
        ASSERT_TRUE(editor.showsPixel(kSkinWidth - 2, 2, kGrey)) << round;
    }
    serveAll(editor);
}

TEST_F(WindowedEditor, StandsBesideTheWindowOfAnotherInstance) {
    auto& first = show();
    ShownEditor second(library(), screen(), 500, 400);
    ASSERT_TRUE(second.open());
    ASSERT_TRUE(second.showsPixel(kSkinWidth - 2, 2, kGrey));
    const float untouched = first.value(kLamp);
    serveAll(second);
    EXPECT_EQ(first.value(kLamp), untouched);
    second.close();
    serveAll(first);
}

TEST_F(WindowedEditor, OutlivesTheHostsWindow) {
    auto& editor = show();
    editor.destroyWindow();
    for (int i = 0; i < 20; ++i)
        editor.serve();
    editor.plugin().setParameter(kKnob, 0.75f);
    editor.serve();
    editor.close();
    editor.serve();
    EXPECT_EQ(editor.value(kKnob), 0.75f);
}

TEST_F(WindowedEditor, OpensNowhereWithoutHarm) {
    auto& editor = show();
    editor.close();
    EXPECT_EQ(editor.plugin().dispatch(effEditOpen, 0, 0, nullptr), 1);
    for (int i = 0; i < 5; ++i)
        editor.serve();
    editor.plugin().setParameter(kKnob, 0.75f);
    editor.close();
    ASSERT_TRUE(editor.open());
    ASSERT_TRUE(editor.showsPixel(kSkinWidth - 2, 2, kGrey));
    serveAll(editor);
}

TEST_F(WindowedEditor, AnswersNoForAWindowThatIsGone) {
    auto& editor = show();
    editor.close();
    const Window gone = XCreateSimpleWindow(screen().display(), screen().root(), 0, 0, 9, 9, 0, 0, 0);
    XDestroyWindow(screen().display(), gone);
    XSync(screen().display(), False);
    EXPECT_EQ(editor.plugin().dispatch(effEditOpen, 0, 0, reinterpret_cast<void*>(gone)), 0);
    for (int i = 0; i < 5; ++i)
        editor.serve();
    editor.plugin().setParameter(kKnob, 0.75f);
    editor.close();
    ASSERT_TRUE(editor.open());
    ASSERT_TRUE(editor.showsPixel(kSkinWidth - 2, 2, kGrey));
    serveAll(editor);
}

TEST_F(WindowedEditor, ClosesWithAMenuOpen) {
    auto& editor = show();
    for (const unsigned button : {kLeft, kRight}) {
        const auto before = editor.part(50, 80, 40, 50);
        editor.click(50, 80, button);
        ASSERT_TRUE(editor.changes(before, 50, 80, 40, 50));
        editor.close();
        ASSERT_TRUE(editor.open());
        ASSERT_TRUE(editor.showsPixel(kSkinWidth - 2, 2, kGrey));
    }
    serveAll(editor);
}

TEST_F(WindowedEditor, ClosesInTheMiddleOfADrag) {
    auto& editor = show();
    editor.point(30, 30);
    editor.press(kLeft);
    editor.point(30, 20);
    ASSERT_TRUE(editor.serveUntil([&] { return !editor.toldOf(kKnob).empty(); }));
    editor.close();
    editor.release(kLeft);
    ASSERT_TRUE(editor.open());
    ASSERT_TRUE(editor.showsPixel(kSkinWidth - 2, 2, kGrey));
    serveAll(editor);
}

TEST_F(WindowedEditor, ClosesFromInsideTheHostsAnswerToAGesture) {
    auto& editor = show();
    bool closed = false;
    editor.plugin().behaviour().answer = [&](const host::HostCall& call,
                                             void*) -> std::optional<std::intptr_t> {
        if (call.opcode == audioMasterAutomate && !closed) {
            closed = true;
            editor.close();
        }
        return std::nullopt;
    };
    ASSERT_TRUE(editor.drag(30, 30, 30, 10, [&] { return closed; }));
    EXPECT_EQ(childrenOf(editor.window()).size(), 0u);
    editor.plugin().behaviour().answer = nullptr;
    ASSERT_TRUE(editor.open());
    ASSERT_TRUE(editor.showsPixel(kSkinWidth - 2, 2, kGrey));
    serveAll(editor);
}

TEST_F(WindowedEditor, ClosesFromInsideTheHostsAnswerToAChoiceInAMenu) {
    auto& editor = show();
    for (const bool chosenByKey : {true, false}) {
        openMenu(editor);
        editor.plugin().clearCalls();
        bool closed = false;
        editor.plugin().behaviour().answer = [&](const host::HostCall& call,
                                                 void*) -> std::optional<std::intptr_t> {
            if (call.opcode == audioMasterAutomate && !std::exchange(closed, true))
                editor.close();
            return std::nullopt;
        };
        if (chosenByKey)
            for (const std::intptr_t key : {14, 4}) // down, return
                editor.plugin().dispatch(effEditKeyDown, 0, key);
        else
            editor.click(50, 120);
        EXPECT_TRUE(editor.serveUntil([&] { return closed; }));
        EXPECT_EQ(childrenOf(editor.window()).size(), 0u);
        editor.plugin().behaviour().answer = nullptr;
        ASSERT_TRUE(editor.open());
        ASSERT_TRUE(editor.showsPixel(kSkinWidth - 2, 2, kGrey));
    }
    serveAll(editor);
}

TEST_F(WindowedEditor, ClosesFromInsideTheHostsAnswerToTheLearnMenu) {
    auto& editor = show();
    serveAll(editor);
    const auto before = editor.part(30, 30, 90, 24);
    editor.click(30, 30, kRight);
    ASSERT_TRUE(editor.changes(before, 30, 30, 90, 24));
    editor.plugin().clearCalls();
    editor.plugin().behaviour().answer = [&](const host::HostCall& call,
                                             void*) -> std::optional<std::intptr_t> {
        if (call.opcode == audioMasterAutomate)
            editor.close();
        return std::nullopt;
    };
    for (const std::intptr_t key : {14, 4}) // down, return
        editor.plugin().dispatch(effEditKeyDown, 0, key);
    EXPECT_EQ(editor.value(kKnob), 1.0f);
    EXPECT_EQ(editor.toldOf(kKnob).back(), audioMasterEndEdit) << "though the window has gone";
    editor.plugin().behaviour().answer = nullptr;
    ASSERT_TRUE(editor.open());
    ASSERT_TRUE(editor.showsPixel(kSkinWidth - 2, 2, kGrey));
    serveAll(editor);
}

/// An editor in whose gestures the host ends it, while another one serves both.
class EndedInAGesture : public WindowedEditor {
  protected:
    EndedInAGesture() : server_(show()), ended_(library(), screen(), 500, 400) {
        EXPECT_TRUE(ended_.open());
        EXPECT_TRUE(ended_.showsPixel(kSkinWidth - 2, 2, kGrey));
    }

    /// Ends the instance in the next call with this opcode.
    void endAt(std::int32_t opcode) {
        ended_.plugin().behaviour().answer = [this, opcode](const host::HostCall& call,
                                                            void*) -> std::optional<std::intptr_t> {
            callsAfterEnd_ += isEnded_ ? 1 : 0;
            if (call.opcode == opcode && !std::exchange(isEnded_, true)) {
                EXPECT_EQ(ended_.plugin().close(), 1);
                EXPECT_EQ(childrenOf(ended_.window()).size(), 0u);
            }
            return std::nullopt;
        };
    }
    void expectEnd() {
        EXPECT_TRUE(server_.serveUntil([this] { return isEnded_; }));
        serveAll(server_);
        EXPECT_EQ(callsAfterEnd_, 0);
        EXPECT_TRUE(std::filesystem::exists("Pluginccmap.bin")) << "which the instance's end writes";
        ended_.destroyInstance();
    }

    ShownEditor& server_;
    ShownEditor ended_;

  private:
    bool isEnded_ = false;
    int callsAfterEnd_ = 0;
};

class EndedInADrag : public EndedInAGesture, public testing::WithParamInterface<std::int32_t> {};

TEST_P(EndedInADrag, GoesWhenItsEventIsOver) {
    endAt(GetParam());
    ended_.point(30, 30);
    ended_.press(kLeft);
    ended_.point(30, 20);
    ended_.point(30, 10);
    ended_.release(kLeft);
    expectEnd();
}

INSTANTIATE_TEST_SUITE_P(At, EndedInADrag,
                         testing::Values(audioMasterBeginEdit, audioMasterAutomate, audioMasterEndEdit));

class EndedInAMenu : public EndedInAGesture, public testing::WithParamInterface<std::int32_t> {};

TEST_P(EndedInAMenu, GoesWhenItsEventIsOver) {
    openMenu(ended_);
    endAt(GetParam());
    ended_.click(50, 120);
    expectEnd();
}

TEST_P(EndedInAMenu, AboutAControllerGoesWhenItsEventIsOver) {
    serveAll(ended_);
    const auto before = ended_.part(30, 30, 90, 24);
    ended_.click(30, 30, kRight);
    ASSERT_TRUE(ended_.changes(before, 30, 30, 90, 24));
    endAt(GetParam());
    ended_.click(60, 40);
    expectEnd();
}

INSTANTIATE_TEST_SUITE_P(At, EndedInAMenu, testing::Values(audioMasterAutomate, audioMasterEndEdit));

TEST_F(WindowedEditor, DiesWithItsWindowOpen) {
    auto& editor = show();
    editor.destroyInstance();
    EXPECT_EQ(childrenOf(editor.window()).size(), 0u);
    show();
    serveAll(*shown_);
}

TEST_F(WindowedEditor, FollowsAutomationFromAnotherThread) {
    auto& editor = show();
    std::atomic<bool> goesOn = true;
    std::thread automation([&] {
        std::vector<float> left(64), right(64);
        float* buffers[] = {left.data(), right.data()};
        for (int step = 0; goesOn; step = (step + 1) % 100) {
            for (const std::int32_t id : {0, 1, kKnob, kUpright, kHorizontal, kMenu})
                editor.plugin().setParameter(id, static_cast<float>(step) / 100.0f);
            if (step == 50)
                editor.plugin().setProgram(step);
            editor.plugin().process(buffers, buffers, 64);
        }
    });
    for (int round = 0; round < 5; ++round) {
        for (int i = 0; i < 50; ++i)
            editor.serve();
        editor.close();
        EXPECT_TRUE(editor.open());
    }
    goesOn = false;
    automation.join();
    editor.plugin().setParameter(kHorizontal, 1.0f);
    EXPECT_TRUE(editor.showsPixel(165, 18, 0xFF8000));
}

} // namespace
