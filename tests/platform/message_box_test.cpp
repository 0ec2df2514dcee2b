#include "platform/message_box.h"

#include "child_process.h"

#include <gtest/gtest.h>

namespace {

using test::ChildProcess;

struct Heard {
    int times = 0;
    std::string text;
    std::string caption;
    platform::MessageLook look;
};

void hear(void* context, const char* text, const char* caption, const platform::MessageLook& look) {
    auto* heard = static_cast<Heard*>(context);
    ++heard->times;
    heard->text = text;
    heard->caption = caption;
    heard->look = look;
}

std::string printedWithDisplay(const std::string& display, const std::string& text,
                               const std::string& caption) {
    ChildProcess box({QUILLON_SHOW_MESSAGE, text, caption},
                     {.environment = {{"DISPLAY", display}}, .currentDirectory = {}});
    EXPECT_EQ(box.wait(), 0);
    EXPECT_EQ(box.standardOutput(), "");
    return box.standardError();
}

TEST(MessageBox, GoesToTheHandlerThatReplacesIt) {
    Heard heard;
    platform::replaceMessageBox(hear, &heard);
    platform::showMessage("Default bank error: file not found", "Preset loader");
    platform::replaceMessageBox(nullptr, nullptr);
    EXPECT_EQ(heard.times, 1);
    EXPECT_EQ(heard.text, "Default bank error: file not found");
    EXPECT_EQ(heard.caption, "Preset loader");
}

TEST(MessageBox, IsPlainAndNobodysUnlessItIsSaid) {
    Heard heard;
    platform::replaceMessageBox(hear, &heard);
    platform::showMessage("text", "caption");
    EXPECT_EQ(heard.look, platform::MessageLook());
    EXPECT_EQ(heard.look.icon, platform::MessageIcon::none);
    EXPECT_EQ(heard.look.owner, nullptr);
    const platform::MessageLook fault{.icon = platform::MessageIcon::error, .owner = &heard};
    platform::showMessage("text", "caption", fault);
    EXPECT_EQ(heard.look, fault);
    platform::replaceMessageBox(nullptr, nullptr);
}

TEST(MessageBox, ComesBackWhenTheHandlerIsTakenAway) {
    ASSERT_EQ(unsetenv("DISPLAY"), 0);
    Heard heard;
    platform::replaceMessageBox(hear, &heard);
    platform::replaceMessageBox(nullptr, nullptr);
    testing::internal::CaptureStderr();
    platform::showMessage("text", "caption");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "caption: text\n");
    EXPECT_EQ(heard.times, 0);
}

TEST(MessageBox, IsALineOnStandardErrorWithoutADisplay) {
    EXPECT_EQ(printedWithDisplay("", "Default bank error: file not found", "Preset loader"),
              "Preset loader: Default bank error: file not found\n");
}

TEST(MessageBox, IsALineOnStandardErrorIfTheDisplayCannotBeOpened) {
    EXPECT_EQ(printedWithDisplay(":nowhere", "text", "caption"), "caption: text\n");
    EXPECT_EQ(printedWithDisplay("unix:/no/such/socket", "text", "caption"), "caption: text\n");
}

TEST(MessageBox, PrintsItsTextsAsTheyAre) {
    EXPECT_EQ(printedWithDisplay("", "100 %s\nof \xE9 it", "%d"), "%d: 100 %s\nof \xE9 it\n");
}

} // namespace
