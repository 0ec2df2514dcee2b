// The window as a host and a hand meet it: made, put into a window of the host's, shown, hidden and ended in
// the right order and in wrong ones; what a hand does on it, and what it shows of the host's changes. With a
// skin of the tests' own.
#include "window_host.h"

#include "parameters/parameter_table.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace clap_test;
using namespace parameters;
using test::kBlue;
using test::kGrey;
using test::kSkinHeight;
using test::kSkinWidth;
using test::Pixel;

constexpr char kFile[] = "QuillonMultitapDelay.clap";
constexpr char kSettings[] = "Quillon Software/Quillon Multitap Delay.conf";
constexpr Host::Size kSkinSize = {kSkinWidth, kSkinHeight}, kNoticeSize = {560, 150};
constexpr Pixel kPage = 0xF4F2EC;
constexpr std::uint16_t kBegin = CLAP_EVENT_PARAM_GESTURE_BEGIN, kValue = CLAP_EVENT_PARAM_VALUE,
                        kEnd = CLAP_EVENT_PARAM_GESTURE_END;

/// Where things lie in the skin.
struct Area {
    int x, y, width, height;
};
constexpr Area kKnob = {10, 10, 40, 40}, kEchoes = {10, 110, 200, 60};

/// A private copy of the module with the skins of the tests, and a screen.
class ClapWindow : public test::EditorOnScreen {
  protected:
    ClapWindow() {
        std::filesystem::copy_file(kModule, module.beside(kFile));
        clap.emplace(module.beside(kFile));
        host = make();
    }
    ~ClapWindow() override {
        host.reset();
        clap.reset();
    }

    std::unique_ptr<WindowHost> make(unsigned offers = Host::kEverything, int x = 40) {
        return std::make_unique<WindowHost>(screen(), *clap, offers, x);
    }
    void open() {
        ASSERT_TRUE(host->open());
        ASSERT_TRUE(host->showsPixel(kSkinWidth - 2, 2, kGrey));
    }
    std::vector<Pixel> part(const Area& area) { return host->part(area.x, area.y, area.width, area.height); }
    bool changes(const std::vector<Pixel>& before, const Area& area) {
        return host->changes(before, area.x, area.y, area.width, area.height);
    }
    double feedback() const { return host->instance.value(kFeedback); }
    void grabKnob(const std::function<bool()>& isHeld) {
        host->point(30, 30);
        host->press();
        ASSERT_TRUE(host->serveUntil(isHeld));
    }
    void grabKnob() {
        grabKnob([this, before = host->host.flushRequests] { return host->host.flushRequests > before; });
    }
    /// Up or, where it stands high, down.
    void dragKnob(int toY = 10) {
        grabKnob();
        ASSERT_TRUE(host->moveUntil(30, toY, [this, before = feedback()] { return feedback() != before; }));
    }
    void letGo() {
        const int before = host->host.flushRequests;
        host->release();
        ASSERT_TRUE(host->serveUntil([&] { return host->host.flushRequests > before; }));
    }
    void chooseSkin(const std::string& name) {
        const auto file = std::filesystem::path(std::getenv("XDG_CONFIG_HOME")) / kSettings;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file) << "SkinName=" << name << "\n";
    }
    void writeSkin(const std::string& content) {
        std::ofstream(module.beside("Quillon Skin/skin.xml")) << content;
    }

    std::optional<Module> clap;
    std::unique_ptr<WindowHost> host;
};

/// begin, value, and so on up to end, all of one parameter.
void expectGesture(const ToldEvents& told, clap_id id, std::size_t fewestValues = 1) {
    ASSERT_GE(told.order.size(), 2 + fewestValues);
    EXPECT_EQ(told.order.front(), (ToldEvents::Told{kBegin, id}));
    EXPECT_EQ(told.order.back(), (ToldEvents::Told{kEnd, id}));
    for (std::size_t i = 1; i + 1 < told.order.size(); ++i)
        EXPECT_EQ(told.order[i], (ToldEvents::Told{kValue, id}));
    for (const clap_event_param_value_t& value : told.values)
        EXPECT_EQ(value.header.flags, 0u) << "not to be recorded";
}

// What it says of itself

TEST_F(ClapWindow, LiesInTheHostsWindowsAlone) {
    const clap_plugin_gui_t& window = host->window();
    EXPECT_TRUE(window.is_api_supported(host->plugin(), CLAP_WINDOW_API_X11, false));
    EXPECT_FALSE(window.is_api_supported(host->plugin(), CLAP_WINDOW_API_X11, true));
    EXPECT_FALSE(window.is_api_supported(host->plugin(), CLAP_WINDOW_API_WIN32, false));
    EXPECT_FALSE(window.is_api_supported(host->plugin(), nullptr, false));
    const char* api = nullptr;
    bool isFloating = true;
    ASSERT_TRUE(window.get_preferred_api(host->plugin(), &api, &isFloating));
    EXPECT_STREQ(api, CLAP_WINDOW_API_X11);
    EXPECT_FALSE(isFloating);
    EXPECT_FALSE(window.create(host->plugin(), CLAP_WINDOW_API_X11, true));
    EXPECT_FALSE(window.create(host->plugin(), CLAP_WINDOW_API_WAYLAND, false));
    EXPECT_FALSE(window.create(host->plugin(), nullptr, false));
    EXPECT_TRUE(host->host.periods.empty()) << "a timer for nothing";
}

TEST_F(ClapWindow, HasTheSizeOfItsSkinAndNoOther) {
    const clap_plugin_gui_t& window = host->window();
    std::uint32_t width = 1000, height = 10;
    EXPECT_FALSE(window.get_size(host->plugin(), &width, &height)) << "before it is made";
    EXPECT_FALSE(window.adjust_size(host->plugin(), &width, &height));
    EXPECT_FALSE(window.set_size(host->plugin(), kSkinWidth, kSkinHeight));
    ASSERT_TRUE(host->create());
    EXPECT_EQ(host->size(), kSkinSize);
    EXPECT_FALSE(window.can_resize(host->plugin()));
    clap_gui_resize_hints_t hints = {};
    EXPECT_FALSE(window.get_resize_hints(host->plugin(), &hints));
    EXPECT_TRUE(window.adjust_size(host->plugin(), &width, &height));
    EXPECT_EQ((Host::Size{width, height}), kSkinSize);
    EXPECT_TRUE(window.set_size(host->plugin(), kSkinWidth, kSkinHeight));
    EXPECT_FALSE(window.set_size(host->plugin(), kSkinWidth + 1, kSkinHeight));
    EXPECT_FALSE(window.set_scale(host->plugin(), 2.0));
    EXPECT_FALSE(window.set_transient(host->plugin(), nullptr));
    window.suggest_title(host->plugin(), "anything");
    EXPECT_EQ(host->size(), kSkinSize);
    EXPECT_TRUE(host->host.sizesAsked.empty());
}

// The host's calls

TEST_F(ClapWindow, IsInTheHostsWindowFromSetParentOnUntilItsEnd) {
    ASSERT_TRUE(host->create());
    EXPECT_TRUE(host->children().empty());
    ASSERT_TRUE(host->setParent());
    ASSERT_EQ(host->children().size(), 1u);
    ASSERT_TRUE(host->show());
    ASSERT_TRUE(host->showsPixel(kSkinWidth - 2, 2, kGrey));
    const test::Place place = test::placeOf(screen(), host->children().front());
    EXPECT_EQ(place.width, kSkinWidth);
    EXPECT_EQ(place.height, kSkinHeight);
    EXPECT_EQ(test::placeOf(screen(), host->container()).width, 400) << "the host's own is left alone";
    host->destroy();
    EXPECT_TRUE(host->children().empty());
}

TEST_F(ClapWindow, IsHiddenAndShown) {
    open();
    const Window own = host->children().front();
    EXPECT_TRUE(screen().isShown(own));
    EXPECT_TRUE(host->hide());
    EXPECT_FALSE(screen().isShown(own));
    host->instance.set(kFeedback, 0.9);
    host->settle();
    EXPECT_TRUE(host->show());
    EXPECT_TRUE(screen().isShown(own));
    EXPECT_TRUE(host->showsPixel(kSkinWidth - 2, 2, kGrey));
    EXPECT_EQ(host->children(), std::vector<Window>{own});
}

TEST_F(ClapWindow, AnswersNoToCallsInAWrongOrder) {
    EXPECT_FALSE(host->setParent());
    EXPECT_FALSE(host->show());
    EXPECT_FALSE(host->hide());
    host->destroy();
    ASSERT_TRUE(host->create());
    EXPECT_FALSE(host->create()) << "twice";
    EXPECT_FALSE(host->show()) << "without a parent";
    EXPECT_FALSE(host->window().set_parent(host->plugin(), nullptr));
    clap_window_t other = {};
    other.api = CLAP_WINDOW_API_WIN32;
    other.x11 = host->container();
    EXPECT_FALSE(host->window().set_parent(host->plugin(), &other));
    other.api = nullptr;
    EXPECT_FALSE(host->window().set_parent(host->plugin(), &other));
    host->settle();
    host->destroy();
    host->destroy();
    EXPECT_TRUE(host->host.timers.empty());
    EXPECT_TRUE(host->host.lines.empty());
    open();
    host->destroy();
    EXPECT_FALSE(host->show());
    EXPECT_FALSE(host->setParent());
}

TEST_F(ClapWindow, RefusesAParentThatIsNone) {
    ASSERT_TRUE(host->create());
    EXPECT_FALSE(host->setParent(0x7FFFFFF));
    EXPECT_EQ(host->host.lines,
              std::vector<std::string>{"2 Window: cannot be opened in the parent that the host offers"});
    EXPECT_TRUE(host->setParent());
    EXPECT_TRUE(host->showsPixel(kSkinWidth - 2, 2, kGrey));
}

TEST_F(ClapWindow, MovesToAnotherParent) {
    open();
    test::VirtualScreen& theScreen = screen();
    const Window second =
        XCreateSimpleWindow(theScreen.display(), theScreen.root(), 500, 30, 400, 300, 0, 0, 0);
    XMapWindow(theScreen.display(), second);
    XSync(theScreen.display(), False);
    EXPECT_TRUE(host->setParent(second));
    EXPECT_TRUE(host->children().empty());
    EXPECT_EQ(host->childrenOf(second).size(), 1u);
    host->settle();
    host->destroy();
    XDestroyWindow(theScreen.display(), second);
    XSync(theScreen.display(), False);
}

TEST_F(ClapWindow, OpensTwentyTimes) {
    for (int opening = 0; opening < 20; ++opening) {
        open();
        if (opening % 5 == 0) {
            dragKnob(opening % 2 == 0 ? 10 : 50);
            letGo();
            expectGesture(host->fetch(), kFeedback);
        }
        host->destroy();
        EXPECT_TRUE(host->host.timers.empty());
    }
}

TEST_F(ClapWindow, MayLoseItsPlaceBeforeItsEnd) {
    open();
    host->destroyContainer();
    host->instance.set(kFeedback, 0.2);
    host->instance.set(kTaps, 0.2);
    host->settle();
    EXPECT_FALSE(host->hide());
    host->destroy();
    host = make();
    open();
    host->destroyContainer();
    host.reset();
    host = make();
    open();
}

TEST_F(ClapWindow, GoesWithAnInstanceThatIsEndedFirst) {
    open();
    host->instance.end();
    EXPECT_TRUE(host->children().empty());
    EXPECT_TRUE(host->host.timers.empty());
    // What is left of it is nobody's.
    host = make();
    open();
}

// Its timer

TEST_F(ClapWindow, HasATimerFromCreationToItsEnd) {
    ASSERT_TRUE(host->create());
    EXPECT_EQ(host->host.periods, std::vector<std::uint32_t>{30});
    EXPECT_EQ(host->host.timers, std::vector<clap_id>{0});
    const auto& timers = host->instance.extension<clap_plugin_timer_support_t>(CLAP_EXT_TIMER_SUPPORT);
    timers.on_timer(host->plugin(), 7);
    timers.on_timer(host->plugin(), 0);
    host->destroy();
    EXPECT_TRUE(host->host.timers.empty());
    timers.on_timer(host->plugin(), 0);
}

TEST_F(ClapWindow, IsNotMadeInAHostWithoutTimers) {
    host = make(Host::kEverything & ~Host::kTimers);
    EXPECT_FALSE(host->create());
    const std::vector<std::string> expected = {
        "2 Window: the host has no timers, without which it would stand still"};
    EXPECT_EQ(host->host.lines, expected);
    host = make();
    host->host.startsTimers = false;
    EXPECT_FALSE(host->create());
    EXPECT_EQ(host->host.lines, expected);
    host->host.startsTimers = true;
    open();
}

TEST_F(ClapWindow, KeepsItsTimerWhileItIsEndedInACallOfThat) {
    open();
    grabKnob();
    host->host.whenFlushIsAsked = [this] {
        host->host.whenFlushIsAsked = nullptr;
        host->destroy();
    };
    EXPECT_TRUE(host->moveUntil(30, 10, [this] { return host->children().empty(); }));
    host->release();
    EXPECT_EQ(host->host.timers.size(), 1u) << "hosts go through their list of timers";
    EXPECT_EQ(host->host.callbackRequests, 1);
    expectGesture(host->fetch(), kFeedback);
    host->settle();
    host->plugin()->on_main_thread(host->plugin());
    EXPECT_TRUE(host->host.timers.empty());
    open();
    EXPECT_EQ(host->host.timers.size(), 1u);
}

TEST_F(ClapWindow, KeepsItsTimerWhileItIsEndedInACallOfAnothersTimer) {
    open();
    const auto other = make(Host::kEverything, 500);
    ASSERT_TRUE(other->open());
    grabKnob();
    host->host.whenFlushIsAsked = [this] {
        host->host.whenFlushIsAsked = nullptr;
        host->destroy();
    };
    int step = 0;
    // The windows of a process are served together.
    EXPECT_TRUE(other->serveUntil([&] {
        host->point(30 + step++ % 2, 8);
        return host->children().empty();
    }));
    host->release();
    EXPECT_EQ(host->host.timers.size(), 1u);
    host->plugin()->on_main_thread(host->plugin());
    EXPECT_TRUE(host->host.timers.empty());
    EXPECT_EQ(other->host.timers.size(), 1u);
}

TEST_F(ClapWindow, AsksAHostThatCallsBackAtOnceNoMoreThanOnce) {
    open();
    grabKnob();
    host->host.whenFlushIsAsked = [this] {
        host->host.whenFlushIsAsked = nullptr;
        host->destroy();
    };
    host->host.whenCallbackIsAsked = [this] {
        if (host->host.callbackRequests < 100)
            host->plugin()->on_main_thread(host->plugin());
    };
    EXPECT_TRUE(host->moveUntil(30, 10, [this] { return host->children().empty(); }));
    host->release();
    EXPECT_EQ(host->host.callbackRequests, 1);
    EXPECT_EQ(host->host.timers.size(), 1u) << "hosts go through their list of timers";
    host->instance.end();
    EXPECT_TRUE(host->host.timers.empty());
}

TEST_F(ClapWindow, TakesItsTimerUpAgainInAHostThatNeverCallsBack) {
    open();
    grabKnob();
    host->host.whenFlushIsAsked = [this] {
        host->host.whenFlushIsAsked = nullptr;
        host->destroy();
    };
    EXPECT_TRUE(host->moveUntil(30, 10, [this] { return host->children().empty(); }));
    host->release();
    open();
    EXPECT_EQ(host->host.timers.size(), 1u);
    EXPECT_EQ(host->host.periods.size(), 1u);
    host->plugin()->on_main_thread(host->plugin());
    EXPECT_EQ(host->host.timers.size(), 1u) << "in use";
    host->destroy();
    EXPECT_TRUE(host->host.timers.empty());
}

TEST_F(ClapWindow, MayBeEndedWithItsInstanceInACallOfItsTimer) {
    open();
    grabKnob();
    host->host.whenFlushIsAsked = [this] {
        host->host.whenFlushIsAsked = nullptr;
        host->instance.end();
    };
    EXPECT_TRUE(host->moveUntil(30, 10, [this] { return !host->plugin(); }));
    host->release();
    EXPECT_TRUE(host->host.timers.empty());
    EXPECT_TRUE(host->children().empty());
    host = make();
    open();
}

// The hand

TEST_F(ClapWindow, TellsADragInTheNextBlock) {
    host->instance.activate();
    open();
    const double before = feedback();
    dragKnob();
    letGo();
    ToldEvents told = host->fetch(true);
    expectGesture(told, kFeedback);
    EXPECT_GT(told.values.back().value, before);
    EXPECT_EQ(told.values.back().value, feedback());
    EXPECT_TRUE(host->fetch(true).order.empty()) << "once";
}

TEST_F(ClapWindow, TellsADragInTheNextFlush) {
    open();
    dragKnob();
    letGo();
    expectGesture(host->fetch(), kFeedback);
    EXPECT_TRUE(host->fetch().order.empty()) << "once";
}

TEST_F(ClapWindow, TellsADragBitByBitInTheOrderOfWhatHappens) {
    host->instance.activate();
    open();
    ToldEvents told;
    const auto fetch = [&] {
        const ToldEvents news = host->fetch(true);
        told.order.insert(told.order.end(), news.order.begin(), news.order.end());
        told.values.insert(told.values.end(), news.values.begin(), news.values.end());
        return told.order.size();
    };
    grabKnob([&] { return fetch() > 0; });
    EXPECT_EQ(told.order.front(), (ToldEvents::Told{kBegin, kFeedback}));
    for (const int y : {10, 0, -10})
        ASSERT_TRUE(host->moveUntil(30, y, [&, before = told.values.size()] {
            fetch();
            return told.values.size() > before;
        }));
    host->release();
    ASSERT_TRUE(host->serveUntil([&] { return fetch() && told.order.back().type == kEnd; }));
    expectGesture(told, kFeedback, 4);
    EXPECT_EQ(told.values.back().value, feedback());
}

TEST_F(ClapWindow, TellsAGestureInWhichNothingMovesWithAValue) {
    open();
    const double before = feedback();
    grabKnob();
    letGo();
    const ToldEvents told = host->fetch();
    expectGesture(told, kFeedback);
    EXPECT_EQ(told.values.front().value, before) << "hosts take none for 0";
}

TEST_F(ClapWindow, TellsWhatDidNotFitLaterAndInOrder) {
    open();
    dragKnob();
    letGo();
    ToldEvents told;
    Events none;
    while (told.room = told.order.size() + 1, host->instance.flush(none, &told),
           told.order.back().type != kEnd)
        ASSERT_LT(told.order.size(), 10u);
    expectGesture(told, kFeedback);
}

TEST_F(ClapWindow, AsksForAFlushAfterEachDoingOfTheHand) {
    open();
    EXPECT_EQ(host->host.flushRequests, 0);
    dragKnob();
    EXPECT_GE(host->host.flushRequests, 2);
    letGo();
}

TEST_F(ClapWindow, EndsTheGestureOfAControlThatGoesInTheHand) {
    open();
    dragKnob();
    host->destroy();
    host->release();
    expectGesture(host->fetch(), kFeedback);
    open();
    dragKnob(50);
    letGo();
    expectGesture(host->fetch(), kFeedback);
}

TEST_F(ClapWindow, AsksNothingOfAHostThatEndsTheInstance) {
    open();
    dragKnob();
    const int flushRequests = host->host.flushRequests;
    host->instance.end();
    host->release();
    EXPECT_EQ(host->host.flushRequests, flushRequests);
    EXPECT_EQ(host->host.callbackRequests, 0);
}

TEST_F(ClapWindow, NeedsNeitherLogNorParametersNorWindowsOfTheHost) {
    host = make(Host::kTimers);
    open();
    host->point(30, 30);
    host->press();
    EXPECT_TRUE(host->moveUntil(30, 10, [this, before = feedback()] { return feedback() != before; }));
    host->release();
    host->settle();
    expectGesture(host->fetch(), kFeedback);
}

TEST_F(ClapWindow, OpensTheMenuOfControllersAtARightClick) {
    open();
    host->settle();
    const auto before = host->part(0, 0, kSkinWidth, kSkinHeight);
    host->point(30, 30);
    host->press(Button3);
    EXPECT_TRUE(host->changes(before, 0, 0, kSkinWidth, kSkinHeight));
    host->release(Button3);
}

// The host's changes

TEST_F(ClapWindow, ShowsAValueOfTheHost) {
    host->instance.activate();
    open();
    const auto knob = part(kKnob);
    host->instance.set(kFeedback, 0.9);
    EXPECT_TRUE(changes(knob, kKnob));
    EXPECT_TRUE(host->fetch().order.empty()) << "an answer";
    const auto echoes = part(kEchoes);
    host->instance.set(kTaps, 0.9);
    EXPECT_TRUE(changes(echoes, kEchoes));
}

TEST_F(ClapWindow, ShowsWhatAnotherThreadHasSet) {
    host = make(Host::kEverything & ~Host::kThreadCheck);
    open();
    host->settle();
    const auto knob = part(kKnob), echoes = part(kEchoes);
    std::thread([this] {
        host->instance.set(kFeedback, 0.9);
        host->instance.set(kTaps, 0.9);
    }).join();
    EXPECT_EQ(part(kKnob), knob) << "drawn by the other thread";
    EXPECT_TRUE(changes(knob, kKnob));
    EXPECT_TRUE(changes(echoes, kEchoes));
}

TEST_F(ClapWindow, ShowsAStateAndAProgram) {
    const Bytes first = host->instance.save().value();
    open();
    host->settle();
    const auto knob = part(kKnob);
    host->instance.set(kFeedback, 0.9);
    ASSERT_TRUE(changes(knob, kKnob));
    ASSERT_TRUE(host->instance.load(first));
    EXPECT_TRUE(host->serveUntil([&] { return part(kKnob) == knob; }));
    host->instance.set(kFeedback, 0.9);
    ASSERT_TRUE(changes(knob, kKnob));
    host->instance.set(1000, 1.0);
    EXPECT_TRUE(host->serveUntil([&] { return part(kKnob) == knob; })) << "all programs are alike here";
}

TEST_F(ClapWindow, ShowsWhatWasSetBeforeItAndWhileItWasClosed) {
    open();
    host->settle();
    const auto knob = part(kKnob);
    host->destroy();
    host->instance.set(kFeedback, 0.9);
    open();
    EXPECT_TRUE(changes(knob, kKnob));
}

// Skins

TEST_F(ClapWindow, HasTheSizeOfTheChosenSkinAtTheNextOpening) {
    open();
    chooseSkin("blue");
    EXPECT_EQ(host->size(), kSkinSize) << "not before";
    host->destroy();
    ASSERT_TRUE(host->create());
    const Host::Size size = host->size();
    EXPECT_NE(size, kSkinSize);
    ASSERT_TRUE(host->setParent());
    EXPECT_TRUE(host->showsPixel(5, 5, kBlue));
    const test::Place place = test::placeOf(screen(), host->children().front());
    EXPECT_EQ((Host::Size{static_cast<std::uint32_t>(place.width), static_cast<std::uint32_t>(place.height)}),
              size);
    EXPECT_TRUE(host->host.sizesAsked.empty());
}

TEST_F(ClapWindow, AsksForRoomForASkinThatIsChosenBetweenCreationAndParent) {
    ASSERT_TRUE(host->create());
    chooseSkin("blue");
    Host::Size found = {};
    host->host.whenSizeIsAsked = [&] { found = host->size(); };
    ASSERT_TRUE(host->setParent());
    const Host::Size size = host->size();
    EXPECT_NE(size, kSkinSize);
    EXPECT_EQ(host->host.sizesAsked, std::vector<Host::Size>{size});
    EXPECT_EQ(found, size) << "hosts ask at once and go by that";
}

TEST_F(ClapWindow, TellsItsSizeAlsoToAHostThatDoesNotMakeRoom) {
    ASSERT_TRUE(host->create());
    chooseSkin("blue");
    host->host.resizes = false;
    ASSERT_TRUE(host->setParent());
    EXPECT_NE(host->size(), kSkinSize);
}

TEST_F(ClapWindow, MayBeEndedWhereItAsksForRoom) {
    ASSERT_TRUE(host->create());
    chooseSkin("blue");
    host->host.whenSizeIsAsked = [this] { host->destroy(); };
    EXPECT_FALSE(host->setParent());
    EXPECT_TRUE(host->children().empty());
    EXPECT_TRUE(host->host.timers.empty());
    EXPECT_TRUE(host->host.lines.empty());
    host->host.whenSizeIsAsked = nullptr;
    ASSERT_TRUE(host->open());
    EXPECT_TRUE(host->showsPixel(5, 5, kBlue));
}

TEST_F(ClapWindow, SaysInItsPlaceAndInTheLogThatThereIsNoSkin) {
    std::filesystem::remove(module.beside("Quillon Skin/skin.xml"));
    const std::vector<Window> shown = host->childrenOf(screen().root());
    testing::internal::CaptureStdout();
    ASSERT_TRUE(host->create());
    EXPECT_EQ(host->host.lines,
              std::vector<std::string>{"2 Skin Error: " + module.beside("Quillon Skin/skin.xml") +
                                       " skin file missing"});
    EXPECT_EQ(host->size(), kNoticeSize);
    ASSERT_TRUE(host->setParent());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(host->childrenOf(screen().root()), shown) << "no box";
    EXPECT_TRUE(host->showsPixel(3, 3, kPage));
    EXPECT_TRUE(host->changes(std::vector<Pixel>(390 * 100, kPage), 0, 0, 390, 100)) << "no text";
    host->instance.set(kFeedback, 0.9);
    host->instance.set(kTaps, 0.9);
    host->settle();
    EXPECT_EQ(host->host.lines.size(), 1u);
    EXPECT_TRUE(host->host.sizesAsked.empty());
    host->destroy();
    EXPECT_TRUE(host->children().empty());
}

TEST_F(ClapWindow, ComesBackWithItsSkin) {
    const std::string skin = module.beside("Quillon Skin/skin.xml");
    std::filesystem::rename(skin, skin + ".away");
    ASSERT_TRUE(host->open());
    EXPECT_TRUE(host->showsPixel(3, 3, kPage));
    host->destroy();
    std::filesystem::rename(skin + ".away", skin);
    open();
    EXPECT_EQ(host->size(), kSkinSize);
    dragKnob();
    letGo();
    expectGesture(host->fetch(), kFeedback);
    // And away again while it has been made and lies nowhere yet.
    host->destroy();
    ASSERT_TRUE(host->create());
    std::filesystem::rename(skin, skin + ".away");
    ASSERT_TRUE(host->setParent());
    EXPECT_TRUE(host->showsPixel(3, 3, kPage));
    EXPECT_EQ(host->size(), kNoticeSize);
    EXPECT_EQ(host->host.sizesAsked, std::vector<Host::Size>{kNoticeSize});
}

TEST_F(ClapWindow, SaysThatASkinIsMalformedOrHasNoPicture) {
    const std::pair<const char*, const char*> skins[] = {
        {"<GUI><knob", "skin file missing"},
        {"<WINDOW></WINDOW>", "<GUI> node missing"},
        {"<GUI></GUI>", "no background picture"},
        {"<GUI><background filename=\"none.png\"/></GUI>", "no background picture"}};
    for (const auto& [skin, fault] : skins) {
        writeSkin(skin);
        host->host.lines.clear();
        const std::vector<Window> shown = host->childrenOf(screen().root());
        ASSERT_TRUE(host->open()) << skin;
        std::string log;
        for (const std::string& line : host->host.lines)
            log += line + "\n";
        EXPECT_NE(log.find(fault), std::string::npos) << log;
        EXPECT_TRUE(host->showsPixel(3, 3, kPage)) << skin;
        EXPECT_EQ(host->childrenOf(screen().root()), shown) << "no box";
        host->destroy();
    }
}

TEST_F(ClapWindow, MayBeAskedForItsSizeWhereItTellsOfAFault) {
    writeSkin("<GUI");
    host->host.whenLineIsLogged = [this] {
        if (host->host.lines.size() > 1)
            return; // that it could not be opened
        EXPECT_EQ(host->size().width, 0u);
        EXPECT_FALSE(host->setParent());
    };
    ASSERT_TRUE(host->create());
    EXPECT_EQ(host->host.lines.size(), 2u);
    EXPECT_EQ(host->size(), kNoticeSize);
    EXPECT_TRUE(host->setParent());
}

TEST_F(ClapWindow, LogsTheFaultOfAnObjectAndOpensWithoutIt) {
    writeSkin(R"(<GUI><background filename="background.png"/><knob id="6" x="10" y="10" w="40"/></GUI>)");
    const std::vector<Window> shown = host->childrenOf(screen().root());
    open();
    EXPECT_EQ(host->host.lines, std::vector<std::string>{"2 Skin Error: Missing tag h for object knob"});
    EXPECT_EQ(host->childrenOf(screen().root()), shown) << "no box";
}

TEST_F(ClapWindow, OpensNoBoxWhereTheHostHasNothingAtAll) {
    std::filesystem::remove(module.beside("Quillon Skin/skin.xml"));
    const std::vector<Window> shown = host->childrenOf(screen().root());
    testing::internal::CaptureStderr();
    host = make(Host::kNothing);
    EXPECT_FALSE(host->create());
    host.reset();
    EXPECT_NE(testing::internal::GetCapturedStderr().find("no timers"), std::string::npos);
}

} // namespace
