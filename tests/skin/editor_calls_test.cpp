// Calls of a host that reach the editor at odd moments, or with much in them.
#include "skin_bench.h"

#include "vstgui/lib/cframe.h"
#include "vstgui/lib/events.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

class EditorCalls : public testing::Test {
  protected:
    EditorCalls() { bench.drawPicture("ground.png", 120, 80); }

    /// An editor for a skin of these objects on a background.
    test::ExposedEditor<skin::xmlGuiEditor>& editorFor(const std::string& objects) {
        bench.writeSkin(R"(<background filename="ground.png"/>)" + objects);
        return bench.makeEditor();
    }

    test::SkinBench bench;
};

/// Writes down the keys that reach a frame.
class NotedKeys final : public VSTGUI::IKeyboardHook {
  public:
    void onKeyboardEvent(VSTGUI::KeyboardEvent& event, VSTGUI::CFrame*) override {
        std::string key = event.type == VSTGUI::EventType::KeyDown ? "down" : "up";
        key += " " + std::to_string(static_cast<unsigned>(event.character)) + "/" +
               std::to_string(static_cast<int>(event.virt));
        for (const auto& [modifier, name] : {std::pair{VSTGUI::ModifierKey::Shift, " shift"},
                                             {VSTGUI::ModifierKey::Alt, " alternate"},
                                             {VSTGUI::ModifierKey::Super, " command"},
                                             {VSTGUI::ModifierKey::Control, " control"}})
            if (event.modifiers.has(modifier))
                key += name;
        keys.push_back(key);
    }
    std::vector<std::string> keys;
};

TEST_F(EditorCalls, BringKeysToTheViewsWithThoseThatAreHeld) {
    auto& editor = editorFor("");
    ASSERT_TRUE(editor.open(nullptr));
    NotedKeys noted;
    editor.frame->registerKeyboardHook(&noted);
    for (const unsigned char held : std::vector<unsigned char>{0, 1, 2, 4, 8, 15}) {
        interfaces::KeyCode key = {'a', 7, held};
        editor.onKeyDown(key);
    }
    interfaces::KeyCode key = {'b', 0, 1};
    editor.onKeyUp(key);
    editor.frame->unregisterKeyboardHook(&noted);
    EXPECT_EQ(noted.keys,
              (std::vector<std::string>{"down 97/7", "down 97/7 shift", "down 97/7 alternate",
                                        "down 97/7 command", "down 97/7 control",
                                        "down 97/7 shift alternate command control", "up 98/0 shift"}));
}

TEST_F(EditorCalls, OfAnotherThreadRefreshMenusUnscaledUnlessTheyNameMinusOne) {
    auto& editor = editorFor(R"(<optionmenu x="0" y="0" w="10" h="10" id="4">
        <list><entry>a</entry><entry>b</entry><entry>c</entry></list></optionmenu>)");
    bench.effect().values[4] = 0.5f;
    ASSERT_TRUE(editor.open(nullptr));
    const auto shownAfter = [&](std::int32_t index, float value) {
        std::thread([&] { editor.setParameter(index, value); }).join();
        editor.idle();
        return editor.controlOf(4)->getValue();
    };
    EXPECT_EQ(shownAfter(-1, 0.0f), 1.0f);
    EXPECT_EQ(shownAfter(skin::kRefreshAll, static_cast<float>(skin::kRefreshAll)), 0.5f);
}

/// A host that goes on calling while a message about the skin stands open.
class EditorCallsBehindAMessage : public EditorCalls {
  protected:
    EditorCallsBehindAMessage() {
        platform::replaceMessageBox(
            [](void* context, const char*, const char*, const platform::MessageLook&) {
                auto& test = *static_cast<EditorCallsBehindAMessage*>(context);
                ++test.messages;
                test.whileItStands();
            },
            this);
    }

    int messages = 0;
    std::function<void()> whileItStands = [] {};
    const std::string faulty = R"(<knob id="6"/><knob x="0" y="0" w="10" h="10" id="6"/>)";
};

TEST_F(EditorCallsBehindAMessage, OpenNoSecondWindow) {
    auto& editor = editorFor(faulty);
    bool openedAgain = true;
    whileItStands = [&] { openedAgain = editor.open(nullptr); };
    EXPECT_TRUE(editor.open(nullptr));
    EXPECT_EQ(messages, 1);
    EXPECT_FALSE(openedAgain);
    EXPECT_EQ(editor.controls().size(), 1u);
}

TEST_F(EditorCallsBehindAMessage, CloseTheWindowOnceTheSkinIsRead) {
    auto& editor = editorFor(faulty);
    bool wasThere = false;
    whileItStands = [&] {
        editor.close();
        wasThere = editor.frame != nullptr;
    };
    EXPECT_FALSE(editor.open(nullptr));
    EXPECT_EQ(messages, 1);
    EXPECT_TRUE(wasThere) << "the skin is still being read into it";
    EXPECT_EQ(editor.frame, nullptr);
    whileItStands = [] {};
    EXPECT_TRUE(editor.open(nullptr));
}

} // namespace
