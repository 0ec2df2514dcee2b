// The message box as the system shows it, looked at and pressed from another thread, since it keeps its own.

#include "platform/message_box.h"

#include "../child_process.h"

#include <atomic>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>
#include <windows.h>

namespace {

using platform::MessageIcon;
using platform::MessageLook;

std::string textOf(HWND window) {
    char text[1024] = "";
    GetWindowTextA(window, text, sizeof text);
    return text;
}

std::string classOf(HWND window) {
    char name[64] = "";
    GetClassNameA(window, name, sizeof name);
    return name;
}

bool isIcon(HWND window) {
    return classOf(window) == "Static" && (GetWindowLongA(window, GWL_STYLE) & SS_TYPEMASK) == SS_ICON;
}

/// A message that another thread shows, and its box. The box is acknowledged at the latest with the end.
class ShownMessage {
  public:
    ShownMessage(const char* text, const char* caption, const MessageLook& look = {})
        : shower_([=, this] {
              platform::showMessage(text, caption, look);
              isOver_ = true;
          }) {
        const bool found = test::waitUntil([&] {
            box_ = FindWindowA("#32770", caption);
            return box_ && IsWindowVisible(box_) && !children("Button").empty();
        });
        EXPECT_TRUE(found) << "no box titled " << caption;
    }
    ~ShownMessage() {
        press();
        shower_.join();
    }
    ShownMessage(const ShownMessage&) = delete;
    ShownMessage& operator=(const ShownMessage&) = delete;

    HWND box() const { return box_; }
    bool isOver() const { return isOver_; }

    /// What is to be seen in it, of one class.
    std::vector<HWND> children(const std::string& className) const {
        std::vector<HWND> found;
        for (HWND child = GetWindow(box_, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
            if (classOf(child) == className && IsWindowVisible(child))
                found.push_back(child);
        return found;
    }
    /// The icon that it shows; null for none.
    HICON icon() const {
        for (HWND child : children("Static"))
            if (isIcon(child))
                return reinterpret_cast<HICON>(SendMessageA(child, STM_GETICON, 0, 0));
        return nullptr;
    }
    std::vector<std::string> texts() const {
        std::vector<std::string> found;
        for (HWND child : children("Static"))
            if (!isIcon(child))
                found.push_back(textOf(child));
        return found;
    }
    void press() const { PostMessageA(box_, WM_COMMAND, IDOK, 0); }

  private:
    HWND box_ = nullptr;
    std::atomic<bool> isOver_ = false;
    std::thread shower_;
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
    EXPECT_EQ(textOf(message.box()), "Preset loader");
    EXPECT_EQ(message.texts(), std::vector<std::string>{"Default bank error: file not found"});
    ASSERT_EQ(message.children("Button").size(), 1u);
    EXPECT_EQ(GetDlgCtrlID(message.children("Button")[0]), IDOK);
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
    EXPECT_EQ(GetWindow(message.box(), GW_OWNER), nullptr);
    EXPECT_EQ(message.icon(), nullptr);
}

TEST(MessageWindow, ShowsTheIconOfAnError) {
    const ShownMessage message("Missing tag x for object knob", "Skin Error", {.icon = MessageIcon::error});
    EXPECT_EQ(message.icon(), LoadIconA(nullptr, IDI_HAND));
    EXPECT_EQ(GetWindow(message.box(), GW_OWNER), nullptr);
    EXPECT_EQ(message.texts(), std::vector<std::string>{"Missing tag x for object knob"});
}

TEST(MessageWindow, BelongsToTheWindowAroundTheOneThatItIsGiven) {
    const HostAndEditor windows;
    {
        const ShownMessage message("text", "owned", {.owner = windows.editor()});
        EXPECT_EQ(GetAncestor(GetWindow(message.box(), GW_OWNER), GA_ROOT), windows.host());
        EXPECT_EQ(message.icon(), nullptr);
        EXPECT_FALSE(IsWindowEnabled(GetWindow(message.box(), GW_OWNER))) << "the owner rests meanwhile";
    }
    EXPECT_TRUE(IsWindowEnabled(windows.host()));
    EXPECT_TRUE(IsWindowEnabled(windows.editor()));
}

TEST(MessageWindow, HoldsItsCallerUntilItIsAcknowledged) {
    const ShownMessage message("text", "waiting");
    EXPECT_FALSE(message.isOver());
    EXPECT_EQ(SendMessageA(message.box(), WM_NULL, 0, 0), 0);
    EXPECT_FALSE(message.isOver()) << "although it is being served";
    message.press();
    EXPECT_TRUE(test::waitUntil([&] { return message.isOver(); }));
    EXPECT_FALSE(IsWindow(message.box()));
}

TEST(MessageWindow, GoesByItsButtonAndByTheKeysOfADialog) {
    {
        const ShownMessage message("text", "button");
        PostMessageA(message.children("Button")[0], BM_CLICK, 0, 0);
        EXPECT_TRUE(test::waitUntil([&] { return message.isOver(); }));
    }
    for (const WPARAM key : {VK_RETURN, VK_ESCAPE}) {
        const ShownMessage message("text", "key");
        PostMessageA(message.children("Button")[0], WM_KEYDOWN, key, 0);
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
