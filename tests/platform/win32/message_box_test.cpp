// The message box where there is no screen.

#include "platform/message_box.h"

#include "child_process.h"

#include <gtest/gtest.h>

namespace {

using test::ChildProcess;

std::string printed(const std::string& text, const std::string& caption) {
    ChildProcess box({QUILLON_SHOW_MESSAGE, text, caption}, {});
    EXPECT_EQ(box.wait(), 0);
    EXPECT_EQ(box.standardOutput(), "");
    return box.standardError();
}

TEST(MessageBoxWithoutAScreen, IsALineOnStandardError) {
    EXPECT_EQ(printed("Default bank error: file not found", "Preset loader"),
              "Preset loader: Default bank error: file not found\r\n");
}

TEST(MessageBoxWithoutAScreen, PrintsItsTextsAsTheyAre) {
    EXPECT_EQ(printed("100 %s of \"it\"", "%d"), "%d: 100 %s of \"it\"\r\n");
}

TEST(MessageBoxWithoutAScreen, GoesToTheHandlerThatReplacesIt) {
    std::string heard;
    platform::replaceMessageBox(
        [](void* context, const char* text, const char* caption, const platform::MessageLook& look) {
            *static_cast<std::string*>(context) = std::string(caption) + ": " + text;
            EXPECT_EQ(look.icon, platform::MessageIcon::error);
        },
        &heard);
    platform::showMessage("text", "caption", {.icon = platform::MessageIcon::error});
    EXPECT_EQ(heard, "caption: text");
    platform::replaceMessageBox(nullptr, nullptr);
}

} // namespace
