// The window for CLAP hosts in a host of the tests' own: its calls in the right order and in wrong ones, the
// hand, the skins, and what stays loaded.
#include "clap_module.h"

#include "desk/private_folder.h"
#include "parameters/parameter_table.h"
#include "support/plain_window.h"
#include "support/program_bank.h"
#include "support/wine.h"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>
#include <windows.h>

#include <gtest/gtest.h>

namespace {

using namespace clap_test;
using namespace parameters;
using test::childrenOf;
using test::PlainWindow;
namespace files = std::filesystem;

constexpr Host::Size kSkinSize = {320, 240}, kNoticeSize = {560, 150};
constexpr char kSettingsKey[] = "Software\\Quillon Software\\Quillon Multitap Delay";

const bool isDrawingLeftOut = test::leaveDrawingOutUnderWine();

/// A copy of the module with a bank and the skins of the tests, an instance of it, and a host's window.
class ClapWindow : public testing::Test {
  protected:
    ClapWindow() {
        RegDeleteTreeA(HKEY_CURRENT_USER, kSettingsKey);
        files::create_directory("module");
        files::copy_file(kModule, path());
        for (const auto& skin : files::directory_iterator(QUILLON_WINDOW_SKINS)) {
            files::create_directory("module" / skin.path().filename());
            for (const auto& file : files::directory_iterator(skin))
                files::copy_file(file, "module" / skin.path().filename() / file.path().filename());
        }
        const auto bank = conversation::chunkBank(conversation::defaultPrograms());
        std::ofstream(beside("default.fxb"), std::ios::binary)
            .write(reinterpret_cast<const char*>(bank.data()), static_cast<std::streamsize>(bank.size()));
        module.emplace(path());
        makeInstance();
    }
    ~ClapWindow() override {
        instance.reset();
        RegDeleteTreeA(HKEY_CURRENT_USER, kSettingsKey);
    }

    std::string beside(const std::string& name) const { return folder.path() + "\\module\\" + name; }
    std::string path() const { return beside("QuillonMultitapDelay.clap"); }
    void makeInstance() { instance = std::make_unique<Instance>(module->entry(), host); }

    const clap_plugin_gui_t& window() const { return instance->window(); }
    const clap_plugin_t* plugin() const { return instance->plugin(); }
    bool create() { return window().create(plugin(), CLAP_WINDOW_API_WIN32, false); }
    bool setParent() { return setParent(container.handle()); }
    bool setParent(HWND parent) {
        clap_window_t hosts = {};
        hosts.api = CLAP_WINDOW_API_WIN32;
        hosts.win32 = parent;
        return window().set_parent(plugin(), &hosts);
    }
    bool show() { return window().show(plugin()); }
    bool hide() { return window().hide(plugin()); }
    void destroy() { window().destroy(plugin()); }
    Host::Size size() const {
        Host::Size size = {};
        return window().get_size(plugin(), &size.width, &size.height) ? size : Host::Size{0, 0};
    }
    void open() {
        ASSERT_TRUE(create());
        ASSERT_TRUE(setParent());
        ASSERT_TRUE(show());
    }
    HWND own() const {
        const auto children = childrenOf(container.handle());
        return children.empty() ? nullptr : children.front();
    }

    void serve() {
        if (instance->plugin())
            instance->serveTimers();
        test::serveMessages();
    }
    bool serveUntil(const std::function<bool()>& condition) {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!condition()) {
            if (std::chrono::steady_clock::now() > limit)
                return false;
            serve();
            MsgWaitForMultipleObjectsEx(0, nullptr, 5, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
        }
        return true;
    }
    void settle() {
        int rounds = 0;
        serveUntil([&] { return ++rounds == 20; });
    }

    void post(UINT message, int x, int y, WPARAM held) {
        PostMessageW(own(), message, held, MAKELPARAM(x, y));
    }
    /// Of the knob "Feedback", upward, without letting go.
    void postDrag() {
        post(WM_LBUTTONDOWN, 30, 30, MK_LBUTTON);
        for (int y = 29; y > 4; --y)
            post(WM_MOUSEMOVE, 30, y, MK_LBUTTON);
    }
    ToldEvents fetch() {
        ToldEvents told;
        Events none;
        instance->flush(none, &told);
        return told;
    }

    desk::PrivateFolder folder;
    PlainWindow container{40, 30, 400, 300};
    Host host;
    std::optional<Module> module;
    std::unique_ptr<Instance> instance;
};

/// begin, value and end, all of "Feedback".
void expectGesture(const ToldEvents& told) {
    ASSERT_GE(told.order.size(), 3u);
    EXPECT_EQ(told.order.front(), (ToldEvents::Told{CLAP_EVENT_PARAM_GESTURE_BEGIN, kFeedback}));
    EXPECT_EQ(told.order.back(), (ToldEvents::Told{CLAP_EVENT_PARAM_GESTURE_END, kFeedback}));
    EXPECT_EQ(told.values.size(), told.order.size() - 2);
}

TEST_F(ClapWindow, LiesInTheHostsWindowFromSetParentOnUntilItsEnd) {
    EXPECT_TRUE(window().is_api_supported(plugin(), CLAP_WINDOW_API_WIN32, false));
    EXPECT_FALSE(window().is_api_supported(plugin(), CLAP_WINDOW_API_X11, false));
    EXPECT_STREQ(instance->windowApi(), CLAP_WINDOW_API_WIN32);
    ASSERT_TRUE(create());
    EXPECT_EQ(size(), kSkinSize);
    EXPECT_FALSE(own());
    ASSERT_TRUE(setParent());
    ASSERT_TRUE(own());
    ASSERT_TRUE(show());
    RECT place = {};
    GetWindowRect(own(), &place);
    EXPECT_EQ((Host::Size{static_cast<std::uint32_t>(place.right - place.left),
                          static_cast<std::uint32_t>(place.bottom - place.top)}),
              kSkinSize);
    settle();
    destroy();
    EXPECT_TRUE(serveUntil([this] { return !own(); }));
    EXPECT_TRUE(host.timers.empty());
    EXPECT_TRUE(host.lines.empty());
}

TEST_F(ClapWindow, IsHiddenAndShown) {
    open();
    const HWND shown = own();
    EXPECT_TRUE(IsWindowVisible(shown));
    EXPECT_TRUE(hide());
    EXPECT_FALSE(IsWindowVisible(shown));
    settle();
    EXPECT_TRUE(show());
    EXPECT_TRUE(IsWindowVisible(shown));
}

TEST_F(ClapWindow, AnswersNoToCallsInAWrongOrder) {
    EXPECT_FALSE(setParent());
    EXPECT_FALSE(show());
    EXPECT_FALSE(hide());
    destroy();
    ASSERT_TRUE(create());
    EXPECT_FALSE(create()) << "twice";
    EXPECT_FALSE(show()) << "without a parent";
    settle();
    EXPECT_TRUE(host.lines.empty());
    PlainWindow gone(0, 0, 10, 10);
    const HWND none = gone.handle();
    gone.destroy();
    EXPECT_FALSE(setParent(none));
    EXPECT_EQ(host.lines,
              std::vector<std::string>{"2 Window: cannot be opened in the parent that the host offers"});
    EXPECT_TRUE(setParent());
    destroy();
    destroy();
    EXPECT_TRUE(host.timers.empty());
}

TEST_F(ClapWindow, TellsADragAsAGesture) {
    open();
    instance->set(kFeedback, 0.25);
    postDrag();
    post(WM_LBUTTONUP, 30, 5, 0);
    ASSERT_TRUE(serveUntil([this] { return instance->value(kFeedback) > 0.25 && host.flushRequests > 2; }));
    settle();
    const ToldEvents told = fetch();
    expectGesture(told);
    EXPECT_EQ(told.values.back().value, instance->value(kFeedback));
    EXPECT_GT(told.values.back().value, 0.25);
    EXPECT_LT(told.values.back().value, 0.75) << "it did not start from the host's value";
}

TEST_F(ClapWindow, OpensTwentyTimes) {
    for (int opening = 0; opening < 20; ++opening) {
        open();
        settle();
        destroy();
        ASSERT_TRUE(serveUntil([this] { return !own(); }));
        ASSERT_TRUE(host.timers.empty());
    }
}

TEST_F(ClapWindow, MayLoseItsPlaceBeforeItsEnd) {
    open();
    container.destroy();
    instance->set(kFeedback, 0.2);
    settle();
    EXPECT_FALSE(hide());
    destroy();
    PlainWindow other(40, 30, 400, 300);
    ASSERT_TRUE(create());
    EXPECT_TRUE(setParent(other.handle()));
    settle();
    other.destroy();
    instance->end();
    EXPECT_TRUE(host.timers.empty());
}

TEST_F(ClapWindow, MayBeEndedInTheMiddleOfADrag) {
    open();
    host.whenFlushIsAsked = [this] {
        host.whenFlushIsAsked = nullptr;
        destroy();
    };
    postDrag();
    EXPECT_TRUE(serveUntil([this] { return !own(); }));
    expectGesture(fetch());
    instance->plugin()->on_main_thread(instance->plugin());
    EXPECT_TRUE(host.timers.empty());
    open();
    settle();
}

TEST_F(ClapWindow, MayBeEndedWithItsInstanceInTheMiddleOfADrag) {
    open();
    host.whenFlushIsAsked = [this] {
        host.whenFlushIsAsked = nullptr;
        instance->end();
    };
    postDrag();
    EXPECT_TRUE(serveUntil([this] { return !instance->plugin() && !own(); }));
    EXPECT_TRUE(host.timers.empty());
    makeInstance();
    open();
    settle();
}

TEST_F(ClapWindow, SaysInItsPlaceAndInTheLogThatThereIsNoSkin) {
    files::remove(beside("Quillon Skin\\skin.xml"));
    ASSERT_TRUE(create());
    ASSERT_EQ(host.lines.size(), 1u);
    EXPECT_NE(host.lines.front().find("2 Skin Error: "), std::string::npos);
    EXPECT_NE(host.lines.front().find("skin file missing"), std::string::npos);
    EXPECT_EQ(size(), kNoticeSize);
    ASSERT_TRUE(setParent());
    EXPECT_TRUE(show());
    instance->set(kFeedback, 0.2);
    settle();
    EXPECT_EQ(host.lines.size(), 1u);
}

TEST_F(ClapWindow, HasTheSizeOfTheChosenSkinAtTheNextOpening) {
    open();
    RegSetKeyValueA(HKEY_CURRENT_USER, kSettingsKey, "SkinName", REG_SZ, "blue", 5);
    EXPECT_EQ(size(), kSkinSize) << "not before";
    destroy();
    ASSERT_TRUE(create());
    EXPECT_NE(size(), kSkinSize);
    EXPECT_TRUE(setParent());
}

TEST_F(ClapWindow, KeepsItsModuleLoadedOnceItHasBeenMade) {
    instance.reset();
    module.reset();
    EXPECT_FALSE(GetModuleHandleA(path().c_str())) << "nothing has been opened";
    module.emplace(path());
    makeInstance();
    open();
    settle();
    instance.reset();
    module.reset();
    EXPECT_TRUE(GetModuleHandleA(path().c_str()));
}

} // namespace
