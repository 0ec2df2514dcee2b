// The editor as a person meets it on Windows: in a host's window, under mouse and keys, with the system's own
// menus and boxes.
#include "desk/message_watch.h"
#include "support/shown_editor.h"
#include "support/wine.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <optional>
#include <utility>

namespace {

using namespace test;
using namespace vst2;

// The parameters of the controls in the skin.
constexpr std::int32_t kKnob = 6, kHorizontal = 14, kLamp = 16, kMenu = 5;

/// Nothing here looks at the screen.
const bool isDrawingOut = leaveDrawingOutUnderWine();

class WindowedEditor : public EditorOnScreen {
  protected:
    /// Opens the menu at a place and types keys into it. Gives what the menu offered.
    static std::vector<std::string> useMenu(ShownEditor& editor, int x, int y, Button button,
                                            std::vector<WPARAM> keys) {
        const MenuHand hand(editor.own(), std::move(keys));
        editor.postClick(x, y, button);
        EXPECT_TRUE(editor.serveUntil([&] { return hand.isDone(); })) << "no menu";
        editor.serveAll();
        return hand.entries();
    }

    /// Binds controllers by the file that the library reads when it is loaded.
    void bindKnobTo(std::int32_t controller) {
        std::vector<std::int32_t> map(21, -1);
        map[kKnob] = controller;
        std::ofstream(beside("Pluginccmap.bin"), std::ios::binary)
            .write(reinterpret_cast<const char*>(map.data()), static_cast<std::streamsize>(map.size() * 4));
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

using Entries = std::vector<std::string>;

TEST_F(WindowedEditor, LiesInTheHostsWindowInTheSizeThatTheHostWasTold) {
    auto& editor = show();
    EXPECT_EQ(editor.width(), kSkinWidth);
    EXPECT_EQ(editor.height(), kSkinHeight);
    ASSERT_EQ(childrenOf(editor.window()).size(), 1u);
    RECT place = {};
    GetWindowRect(editor.own(), &place);
    EXPECT_EQ(place.right - place.left, kSkinWidth);
    EXPECT_EQ(place.bottom - place.top, kSkinHeight);
    EXPECT_TRUE(IsWindowVisible(editor.own()));
}

TEST_F(WindowedEditor, IsOfTheLibraryAndNotOfTheHostsProgram) {
    auto& editor = show();
    const auto module = reinterpret_cast<HMODULE>(GetClassLongPtrW(editor.own(), GCLP_HMODULE));
    char path[MAX_PATH] = "";
    GetModuleFileNameA(module, path, sizeof path);
    EXPECT_EQ(std::string(path), beside("QuillonMultitapDelay.dll"));
}

TEST_F(WindowedEditor, LetsAKnobBeDraggedAndTellsTheHostOfTheGesture) {
    auto& editor = show();
    const float before = editor.value(kKnob);
    editor.plugin().clearCalls();
    editor.postDrag(30, 30, 30, 5);
    ASSERT_TRUE(editor.serveUntil([&] {
        const auto told = editor.toldOf(kKnob);
        return !told.empty() && told.back() == audioMasterEndEdit;
    }));
    EXPECT_GT(editor.value(kKnob), before + 0.05f);
    expectGesture(editor.toldOf(kKnob));
}

TEST_F(WindowedEditor, GoesOnWithADragThatLeavesTheWindow) {
    auto& editor = show();
    editor.plugin().setParameter(kHorizontal, 0.0f);
    editor.serveAll();
    editor.postDrag(65, 18, 400, -25);
    EXPECT_TRUE(editor.becomes(kHorizontal, 1.0f));
}

TEST_F(WindowedEditor, TurnsThePlaceOfARealPointer) {
    auto& editor = show();
    const float before = editor.value(kKnob);
    editor.point(30, 30);
    editor.press(Button::left);
    EXPECT_TRUE(editor.serveUntil([&] { return !editor.toldOf(kKnob).empty(); }));
    for (int y = 30; y > 4; --y)
        editor.point(30, y);
    EXPECT_TRUE(editor.serveUntil([&] { return editor.value(kKnob) > before + 0.05f; }));
    editor.release(Button::left);
    EXPECT_TRUE(editor.serveUntil([&] { return editor.toldOf(kKnob).back() == audioMasterEndEdit; }));
}

// Menus, which keep the thread until they are over

TEST_F(WindowedEditor, OffersToLearnAtARightClickOnAnUnboundKnob) {
    auto& editor = show();
    editor.plugin().setParameter(kKnob, 0.25f);
    EXPECT_EQ(useMenu(editor, 30, 30, Button::right, {VK_ESCAPE}), Entries{"MidiLearn"});
    EXPECT_EQ(editor.value(kKnob), 0.25f) << "dismissing it changes nothing";
}

TEST_F(WindowedEditor, SetsTheParameterToItsMaximumByLearning) {
    auto& editor = show();
    editor.plugin().setParameter(kKnob, 0.25f);
    editor.plugin().clearCalls();
    useMenu(editor, 30, 30, Button::right, {VK_DOWN, VK_RETURN});
    EXPECT_EQ(editor.value(kKnob), 1.0f);
    EXPECT_EQ(editor.toldOf(kKnob),
              (std::vector<std::int32_t>{audioMasterBeginEdit, audioMasterAutomate, audioMasterEndEdit}));
}

TEST_F(WindowedEditor, ForgetsAControllerFromTheSecondEntry) {
    for (const std::int32_t controller : {7, 0}) {
        SCOPED_TRACE(controller);
        bindKnobTo(controller);
        shown_.reset();
        std::remove("Pluginccmap.bin");
        auto& editor = show();
        const Entries offered = useMenu(editor, 30, 30, Button::right, {VK_DOWN, VK_DOWN, VK_RETURN});
        EXPECT_EQ(offered, (Entries{"MidiLearn", "Forget CC " + std::to_string(controller)}));
        EXPECT_EQ(editor.value(kKnob), -1.0f);
        EXPECT_EQ(useMenu(editor, 30, 30, Button::right, {VK_ESCAPE}), Entries{"MidiLearn"});
    }
}

TEST_F(WindowedEditor, SetsAParameterFromAMenuOfTheSkin) {
    auto& editor = show();
    editor.plugin().clearCalls();
    const Entries offered = useMenu(editor, 50, 80, Button::left, {VK_DOWN, VK_DOWN, VK_DOWN, VK_RETURN});
    EXPECT_EQ(offered, (Entries{"low", "middle", "high"}));
    EXPECT_EQ(editor.value(kMenu), 1.0f);
    expectGesture(editor.toldOf(kMenu));
}

TEST_F(WindowedEditor, ChangesNothingWhenAMenuIsLeftByEscape) {
    auto& editor = show();
    editor.plugin().setParameter(kMenu, 0.3f);
    editor.plugin().clearCalls();
    useMenu(editor, 50, 80, Button::left, {VK_ESCAPE});
    EXPECT_EQ(editor.value(kMenu), 0.3f);
    EXPECT_EQ(std::ranges::count(editor.toldOf(kMenu), audioMasterAutomate), 0);
}

TEST_F(WindowedEditor, TakesAChosenSkinAtTheNextOpening) {
    auto& editor = show();
    std::vector<desk::ShownMessage> messages;
    HWND owner = nullptr;
    bool takesInput = true;
    {
        const auto look = [&](const desk::ShownMessage& message) {
            messages.push_back(message);
            owner = GetWindow(FindWindowA(nullptr, message.caption.c_str()), GW_OWNER);
            takesInput = IsWindowEnabled(owner);
        };
        const desk::MessageWatch watch(look, [] { return true; });
        // Names come in the order of the file system.
        const Entries offered = useMenu(editor, 135, 80, Button::left, {VK_ESCAPE});
        const auto blue = std::ranges::find(offered, "Blue");
        ASSERT_NE(blue, offered.end());
        std::vector<WPARAM> keys(static_cast<std::size_t>(blue - offered.begin()) + 1, VK_DOWN);
        keys.push_back(VK_RETURN);
        useMenu(editor, 135, 80, Button::left, keys);
    }
    EXPECT_EQ(chosenSkin(), "blue");
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].caption, "SKIN SELECTED!");
    EXPECT_EQ(messages[0].text, "The new skin has been selected.\n"
                                "Please close and open this window.\n"
                                "If nothing changes it's probably because your host only hides\n"
                                "the editor windows, so you may have to reopen the plug-in");
    // To the system a child's box belongs to the window that the child lies in.
    EXPECT_NE(owner, nullptr);
    EXPECT_EQ(owner, GetAncestor(editor.own(), GA_ROOT));
    EXPECT_FALSE(takesInput) << "while the box stands";
    EXPECT_TRUE(IsWindowEnabled(owner));
    editor.close();
    ASSERT_TRUE(editor.open());
    RECT place = {};
    GetWindowRect(editor.own(), &place);
    EXPECT_EQ(place.right - place.left, 160) << "the blue skin's background";
    EXPECT_EQ(ShownEditor(library()).width(), 160);
}

// Windows come and go

/// All windows of this process on the screen or off it, those for messages alone too.
std::size_t ownWindows() {
    std::size_t count = 0;
    for (const HWND parent : {static_cast<HWND>(nullptr), HWND_MESSAGE})
        for (HWND window = nullptr; (window = FindWindowExW(parent, window, nullptr, nullptr));) {
            DWORD process = 0;
            GetWindowThreadProcessId(window, &process);
            count += process == GetCurrentProcessId();
        }
    return count;
}

TEST_F(WindowedEditor, OpensAndClosesTwentyTimes) {
    auto& editor = show();
    const std::size_t windows = ownWindows();
    {
        const PlainWindow another(0, 0, 10, 10);
        ASSERT_EQ(ownWindows(), windows + 1) << "a window that stays is noticed";
    }
    for (int round = 0; round < 20; ++round) {
        editor.serve();
        editor.close();
        EXPECT_EQ(childrenOf(editor.window()).size(), 0u) << round;
        ASSERT_TRUE(editor.open()) << round;
        EXPECT_EQ(childrenOf(editor.window()).size(), 1u) << round;
        editor.serveAll();
    }
    EXPECT_EQ(ownWindows(), windows);
}

TEST_F(WindowedEditor, StandsBesideTheWindowOfAnotherInstance) {
    auto& first = show();
    ShownEditor second(library(), 500, 400);
    ASSERT_TRUE(second.open());
    const float untouched = first.value(kLamp);
    second.serveAll();
    EXPECT_EQ(first.value(kLamp), untouched);
    second.close();
    first.serveAll();
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
    PlainWindow gone(0, 0, 10, 10);
    const HWND late = gone.handle();
    gone.destroy();
    // Without a window it opens unseen; where there is none any more it says so.
    const std::pair<void*, std::intptr_t> answers[] = {{nullptr, 1}, {late, 0}};
    for (const auto& [parent, answer] : answers) {
        EXPECT_EQ(editor.plugin().dispatch(effEditOpen, 0, 0, parent), answer);
        for (int i = 0; i < 5; ++i)
            editor.serve();
        editor.plugin().setParameter(kKnob, 0.75f);
        editor.close();
    }
    ASSERT_TRUE(editor.open());
    editor.serveAll();
}

TEST_F(WindowedEditor, ClosesInTheMiddleOfADrag) {
    auto& editor = show();
    editor.post(WM_LBUTTONDOWN, 30, 30, MK_LBUTTON);
    editor.post(WM_MOUSEMOVE, 30, 20, MK_LBUTTON);
    ASSERT_TRUE(editor.serveUntil([&] { return !editor.toldOf(kKnob).empty(); }));
    editor.close();
    EXPECT_EQ(GetCapture(), nullptr);
    ASSERT_TRUE(editor.open());
    editor.serveAll();
}

TEST_F(WindowedEditor, ClosesFromInsideTheHostsAnswerToAGesture) {
    auto& editor = show();
    bool closed = false;
    editor.plugin().behaviour().answer = [&](const host::HostCall& call,
                                             void*) -> std::optional<std::intptr_t> {
        if (call.opcode == audioMasterAutomate && !closed) {
            closed = true;
            const HWND own = editor.own();
            editor.close();
            EXPECT_FALSE(IsWindowVisible(own)) << "the host may take its own window away now";
        }
        return std::nullopt;
    };
    editor.postDrag(30, 30, 30, 10);
    ASSERT_TRUE(editor.serveUntil([&] { return closed; }));
    EXPECT_EQ(childrenOf(editor.window()).size(), 0u);
    EXPECT_EQ(GetCapture(), nullptr);
    editor.plugin().behaviour().answer = nullptr;
    ASSERT_TRUE(editor.open());
    editor.serveAll();
}

TEST_F(WindowedEditor, EndsFromInsideTheHostsAnswerToAGesture) {
    ShownEditor server(library());
    ASSERT_TRUE(server.open());
    for (const std::int32_t opcode : {audioMasterBeginEdit, audioMasterAutomate, audioMasterEndEdit}) {
        SCOPED_TRACE(opcode);
        auto& editor = show();
        bool isEnded = false;
        int callsAfterEnd = 0;
        editor.plugin().behaviour().answer = [&](const host::HostCall& call,
                                                 void*) -> std::optional<std::intptr_t> {
            callsAfterEnd += isEnded ? 1 : 0;
            if (call.opcode == opcode && !std::exchange(isEnded, true)) {
                EXPECT_EQ(editor.plugin().close(), 1);
            }
            return std::nullopt;
        };
        editor.postDrag(30, 30, 30, 10);
        ASSERT_TRUE(server.serveUntil([&] { return isEnded; }));
        server.serveAll();
        EXPECT_EQ(callsAfterEnd, 0);
        EXPECT_EQ(childrenOf(editor.window()).size(), 0u);
        editor.destroyInstance();
    }
}

/// What a host's own timer does while a menu keeps the thread.
std::function<void()> onTimer;

void CALLBACK ring(HWND, UINT, UINT_PTR id, DWORD) {
    KillTimer(nullptr, id);
    if (onTimer)
        std::exchange(onTimer, nullptr)();
}

TEST_F(WindowedEditor, ClosesWithAMenuOpen) {
    for (const Button button : {Button::left, Button::right})
        for (const bool wholeInstance : {false, true}) {
            auto& editor = show();
            bool wasOpen = false;
            onTimer = [&] {
                wasOpen = FindWindowW(L"#32768", nullptr) != nullptr;
                editor.plugin().clearCalls();
                editor.close();
                if (wholeInstance)
                    editor.destroyInstance();
                editor.destroyWindow();
            };
            editor.postClick(50, 80, button);
            SetTimer(nullptr, 0, 300, ring);
            ASSERT_TRUE(editor.serveUntil([] { return !onTimer; }));
            EXPECT_TRUE(wasOpen);
            EXPECT_EQ(FindWindowW(L"#32768", nullptr), nullptr);
        }
    show().serveAll();
}

/// Does something as soon as a box of this caption stands, on the thread that it keeps.
void whenItSays(const char* caption, std::function<void()> act) {
    onTimer = [=] {
        if (FindWindowA(nullptr, caption))
            return act();
        whenItSays(caption, act);
    };
    SetTimer(nullptr, 0, 50, ring);
}

TEST_F(WindowedEditor, ClosesWhileItTellsOfAFaultInTheSkin) {
    for (const char* fault : {R"(<knob id="6" x="10" y="10" w="40" h="40" default="oops"/>)",
                              R"(<display id="300" x="10" y="60" w="40" h="14" font="oops"/>)"}) {
        SCOPED_TRACE(fault);
        std::ofstream(beside("Quillon Skin\\skin.xml"))
            << R"(<GUI><background filename="background.png"/>)" << fault
            << R"(<ViewTaps x="10" y="110" w="200" h="60"/></GUI>)";
        ShownEditor editor(library());
        std::atomic<bool> isClosed = false;
        const desk::MessageWatch watch([](const desk::ShownMessage&) {}, [&] { return isClosed.load(); });
        whenItSays("Skin Error", [&] {
            editor.close();
            isClosed = true;
        });
        EXPECT_FALSE(editor.open());
        EXPECT_TRUE(isClosed);
        EXPECT_EQ(childrenOf(editor.window()).size(), 0u);
        editor.plugin().setParameter(kKnob, 0.75f);
        EXPECT_TRUE(editor.open()) << "the box is acknowledged at once";
        EXPECT_EQ(childrenOf(editor.window()).size(), 1u);
    }
}

TEST_F(WindowedEditor, EndsWhileItTellsOfAFaultInTheSkin) {
    std::ofstream(beside("Quillon Skin\\skin.xml"))
        << R"(<GUI><background filename="background.png"/><knob y="1"/><onoff x="1"/>)"
        << R"(<ViewTaps x="10" y="110" w="200" h="60"/></GUI>)";
    ShownEditor editor(library());
    std::atomic<bool> isGone = false;
    std::atomic<int> messages = 0;
    const desk::MessageWatch watch([&](const desk::ShownMessage&) { ++messages; },
                                   [&] { return isGone.load(); });
    whenItSays("Skin Error", [&] {
        editor.destroyInstance();
        editor.destroyWindow();
        isGone = true;
    });
    EXPECT_FALSE(editor.open());
    EXPECT_TRUE(isGone);
    EXPECT_EQ(messages, 1);
    ShownEditor next(library());
    EXPECT_TRUE(next.open());
}

TEST_F(WindowedEditor, EndsWhileItTellsOfTheChosenSkin) {
    auto& editor = show();
    std::atomic<bool> isGone = false;
    const desk::MessageWatch watch([](const desk::ShownMessage&) {}, [&] { return isGone.load(); });
    whenItSays("SKIN SELECTED!", [&] {
        editor.close();
        editor.destroyInstance();
        editor.destroyWindow();
        isGone = true;
    });
    const MenuHand hand(editor.own(), {VK_DOWN, VK_RETURN});
    editor.postClick(135, 80);
    EXPECT_TRUE(editor.serveUntil([&] { return isGone && hand.isDone(); }));
    EXPECT_TRUE(ShownEditor(library()).open());
}

TEST_F(WindowedEditor, DiesWithItsWindowOpen) {
    auto& editor = show();
    editor.destroyInstance();
    EXPECT_EQ(childrenOf(editor.window()).size(), 0u);
    show().serveAll();
}

TEST_F(WindowedEditor, FollowsAutomationFromAnotherThread) {
    auto& editor = show();
    std::atomic<bool> goesOn = true;
    std::thread automation([&] {
        std::vector<float> left(64), right(64);
        float* buffers[] = {left.data(), right.data()};
        for (int step = 0; goesOn; step = (step + 1) % 100) {
            for (const std::int32_t id : {0, 1, kKnob, kHorizontal, kMenu})
                editor.plugin().setParameter(id, static_cast<float>(step) / 100.0f);
            editor.plugin().process(buffers, buffers, 64);
        }
    });
    for (int round = 0; round < 5; ++round) {
        for (int i = 0; i < 20; ++i)
            editor.serve();
        editor.close();
        EXPECT_TRUE(editor.open());
    }
    goesOn = false;
    automation.join();
    editor.serveAll();
}

} // namespace
