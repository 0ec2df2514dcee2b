// The message box as the system shows it.

#include "platform/message_box.h"

#include "child_process.h"
#include "shown_box.h"

#include <atomic>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>
#include <windows.h>

namespace {

using platform::MessageIcon;
using platform::MessageLook;
using test::textOf;

/// The box of a message.
class ShownMessage : public test::ShownBox {
  public:
    ShownMessage(const char* text, const char* caption, const MessageLook& look = {})
        : ShownBox([=] { platform::showMessage(text, caption, look); }, caption) {}
};

/// A window with a child, as a host's and an editor's, made and served by a thread of their own.
class HostAndEditor {
  public:
    HostAndEditor()
        : owner_([this] {
              host_ = CreateWindowA("STATIC", "host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 10, 10, 300, 200,
                                    nullptr, nullptr, nullptr, nullptr);
              editor_ = CreateWindowA("STATIC", "editor", WS_CHILD | WS_VISIBLE, 0, 0, 200, 100, host_,
                                      nullptr, nullptr, nullptr);
              isMade_ = true;
              MSG message;
              while (GetMessageA(&message, nullptr, 0, 0) > 0)
                  DispatchMessageA(&message);
              DestroyWindow(host_);
          }) {
        EXPECT_TRUE(test::waitUntil([this] { return isMade_.load(); }));
    }
    ~HostAndEditor() {
        PostThreadMessageA(GetWindowThreadProcessId(host_, nullptr), WM_QUIT, 0, 0);
        owner_.join();
    }
    HostAndEditor(const HostAndEditor&) = delete;
    HostAndEditor& operator=(const HostAndEditor&) = delete;

    HWND host() const { return host_; }
    HWND editor() const { return editor_; }

  private:
    HWND host_ = nullptr;
    HWND editor_ = nullptr;
    std::atomic<bool> isMade_ = false;
    std::thread owner_;
};

TEST(MessageWindow, HasTheTextTheCaptionAndOneButton) {
    const ShownMessage message("Default bank error: file not found", "Preset loader");
    EXPECT_EQ(textOf(message.window()), "Preset loader");
    EXPECT_EQ(message.texts(), std::vector<std::string>{"Default bank error: file not found"});
    ASSERT_EQ(message.buttons().size(), 1u);
    EXPECT_EQ(GetDlgCtrlID(message.buttons()[0]), IDOK);
}

TEST(MessageWindow, KeepsTheLinesOfItsText) {
    const char* const text = "The new skin has been selected.\n"
                             "Please close and open this window.\n"
                             "If nothing changes it's probably because your host only hides\n"
                             "the editor windows, so you may have to reopen the plug-in";
    const ShownMessage message(text, "SKIN SELECTED!");
    EXPECT_EQ(message.texts(), std::vector<std::string>{text});
}

TEST(MessageWindow, BelongsToNobodyAndHasNoIcon) {
    const ShownMessage message("text", "caption");
    EXPECT_EQ(message.owner(), nullptr);
    EXPECT_EQ(message.icon(), nullptr);
}

TEST(MessageWindow, ShowsTheIconOfAnError) {
    const ShownMessage message("Missing tag x for object knob", "Skin Error", {.icon = MessageIcon::error});
    EXPECT_EQ(message.icon(), LoadIconA(nullptr, IDI_HAND));
    EXPECT_EQ(message.owner(), nullptr);
    EXPECT_EQ(message.texts(), std::vector<std::string>{"Missing tag x for object knob"});
}

TEST(MessageWindow, BelongsToTheWindowAroundTheOneThatItIsGiven) {
    const HostAndEditor windows;
    {
        const ShownMessage message("text", "owned", {.owner = windows.editor()});
        EXPECT_EQ(GetAncestor(message.owner(), GA_ROOT), windows.host());
        EXPECT_EQ(message.icon(), nullptr);
        EXPECT_FALSE(IsWindowEnabled(message.owner())) << "the owner rests meanwhile";
    }
    EXPECT_TRUE(IsWindowEnabled(windows.host()));
    EXPECT_TRUE(IsWindowEnabled(windows.editor()));
}

TEST(MessageWindow, HoldsItsCallerUntilItIsAcknowledged) {
    const ShownMessage message("text", "waiting");
    EXPECT_FALSE(message.isOver());
    EXPECT_EQ(SendMessageA(message.window(), WM_NULL, 0, 0), 0);
    EXPECT_FALSE(message.isOver()) << "although it is being served";
    EXPECT_TRUE(message.acknowledge());
    EXPECT_FALSE(IsWindow(message.window()));
}

TEST(MessageWindow, GoesByItsButtonAndByTheKeysOfADialog) {
    {
        const ShownMessage message("text", "button");
        PostMessageA(message.buttons()[0], BM_CLICK, 0, 0);
        EXPECT_TRUE(test::waitUntil([&] { return message.isOver(); }));
    }
    for (const WPARAM key : {VK_RETURN, VK_ESCAPE}) {
        const ShownMessage message("text", "key");
        PostMessageA(message.buttons()[0], WM_KEYDOWN, key, 0);
        EXPECT_TRUE(test::waitUntil([&] { return message.isOver(); })) << key;
    }
}

TEST(MessageWindow, MayStandBesideAnother) {
    const ShownMessage first("first", "one of two"), second("second", "two of two");
    EXPECT_EQ(first.texts(), std::vector<std::string>{"first"});
    EXPECT_EQ(second.texts(), std::vector<std::string>{"second"});
}

/// A program that has left the display says everything on standard error, on a machine with a screen too.
TEST(LeftDisplay, GetsNoWindowAndMakesNobodyWait) {
    test::ChildProcess program({QUILLON_LEAVE_DISPLAY}, {});
    EXPECT_EQ(program.wait(), 0) << program.standardError();
    EXPECT_EQ(program.standardError(), "caption: from the program\r\n"
                                       "caption: from a thread of it\r\n"
                                       "caption: from a program that it has started\r\n");
}

} // namespace
