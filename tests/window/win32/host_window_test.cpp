// What a host of this house has on Windows: a window to open an editor in, its picture, and links between
// folders.

#include "desk/host_window.h"
#include "desk/links.h"
#include "desk/private_folder.h"
#include "desk/virtual_display.h"
#include "platform/files.h"
#include "support/plain_window.h"

#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>

namespace {

namespace files = std::filesystem;
using desk::HostWindow;

HWND handleOf(const HostWindow& window) {
    return static_cast<HWND>(window.handle());
}

SIZE innerSizeOf(const HostWindow& window) {
    RECT inside = {};
    GetClientRect(handleOf(window), &inside);
    return {inside.right, inside.bottom};
}

/// A red window inside it, drawn.
class RedEditor {
  public:
    explicit RedEditor(const HostWindow& window)
        : editor_(0, 0, window.width(), window.height(), handleOf(window)) {
        const HDC context = GetDC(editor_.handle());
        const HBRUSH red = CreateSolidBrush(RGB(255, 0, 0));
        const RECT all = {0, 0, window.width(), window.height()};
        FillRect(context, &all, red);
        DeleteObject(red);
        ReleaseDC(editor_.handle(), context);
        GdiFlush();
    }

  private:
    test::PlainWindow editor_;
};

TEST(AHostWindow, IsAsLargeInsideAsItWasAskedToBe) {
    HostWindow window("An editor", 300, 120);
    window.show();
    EXPECT_TRUE(IsWindowVisible(handleOf(window)));
    EXPECT_EQ(innerSizeOf(window).cx, 300);
    EXPECT_EQ(innerSizeOf(window).cy, 120);
    window.resize(200, 160);
    EXPECT_EQ(innerSizeOf(window).cx, 200);
    EXPECT_EQ(innerSizeOf(window).cy, 160);
    EXPECT_EQ(window.width(), 200);
    EXPECT_EQ(window.height(), 160);
}

TEST(AHostWindow, TellsThatThePersonWantsItClosedAndStays) {
    HostWindow window("An editor", 300, 120);
    window.show();
    window.serve(0);
    EXPECT_FALSE(window.isClosed());
    PostMessageW(handleOf(window), WM_CLOSE, 0, 0);
    window.serve(1000);
    EXPECT_TRUE(window.isClosed());
    EXPECT_TRUE(IsWindow(handleOf(window)));
}

TEST(AHostWindow, CountsAsClosedWhenItHasBeenDestroyed) {
    HostWindow window("An editor", 300, 120);
    window.show();
    DestroyWindow(handleOf(window));
    EXPECT_TRUE(window.isClosed());
    window.serve(0);
    EXPECT_EQ(window.picture(), std::nullopt);
}

TEST(AHostWindow, BearsItsTitle) {
    const HostWindow window("Quillon \u2013 copper", 300, 120);
    wchar_t title[64] = L"";
    GetWindowTextW(handleOf(window), title, 64);
    EXPECT_EQ(std::wstring(title), L"Quillon \u2013 copper");
}

TEST(AHostWindow, GivesThePictureOfWhatIsInIt) {
    HostWindow window("An editor", 300, 120);
    window.show();
    const RedEditor editor(window);
    desk::Picture red = {300, 120, {}};
    for (int pixel = 0; pixel < 300 * 120; ++pixel)
        red.rgb.insert(red.rgb.end(), {255, 0, 0});
    // What has been drawn comes to the screen a little later.
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (window.picture() != red && std::chrono::steady_clock::now() < limit)
        window.serve(20);
    EXPECT_TRUE(window.picture() == red);
}

TEST(AHostWindow, GivesNoPictureOfWhatIsNotToBeSeen) {
    HostWindow window("An editor", 300, 120);
    EXPECT_EQ(window.picture(), std::nullopt) << "not shown";
    window.show();
    EXPECT_EQ(window.picture(), std::nullopt) << "nothing has been drawn";
    const RedEditor editor(window);
    SetWindowPos(handleOf(window), nullptr, -100, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    EXPECT_EQ(window.picture(), std::nullopt) << "not wholly on the screen";
}

TEST(AVirtualDisplay, IsNotToBeHadOnThisSystem) {
    EXPECT_TRUE(desk::hasDisplay());
    EXPECT_THROW(desk::VirtualDisplay(100, 100), std::runtime_error);
}

class Links : public testing::Test {
  protected:
    Links() {
        files::create_directories("skin/images");
        platform::writeWholeFile("skin/skin.xml", "abc", 3);
        platform::writeWholeFile("skin/images/knob.png", "de", 2);
        target = files::absolute("skin");
        link = files::absolute("link");
    }

    desk::PrivateFolder folder;
    files::path target, link;
};

TEST_F(Links, HoldWhatIsInTheFolder) {
    desk::makeLink(target, link);
    EXPECT_EQ(platform::readWholeFile("link\\skin.xml")->size(), 3u);
    EXPECT_EQ(platform::readWholeFile("link\\images\\knob.png")->size(), 2u);
}

TEST_F(Links, FollowChangesUnlessTheySayThatTheyAreCopies) {
    const bool isLink = desk::makeLink(target, link);
    platform::writeWholeFile("skin/skin.xml", "abcdef", 6);
    EXPECT_EQ(platform::readWholeFile("link\\skin.xml")->size(), isLink ? 6u : 3u);
}

TEST_F(Links, LeaveTheirTargetWhenTheyGo) {
    desk::makeLink(target, link);
    desk::removeLink(link);
    EXPECT_FALSE(files::exists(link));
    EXPECT_TRUE(platform::fileExists("skin\\images\\knob.png"));
    desk::makeLink(target / "skin.xml", link);
    EXPECT_EQ(platform::readWholeFile("link")->size(), 3u);
    desk::removeLink(link);
    EXPECT_FALSE(files::exists(link));
    EXPECT_TRUE(platform::fileExists("skin\\skin.xml"));
}

} // namespace
