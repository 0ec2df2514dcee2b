// The window as a host and a hand meet it: in a container of the host's, fed with the values of ports, and
// closed at whatever moment. With a skin of the tests' own: a knob of "Feedback" and one of "Taps #", the
// picture of the echoes, a line of text about the control in use.
#include "window_host.h"

#include "child_process.h"
#include "desk/message_watch.h"

#include <X11/Xutil.h>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>

#include <gtest/gtest.h>

namespace {

using namespace parameters;
using lv2_test::Offers;
using lv2_test::Size;
using lv2_test::Touch;
using lv2_test::WindowHost;
using lv2_test::Write;
using test::kGrey;
using test::kSkinHeight;
using test::kSkinWidth;
using test::Pixel;
using test::waitUntil;

constexpr char kModule[] = "QuillonMultitapDelayWindow.so";
constexpr char kSettings[] = "Quillon Software/Quillon Multitap Delay.conf";

/// Where things lie in the skin.
struct Area {
    int x, y, width, height;
};
constexpr Area kKnob = {10, 10, 40, 40}, kKnobText = {10, 52, 40, 14}, kEchoes = {10, 110, 200, 60},
               kHint = {10, 215, 200, 18}, kWhole = {0, 0, kSkinWidth, kSkinHeight};
/// A point of the lamp of "Out Gain", and its colours.
constexpr int kLampX = 218, kLampY = 18;
constexpr Pixel kLampOn = 0x00FF00, kLampOff = 0x800000;

std::vector<Pixel> part(WindowHost& host, const Area& area) {
    return host.part(area.x, area.y, area.width, area.height);
}

bool changes(WindowHost& host, const std::vector<Pixel>& before, const Area& area) {
    return host.changes(before, area.x, area.y, area.width, area.height);
}

/// A private bundle with the skins of the tests, and a screen.
class LV2Window : public test::EditorOnScreen {
  protected:
    LV2Window() {
        std::filesystem::copy_file(std::string(QUILLON_LV2_BUNDLE "/") + kModule, module.beside(kModule));
        host.emplace(screen(), module.beside(kModule));
    }
    ~LV2Window() override { host.reset(); }

    void open(const Offers& offers = {}) {
        ASSERT_TRUE(host->open(offers));
        ASSERT_TRUE(host->showsPixel(kSkinWidth - 2, 2, kGrey));
    }
    /// Lets echoes settle, and all be drawn that has changed.
    void settle() {
        host->settle();
        if (!hasLamp_)
            return;
        for (const bool isOn : {true, false}) {
            host->sendParameter(kOutGain, isOn ? 1.0f : 0.0f);
            ASSERT_TRUE(host->showsPixel(kLampX, kLampY, isOn ? kLampOn : kLampOff));
        }
    }
    void grabKnob() {
        host->point(30, 30);
        host->press();
        ASSERT_TRUE(host->serveUntil([this] { return !host->touches.empty(); }));
    }
    void dragKnob() {
        grabKnob();
        ASSERT_TRUE(host->moveUntil(30, 10, [this] { return !host->writes.empty(); }));
    }
    void letGo() {
        const std::size_t before = host->touches.size();
        host->release();
        ASSERT_TRUE(host->serveUntil([&] { return host->touches.size() > before; }));
    }
    void chooseSkin(const std::string& name) {
        const auto file = std::filesystem::path(std::getenv("XDG_CONFIG_HOME")) / kSettings;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file) << "SkinName=" << name << "\n";
    }
    void writeSkin(const std::string& objects) {
        std::ofstream(module.beside("Quillon Skin/skin.xml")) << "<GUI>" << objects << "</GUI>";
        hasLamp_ = false;
    }
    std::optional<WindowHost> host;
    bool hasLamp_ = true; ///< the skin
};

TEST_F(LV2Window, IsAChildOfTheHostsWindowOnTheScreen) {
    open();
    EXPECT_EQ(host->children(), std::vector<Window>{host->widget()});
    EXPECT_TRUE(screen().isShown(host->widget()));
    const test::Place place = test::placeOf(screen(), host->widget());
    EXPECT_EQ(place.width, kSkinWidth);
    EXPECT_EQ(place.height, kSkinHeight);
    EXPECT_EQ(test::placeOf(screen(), host->container()).width, 400) << "the host's own is left alone";
}

TEST_F(LV2Window, IsDescribedAsThatOfThePluginAndOfNoOther) {
    open();
    EXPECT_STREQ(host->descriptor().URI, lv2_door::kWindowUri);
    EXPECT_EQ(host->descriptor().extension_data("urn:anything"), nullptr);
    host->close();
    EXPECT_FALSE(host->open({}, "urn:another"));
}

TEST_F(LV2Window, HintsAtItsSizeAndAsksForRoom) {
    open();
    XSizeHints hints = {};
    long given = 0;
    ASSERT_TRUE(XGetWMNormalHints(screen().display(), host->widget(), &hints, &given));
    EXPECT_EQ(hints.flags, PMaxSize | PBaseSize);
    EXPECT_EQ(hints.max_width, kSkinWidth);
    EXPECT_EQ(hints.max_height, kSkinHeight);
    EXPECT_EQ(hints.base_width, kSkinWidth);
    EXPECT_EQ(hints.base_height, kSkinHeight);
    EXPECT_EQ(host->sizes, (std::vector<Size>{{kSkinWidth, kSkinHeight}}));
}

TEST_F(LV2Window, OpensWithTheChosenSkinAndAsksForRoomForThat) {
    open();
    chooseSkin("blue");
    EXPECT_EQ(host->pixel(5, 5), kGrey) << "not before it is opened again";
    host->close();
    ASSERT_TRUE(host->open());
    EXPECT_TRUE(host->showsPixel(5, 5, test::kBlue));
    const test::Place place = test::placeOf(screen(), host->widget());
    ASSERT_EQ(host->sizes.size(), 2u);
    EXPECT_EQ(host->sizes[1], (Size{place.width, place.height}));
    EXPECT_NE(host->sizes[1], host->sizes[0]);
}

TEST_F(LV2Window, NeedsNoFeatureButTheParent) {
    open({.resize = false, .touch = false, .log = false, .sampleRate = std::nullopt});
    host->point(30, 30);
    host->press();
    EXPECT_TRUE(host->moveUntil(30, 10, [this] { return !host->writes.empty(); }));
    host->release();
    settle();
    EXPECT_TRUE(host->sizes.empty());
    EXPECT_TRUE(host->touches.empty());
}

TEST_F(LV2Window, IsNotMadeWithoutAParentOrInOneThatIsNone) {
    EXPECT_FALSE(host->open({.parent = false}));
    host->destroyContainer();
    EXPECT_FALSE(host->open());
    const std::string warning = std::string(LV2_LOG__Warning) + " Window: ";
    EXPECT_EQ(host->log.lines, warning + "the host offers no parent\n" + warning +
                                   "cannot be opened in the parent that the host offers\n");
}

// From the ports to the window

TEST_F(LV2Window, ShowsWhatAPortHolds) {
    open();
    const auto knob = part(*host, kKnob), text = part(*host, kKnobText);
    host->sendParameter(kFeedback, 0.9f);
    EXPECT_TRUE(changes(*host, knob, kKnob));
    EXPECT_TRUE(changes(*host, text, kKnobText));
    EXPECT_TRUE(host->writes.empty()) << "an answer";
}

TEST_F(LV2Window, ShowsWhatPortsHeldBeforeItsFirstIdleRound) {
    open();
    host->sendParameter(kFeedback, 0.9f);
    host->sendParameter(kTaps, 1.0f);
    settle();
    const auto expected = part(*host, kWhole);
    host->close();
    ASSERT_TRUE(host->open());
    host->sendParameter(kTaps, 1.0f);
    host->sendParameter(kFeedback, 0.9f);
    host->sendParameter(kOutGain, 0.0f);
    EXPECT_TRUE(host->serveUntil([&] { return part(*host, kWhole) == expected; }));
}

TEST_F(LV2Window, DrawsTheEchoesOfItsPorts) {
    open();
    // One after the other, each seen to change the picture.
    for (const std::int32_t id : {kTaps, kAmpDecay, kCurve, kStretch, kBaseLength}) {
        const auto before = part(*host, kEchoes);
        host->sendParameter(id, id == kTaps ? 0.6f : 0.75f);
        EXPECT_TRUE(id == kBaseLength || changes(*host, before, kEchoes)) << id;
    }
}

/// Beside a window of the VST 2.4 module, with the same skin.
TEST_F(LV2Window, LooksLikeThatOfAnEffectWithTheSameParameters) {
    test::ShownEditor other(library(), screen(), 500);
    ASSERT_TRUE(other.open());
    open();
    const float patterns[][5] = {
        {0.4f, 0.3f, 0.1f, 0.0f, 0.5f}, {1.0f, 1.0f, 0.5f, 1.0f, 0.2f}, {0.2f, 0.05f, 0.9f, 0.6f, 1.0f}};
    const auto expected = [&] { return other.part(0, 0, kSkinWidth, kSkinHeight); };
    ASSERT_TRUE(other.showsPixel(kSkinWidth - 2, 2, kGrey));
    for (const auto& [length, taps, stretch, ampDecay, curve] : patterns) {
        const std::pair<std::int32_t, float> values[] = {{kBaseLength, length}, {kTaps, taps},
                                                         {kStretch, stretch},   {kAmpDecay, ampDecay},
                                                         {kFeedback, stretch},  {kCurve, curve}};
        settle();
        const auto before = expected();
        for (const auto& [id, value] : values) {
            other.plugin().setParameter(id, value);
            host->sendParameter(id, value);
        }
        // There the last control of the pattern is drawn with the value before.
        other.plugin().setParameter(-1, 0.0f);
        other.plugin().setParameter(kCurve, curve);
        other.plugin().setParameter(kOutGain, 0.0f); // the lamp
        ASSERT_TRUE(other.serveUntil([&] { return expected() != before; }));
        EXPECT_TRUE(host->serveUntil([&] { return part(*host, kWhole) == expected(); })) << length;
    }
}

TEST_F(LV2Window, DrawsTheEchoesForTheRateOfTheHost) {
    open({.sampleRate = 44100.0f});
    const auto ordinary = part(*host, kEchoes);
    host->close();
    open({.sampleRate = 96000.0f});
    EXPECT_TRUE(changes(*host, ordinary, kEchoes));
    host->close();
    open({.sampleRate = std::nullopt});
    EXPECT_TRUE(host->serveUntil([&] { return part(*host, kEchoes) == ordinary; }));
}

TEST_F(LV2Window, PassesOverWhatIsNoValueOfAControl) {
    open();
    settle();
    const auto before = part(*host, kWhole);
    const float high = 0.9f, none = std::numeric_limits<float>::quiet_NaN();
    const std::uint32_t feedback = lv2_door::controlPort(kFeedback);
    for (const std::uint32_t port : {0u, 3u, lv2_door::kNumPorts, 0xFFFFFFFFu})
        host->send(port, high);
    host->sendBytes(feedback, sizeof high, 7, &high);
    host->sendBytes(feedback, 2, 0, &high);
    host->sendBytes(feedback, 8, 0, &high);
    host->sendBytes(feedback, sizeof high, 0, nullptr);
    host->send(feedback, none);
    settle();
    EXPECT_EQ(part(*host, kWhole), before);
}

TEST_F(LV2Window, TakesValuesBeyondTheRangeForItsEnds) {
    open();
    host->sendParameter(kFeedback, 1.0f);
    settle();
    const auto highest = part(*host, kWhole);
    host->sendParameter(kFeedback, 0.5f);
    ASSERT_TRUE(changes(*host, highest, kWhole));
    host->sendParameter(kFeedback, std::numeric_limits<float>::infinity());
    EXPECT_TRUE(host->serveUntil([&] { return part(*host, kWhole) == highest; }));
}

// From the hand to the ports

TEST_F(LV2Window, WritesADragToItsPortBetweenTouches) {
    open();
    dragKnob();
    letGo();
    const std::uint32_t port = lv2_door::controlPort(kFeedback);
    EXPECT_EQ(host->writesTo(kFeedback), host->writes);
    ASSERT_EQ(host->touches.size(), 2u);
    EXPECT_EQ(host->touches[0], (Touch{port, true, 0}));
    EXPECT_EQ(host->touches[1], (Touch{port, false, host->writes.size()}));
    EXPECT_GT(host->writes.back().value, 0.5f) << "where it stood";
    EXPECT_LE(host->writes.back().value, 1.0f);
}

TEST_F(LV2Window, ShowsTheControlInTheHandInWords) {
    open();
    settle();
    const auto resting = part(*host, kHint);
    dragKnob();
    EXPECT_TRUE(changes(*host, resting, kHint));
    letGo();
    EXPECT_TRUE(host->serveUntil([&] { return part(*host, kHint) == resting; }));
}

TEST_F(LV2Window, GoesOnFromThePresentValueOfAPort) {
    open();
    host->sendParameter(kFeedback, 0.05f);
    dragKnob();
    letGo();
    EXPECT_LT(host->writes.front().value, 0.5f);
}

TEST_F(LV2Window, DoesNotMoveAControlInTheHandToWhatTheHostSends) {
    open();
    dragKnob();
    settle();
    const auto held = part(*host, kWhole);
    const std::size_t written = host->writes.size();
    host->sendParameter(kFeedback, 0.1f);
    host->sendParameter(kFeedback, host->writes.front().value);
    settle();
    EXPECT_EQ(part(*host, kWhole), held);
    EXPECT_EQ(host->writes.size(), written);
    host->sendParameter(kTaps, 0.9f);
    EXPECT_TRUE(changes(*host, held, kWhole)) << "another control follows meanwhile";
    letGo();
}

TEST_F(LV2Window, ShowsAutomationOnceTheControlIsLetGo) {
    open();
    dragKnob();
    settle();
    const auto held = part(*host, kKnob);
    host->sendParameter(kFeedback, 0.1f);
    letGo();
    EXPECT_TRUE(changes(*host, held, kKnob));
}

TEST_F(LV2Window, StaysWhereItWasLetGoWhileEchoesOfTheDragArrive) {
    open();
    dragKnob();
    ASSERT_TRUE(host->moveUntil(30, 0, [this] { return host->writes.size() > 3; }));
    settle();
    const auto held = part(*host, kKnob);
    const auto writes = host->writes;
    letGo();
    for (const std::size_t echo : {std::size_t{0}, std::size_t{1}, writes.size() - 2}) {
        host->send(writes[echo].port, writes[echo].value);
        host->serve();
        EXPECT_EQ(part(*host, kKnob), held);
    }
    host->send(writes.back().port, writes.back().value);
    settle();
    EXPECT_EQ(part(*host, kKnob), held);
    EXPECT_EQ(host->writes, writes) << "an answer";
}

TEST_F(LV2Window, FollowsTheHandInAHostThatSendsEverythingBack) {
    open();
    host->sendsBack = true;
    dragKnob();
    for (int y = 10; y > -60; y -= 5)
        ASSERT_TRUE(host->moveUntil(30, y, [&, count = host->writes.size()] {
            return host->writes.size() > count || host->writes.back().value == 1.0f;
        }));
    letGo();
    settle();
    float last = 0.0f;
    for (const Write& written : host->writes) {
        EXPECT_GE(written.value, last - 0.02f) << "pulled back"; // the hand trembles by a pixel
        last = written.value;
    }
}

TEST_F(LV2Window, OpensNoMenuAtARightClick) {
    open();
    settle();
    const auto before = part(*host, kWhole);
    host->point(30, 30);
    host->press(test::kRight);
    host->serve();
    host->release(test::kRight);
    settle();
    EXPECT_EQ(part(*host, kWhole), before);
    EXPECT_TRUE(host->writes.empty());
    dragKnob();
    letGo();
}

// Skins that cannot be shown, or not as a whole

TEST_F(LV2Window, SaysInItsPlaceAndInTheLogThatThereIsNoSkin) {
    std::filesystem::remove(module.beside("Quillon Skin/skin.xml"));
    hasLamp_ = false;
    const std::vector<Window> shown = host->childrenOf(screen().root());
    testing::internal::CaptureStdout();
    ASSERT_TRUE(host->open());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(host->log.lines, std::string(LV2_LOG__Warning) + " Skin Error: " +
                                   module.beside("Quillon Skin/skin.xml") + " skin file missing\n");
    EXPECT_EQ(host->childrenOf(screen().root()), shown) << "no box";
    EXPECT_TRUE(host->showsPixel(3, 3, 0xF4F2EC));
    const auto blank = std::vector<Pixel>(400 * 100, 0xF4F2EC);
    EXPECT_TRUE(host->changes(blank, 0, 0, 400, 100)) << "no text";
    const test::Place place = test::placeOf(screen(), host->widget());
    EXPECT_EQ(host->sizes, (std::vector<Size>{{place.width, place.height}}));
    host->sendParameter(kFeedback, 0.9f);
    host->sendParameter(kTaps, 0.9f);
    settle();
    EXPECT_TRUE(host->writes.empty());
}

TEST_F(LV2Window, SaysThatASkinIsMalformedOrHasNoPicture) {
    const std::pair<const char*, const char*> skins[] = {
        {"<GUI><knob", "skin file missing"},
        {"<WINDOW></WINDOW>", "<GUI> node missing"},
        {"<GUI></GUI>", "no background picture"},
        {"<GUI><background filename=\"none.png\"/></GUI>", "no background picture"}};
    for (const auto& [skin, fault] : skins) {
        std::ofstream(module.beside("Quillon Skin/skin.xml")) << skin;
        host->log.lines.clear();
        ASSERT_TRUE(host->open()) << skin;
        EXPECT_NE(host->log.lines.find(fault), std::string::npos) << host->log.lines;
        EXPECT_TRUE(host->showsPixel(3, 3, 0xF4F2EC)) << skin;
        host->close();
    }
}

TEST_F(LV2Window, LogsTheFaultOfAnObjectAndOpensWithoutIt) {
    writeSkin(R"(<background filename="background.png"/><knob id="6" x="10" y="10" w="40"/>)");
    const std::vector<Window> shown = host->childrenOf(screen().root());
    open();
    EXPECT_EQ(host->log.lines,
              std::string(LV2_LOG__Warning) + " Skin Error: Missing tag h for object knob\n");
    EXPECT_EQ(host->childrenOf(screen().root()), shown) << "no box";
}

TEST_F(LV2Window, WritesFaultsToStandardErrorWhereTheHostHasNoLog) {
    std::filesystem::remove(module.beside("Quillon Skin/skin.xml"));
    testing::internal::CaptureStderr();
    EXPECT_TRUE(host->open({.log = false}));
    EXPECT_NE(testing::internal::GetCapturedStderr().find("skin file missing"), std::string::npos);
}

// Its end

TEST_F(LV2Window, MayLoseItsPlaceBeforeItsEnd) {
    open();
    host->sendParameter(kFeedback, 0.9f);
    XDestroyWindow(screen().display(), host->widget());
    XSync(screen().display(), False);
    host->serve();
    host->close();
    open();
    host->destroyContainer();
    host->sendParameter(kFeedback, 0.2f);
    host->serve();
    host->close();
    WindowHost other(screen(), module.beside(kModule));
    ASSERT_TRUE(other.open());
    EXPECT_TRUE(other.showsPixel(kSkinWidth - 2, 2, kGrey));
}

TEST_F(LV2Window, IsGoneFromTheScreenWithItsEnd) {
    open();
    const Window container = host->container();
    host->close();
    EXPECT_EQ(host->childrenOf(container), std::vector<Window>{});
}

TEST_F(LV2Window, OpensTwentyTimes) {
    for (int opening = 0; opening < 20; ++opening) {
        open();
        if (opening % 5 == 0) {
            host->touches.clear();
            host->writes.clear();
            dragKnob();
            letGo();
        }
        host->close();
    }
}

TEST_F(LV2Window, MayBeEndedByTheHostInTheMiddleOfAWrite) {
    open();
    WindowHost other(screen(), module.beside(kModule), 500);
    ASSERT_TRUE(other.open());
    host->whenWritten = [this](Write) { host->close(); };
    host->point(30, 30);
    host->press();
    host->serve();
    host->point(30, 10);
    // The windows of a process are served together.
    int step = 0;
    EXPECT_TRUE(other.serveUntil([&] {
        host->point(30 + step++ % 2, 8);
        return !host->isOpen();
    }));
    host->release();
    other.settle();
    EXPECT_EQ(host->writes.size(), 1u);
    ASSERT_FALSE(host->touches.empty());
    EXPECT_FALSE(host->touches.back().isTouched) << "the host is left with a gesture that never ends";
}

} // namespace
