// The tap view by what it draws, and by what the mouse does to it.
#include "controls/view_taps.h"

#include "controls/default_values.h"
#include "recorded_toolkit.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include <gtest/gtest.h>

namespace {

using controls::ViewTaps;
using test::both;
using test::Drawing;
using test::RecordedFrame;
using VSTGUI::CColor;
using VSTGUI::CPoint;
using VSTGUI::CRect;
using VSTGUI::MouseButton;

const CColor grey(0x66, 0x66, 0x66, 0xFF);
const CColor red(0xB3, 0x66, 0x66, 0xFF);
const CColor pageBlue(0x2D, 0x2D, 0x66, 0xFF);
const std::string banner = "**** Quillon Multitap Delay : The 128 Taps Echo, right-click for Help ****";
const std::string warning = "**** Using maximum memory capacity! ****";
constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();

using Gains = std::array<float, ViewTaps::kMaxTaps>;

Gains allGains(float gain) {
    Gains gains;
    gains.fill(gain);
    return gains;
}

struct Pattern {
    std::int32_t taps = 128;
    float stretch = 0.5f;
    Gains gains = allGains(0.5f);
    std::int32_t milliseconds = 2282;
};

/// The view 300 wide and 95 high, at (20, 30), unless a test wants another.
class TapView : public testing::Test {
  protected:
    explicit TapView(const CRect& size = CRect(20, 30, 320, 125)) {
        test::useRecordedToolkit();
        controls::resetOnlyControlsWithDefault();
        place(size);
    }

    void place(const CRect& size) { view = VSTGUI::makeOwned<ViewTaps>(size); }

    Drawing draw(const Pattern& pattern) {
        view->showPattern(pattern.gains.data(), pattern.milliseconds, pattern.taps, pattern.stretch);
        return draw();
    }
    Drawing draw() { return test::drawingOf(*view); }

    void press(std::int32_t buttons) {
        CPoint where(25, 35);
        EXPECT_EQ(view->onMouseDown(where, buttons), VSTGUI::kMouseEventHandled);
    }

    VSTGUI::SharedPointer<ViewTaps> view;
};

/// The columns of pixels that lines stand in, from the view's left.
std::vector<double> columnsOf(const Drawing& drawing, double left = 20) {
    std::vector<double> columns;
    for (const test::Line& line : drawing.lines) {
        EXPECT_EQ(line.from.x, line.to.x) << "lines are upright";
        columns.push_back(line.from.x - left);
    }
    return columns;
}

std::vector<int> greensOf(const Drawing& drawing) {
    std::vector<int> greens;
    for (const test::Line& line : drawing.lines)
        greens.push_back(line.colour.green);
    return greens;
}

using Columns = std::vector<double>;
using Greens = std::vector<int>;

TEST_F(TapView, ShowsNoParameterAndHasNoListener) {
    EXPECT_EQ(view->getTag(), -1);
    EXPECT_EQ(view->getListener(), nullptr);
    EXPECT_TRUE(view->isTypeOf("ViewTaps"));
    EXPECT_FALSE(view->isTypeOf("CControl"));
}

TEST_F(TapView, BeginsWith128SilentTapsAndTheNumberZero) {
    const Drawing drawing = draw();
    EXPECT_EQ(drawing.lines.size(), 3u * 128);
    EXPECT_EQ(drawing.words(), (std::vector<std::string>{"0", " ms for", "Taps: 128", banner}));
    for (const test::Line& line : drawing.lines)
        EXPECT_EQ(line.to.y, 124);
}

TEST_F(TapView, PaintsNoBackground) {
    for (const test::Box& box : draw().boxes)
        EXPECT_FALSE(box.filled);
}

TEST_F(TapView, PutsOneTapAtItsLeftEdgeAndTheTextBehindIt) {
    const Drawing drawing = draw({.taps = 1});
    EXPECT_EQ(columnsOf(drawing), (Columns{0, 1, 2}));
    // Half a unit of 4 pixels, 45.9 times as wide, is 91 whole pixels.
    EXPECT_EQ(drawing.texts[0].centre, CPoint(20 + 91 + 2 + 23, 30 + 31 + 7));
    EXPECT_EQ(drawing.words(), (std::vector<std::string>{"2282", " ms for", "Taps: 1", banner}));
}

TEST_F(TapView, StandsAFullPatternOfEvenEchoesThreePixelsApartPastItsRightEdge) {
    const Drawing drawing = draw({.taps = 128, .stretch = 0.5f});
    Columns expected;
    for (int tap = 0; tap < 128; ++tap)
        for (int column : {0, 1, 2})
            expected.push_back(tap * 3 + column);
    EXPECT_EQ(columnsOf(drawing), expected);
    EXPECT_EQ(drawing.texts[0].centre.x, 20 + 384 + 2 + 23);
}

TEST_F(TapView, CrowdsTheFirstEchoesWithoutStretchAndTheLastWithAll) {
    const auto gapsOf = [this](float stretch) {
        const Columns columns = columnsOf(draw({.taps = 8, .stretch = stretch}));
        std::vector<double> starts;
        for (std::size_t i = 0; i < columns.size(); i += 3)
            starts.push_back(columns[i]);
        EXPECT_EQ(starts.size(), 8u);
        return std::pair(starts[1] - starts[0], starts[7] - starts[6]);
    };
    const auto [firstGap, lastGap] = gapsOf(0);
    EXPECT_LT(firstGap, lastGap);
    const auto [firstStretched, lastStretched] = gapsOf(1);
    EXPECT_GT(firstStretched, lastStretched);
}

TEST_F(TapView, DrawsASilentTapOnePixelHigh) {
    for (const test::Line& line : draw({.taps = 4, .gains = allGains(0)}).lines) {
        EXPECT_EQ(line.from.y, 125);
        EXPECT_EQ(line.to.y, 124);
    }
}

TEST_F(TapView, RaisesAFullTapOnePixelAboveItsTop) {
    for (const test::Line& line : draw({.taps = 4, .gains = allGains(1)}).lines) {
        EXPECT_EQ(line.from.y, 125);
        EXPECT_EQ(line.to.y, 29);
    }
}

TEST_F(TapView, TakesTheHeightOfABarInSinglePrecision) {
    const float third = 1.0f / 3.0f;
    const float gap = 95.0f - 95.0f * third;
    ASSERT_NE(static_cast<double>(gap), 95.0 - 95.0 * static_cast<double>(third));
    EXPECT_EQ(draw({.taps = 1, .gains = allGains(third)}).lines[0].to.y,
              static_cast<double>(gap) + 30.0 - 1.0);
}

TEST_F(TapView, GivesEveryTapItsOwnHeight) {
    Pattern pattern{.taps = 3};
    pattern.gains[0] = 1.0f;
    pattern.gains[1] = 0.5f;
    pattern.gains[2] = 0.0f;
    const Drawing drawing = draw(pattern);
    ASSERT_EQ(drawing.lines.size(), 9u);
    EXPECT_EQ(drawing.lines[0].to.y, 29);
    EXPECT_EQ(drawing.lines[3].to.y, 30 + 47.5 - 1);
    EXPECT_EQ(drawing.lines[6].to.y, 124);
}

TEST_F(TapView, LightsUpTheFirstColumnsOfEvenTapsOnly) {
    EXPECT_EQ(greensOf(draw({.taps = 4})),
              (Greens{0xBD, 0xBD, 0x66, 0x66, 0x66, 0x66, 0xBD, 0xBD, 0x66, 0x66, 0x66, 0x66}));
}

TEST_F(TapView, SpacesItsBarsByTheirNumberAloneWhenItIsNarrow) {
    place(CRect(20, 30, 83, 125));
    const Columns columns = columnsOf(draw({.taps = 128}));
    ASSERT_EQ(columns.size(), 3u * 128);
    EXPECT_EQ(columns[3], 2) << "128 taps add 2.9 pixels each";
}

TEST_F(TapView, DrawsABarOfTwoColumnsWhereTheNextStandsInTheSamePlace) {
    place(CRect(20, 30, 83, 125));
    const Drawing drawing = draw({.taps = 4});
    EXPECT_EQ(columnsOf(drawing), (Columns{0, 1, 0, 1, 0, 1, 0, 1}));
}

TEST_F(TapView, LightsUpOddTapsBehindABarWithoutADimColumn) {
    place(CRect(20, 30, 83, 125));
    EXPECT_EQ(greensOf(draw({.taps = 4})), Greens(8, 0xBD));
}

TEST_F(TapView, IsWideEnoughForAUnitFrom64PixelsOn) {
    place(CRect(20, 30, 84, 125));
    EXPECT_EQ(columnsOf(draw({.taps = 2}))[3], 11) << "half a pixel, 22.95 times as wide";
}

TEST_F(TapView, ColoursTheTapsFromDarkToBlueWithoutStretch) {
    const Drawing drawing = draw({.taps = 4, .stretch = 0});
    // Blue 0, 63.75, 127.5 and 191.25, cut; red follows half as fast.
    const std::uint8_t blues[] = {0, 63, 127, 191};
    for (std::size_t tap = 0; tap < 4; ++tap) {
        const CColor colour = drawing.lines[tap * 3].colour;
        EXPECT_EQ(colour.blue, blues[tap]);
        EXPECT_EQ(colour.red, blues[tap] / 2 + 0x27);
        EXPECT_EQ(colour.alpha, 0xFF);
    }
}

TEST_F(TapView, ColoursTheTapsFromBlueToDarkWithAllStretch) {
    const Drawing drawing = draw({.taps = 4, .stretch = 1});
    const std::uint8_t blues[] = {255, 191, 127, 63};
    for (std::size_t tap = 0; tap < 4; ++tap)
        EXPECT_EQ(drawing.lines[tap * 3].colour.blue, blues[tap]);
}

TEST_F(TapView, LeavesOutBarsWhoseSuccessorWouldStandFarToTheLeft) {
    const Columns columns = columnsOf(draw({.taps = 16, .stretch = 10}));
    EXPECT_LT(columns.size(), 3u * 16);
    EXPECT_GT(columns.size(), 0u);
}

TEST_F(TapView, StacksThreeTextsBesideTheLastBar) {
    const Drawing drawing = draw({.taps = 1});
    ASSERT_EQ(drawing.texts.size(), 4u);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(drawing.texts[i].centre, CPoint(113 + 23, 61 + 7 + 14.0 * static_cast<double>(i)));
        EXPECT_EQ(drawing.texts[i].colour, grey);
    }
}

TEST_F(TapView, PutsABoxUnderTheTextsAndOneOverThem) {
    const Drawing drawing = draw({.taps = 1});
    ASSERT_EQ(drawing.boxes.size(), 2u);
    EXPECT_EQ(drawing.boxes[0].area, CRect(113, 61 + 43, 113 + 46, 61 + 51));
    EXPECT_EQ(drawing.boxes[1].area, CRect(113, 61 - 9, 113 + 46, 61 - 1));
    for (const test::Box& box : drawing.boxes) {
        EXPECT_FALSE(box.filled);
        EXPECT_EQ(box.colour, grey);
    }
}

TEST_F(TapView, DrawsItsBannerOverItsWholeWidth) {
    const test::Text text = draw({}).texts.back();
    EXPECT_EQ(text.text, banner);
    EXPECT_EQ(text.centre, CPoint(170, 37));
    EXPECT_EQ(text.colour, grey);
}

TEST_F(TapView, DrawsAllTextInSmallSmoothArial) {
    const auto expectFont = [this] {
        for (const test::Text& text : draw().texts) {
            EXPECT_EQ(text.font, "Arial 10");
            EXPECT_EQ(text.style, 0);
            EXPECT_TRUE(text.antialiased);
        }
    };
    expectFont();
    press(VSTGUI::kRButton);
    expectFont();
    press(VSTGUI::kRButton);
    expectFont();
}

TEST_F(TapView, MeasuresOnlyTheTextsThatHaveChanged) {
    EXPECT_EQ(draw({.taps = 20}).textsMeasured, 4);
    EXPECT_EQ(draw({.taps = 20, .stretch = 0.7f}).textsMeasured, 0);
    EXPECT_EQ(draw({.taps = 21}).textsMeasured, 1);
    EXPECT_EQ(draw({.taps = 21, .milliseconds = -2282}).textsMeasured, 1) << "the warning has another banner";
}

TEST_F(TapView, StandsAtATruncatedPlaceWithAFraction) {
    place(CRect(20.75, 30.75, 320.75, 125.75));
    const Drawing drawing = draw({.taps = 1});
    EXPECT_EQ(drawing.lines[1].from, CPoint(21.75, 125.75));
    EXPECT_EQ(drawing.texts[0].centre, CPoint(113 + 23, 61 + 7));
}

TEST_F(TapView, WarnsOfAFullMemoryAtOneDrawing) {
    const Drawing full = draw({.taps = 1, .milliseconds = -95108});
    EXPECT_EQ(full.words(), (std::vector<std::string>{"95108", " ms for", "Taps: 1", warning}));
    for (const test::Text& text : full.texts)
        EXPECT_EQ(text.colour, red);
    for (const test::Box& box : full.boxes)
        EXPECT_EQ(box.colour, grey);
    const Drawing next = draw();
    EXPECT_EQ(next.words(), (std::vector<std::string>{"95108", " ms for", "Taps: 1", banner}));
    for (const test::Text& text : next.texts)
        EXPECT_EQ(text.colour, grey);
}

TEST_F(TapView, WarnsAgainWithEachNewPattern) {
    for (int round = 0; round < 2; ++round)
        EXPECT_EQ(draw({.milliseconds = -1}).words().back(), warning);
}

TEST_F(TapView, SurvivesTheLowestNumberOfMilliseconds) {
    EXPECT_EQ(draw({.milliseconds = std::numeric_limits<std::int32_t>::min()}).words().back(), warning);
}

TEST_F(TapView, BecomesDirtyWithANewPatternAndCleanWithItsPicture) {
    draw();
    EXPECT_FALSE(view->isDirty());
    view->showPattern(Gains().data(), 1, 1, 0);
    EXPECT_TRUE(view->isDirty());
    draw();
    EXPECT_FALSE(view->isDirty());
}

TEST_F(TapView, StaysDirtyBehindItsHelp) {
    press(VSTGUI::kRButton);
    ASSERT_TRUE(view->isDirty());
    draw();
    EXPECT_TRUE(view->isDirty());
}

TEST_F(TapView, KeepsAWarningUntilThePictureIsBack) {
    press(VSTGUI::kRButton);
    draw({.milliseconds = -7});
    press(VSTGUI::kLButton);
    EXPECT_EQ(draw().words().back(), warning);
}

TEST_F(TapView, DrawsFromItsOwnCopyOfTheGains) {
    Pattern pattern{.taps = 1, .gains = allGains(1)};
    draw(pattern);
    pattern.gains.fill(0);
    EXPECT_EQ(draw().lines[0].to.y, 29);
}

TEST_F(TapView, LimitsTheNumberOfTaps) {
    for (std::int32_t taps : {0, -1, std::numeric_limits<std::int32_t>::min()})
        EXPECT_EQ(draw({.taps = taps}).words()[2], "Taps: 1");
    for (std::int32_t taps : {129, std::numeric_limits<std::int32_t>::max()})
        EXPECT_EQ(draw({.taps = taps}).words()[2], "Taps: 128");
}

TEST_F(TapView, DrawsSomethingWhateverTheStretch) {
    for (float stretch : {nan, infinity, -infinity, 3e38f, -3e38f, 1e9f, -1e9f, 5e7f, -5e7f})
        for (std::int32_t taps : {1, 2, 127, 128}) {
            SCOPED_TRACE(stretch);
            const Drawing drawing = draw({.taps = taps, .stretch = stretch});
            EXPECT_EQ(drawing.words()[2], "Taps: " + std::to_string(taps));
            EXPECT_LE(drawing.lines.size(), 3u * 128);
        }
}

TEST_F(TapView, DrawsSomethingWhateverTheGains) {
    for (float gain : {nan, infinity, -infinity, 3e38f})
        EXPECT_EQ(draw({.taps = 2, .gains = allGains(gain)}).lines.size(), 6u);
}

TEST_F(TapView, DrawsSomethingWhateverItsPlace) {
    for (const CRect& size :
         {CRect(0, 0, 0, 0), CRect(-2147483648.0, -2147483648.0, 2147483647.0, 2147483647.0),
          CRect(0, 0, 2147483647.0, 2147483647.0), CRect(100, 100, -2147483648.0, -2147483648.0)}) {
        place(size);
        EXPECT_EQ(draw({}).texts.size(), 4u);
    }
}

TEST_F(TapView, HandsEverythingToItsCopy) {
    draw({.taps = 5, .stretch = 0.2f, .gains = allGains(0.7f), .milliseconds = 77});
    const Drawing picture = draw();
    const auto copy = VSTGUI::owned(dynamic_cast<ViewTaps*>(view->newCopy()));
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->getTag(), -1);
    const Drawing copied = test::drawingOf(*copy);
    EXPECT_EQ(copied.words(), picture.words());
    EXPECT_EQ(columnsOf(copied), columnsOf(picture));
    EXPECT_EQ(copied.lines[0].to, picture.lines[0].to);

    press(VSTGUI::kRButton);
    const auto helpCopy = VSTGUI::owned(dynamic_cast<ViewTaps*>(view->newCopy()));
    EXPECT_EQ(helpCopy->shownPage(), 1);
}

/// The picture's law of places and colours once more, as plain as can be.
std::vector<test::Line> linesByTheLaw(const CRect& view, const Pattern& pattern) {
    std::vector<test::Line> lines;
    const int w = static_cast<int>(view.right - view.left), h = static_cast<int>(view.bottom - view.top);
    const int unit = (2 * w) / 128;
    const float inv = 1.0f / static_cast<float>(pattern.taps);
    const float add = static_cast<float>(pattern.taps) * 0.022779042f;
    const float mul = inv * 45.9f;
    int x = 0, green = 0x66;
    for (int i = 0; i < pattern.taps; ++i) {
        const float t = static_cast<float>(i) * inv;
        const double s = 1 / (std::exp(4.0 - double{t} * 8.0) + 1);
        const int next = static_cast<int>((s + (1 - 2 * s) * double{pattern.stretch}) * unit * double{mul} +
                                          double{add} + x);
        for (int c = x; c <= x + 2 && x <= next + 1; ++c) {
            if (c > next + 1)
                break;
            if (c == x + 2)
                green = 0x66;
            else if (i % 2 == 0)
                green = 0xBD;
            const double p = double{t} * 255.0, b = pattern.stretch;
            const int blue = static_cast<int>((1 - b) * p + b * (255.0 - p)) & 0xFF;
            const float gap =
                static_cast<float>(h) - static_cast<float>(h) * pattern.gains[static_cast<std::size_t>(i)];
            lines.push_back(
                {CPoint(view.left + c, view.bottom), CPoint(view.left + c, double{gap} + view.top - 1.0),
                 CColor(static_cast<std::uint8_t>((blue >> 1) + 0x27), static_cast<std::uint8_t>(green),
                        static_cast<std::uint8_t>(blue), 0xFF)});
        }
        x = next;
    }
    return lines;
}

TEST_F(TapView, FollowsTheLawForAnyPattern) {
    std::mt19937 random(20240);
    std::uniform_real_distribution<float> zeroToOne(0, 1);
    for (int round = 0; round < 300; ++round) {
        Pattern pattern{.taps = std::uniform_int_distribution(1, 128)(random), .stretch = zeroToOne(random)};
        for (float& gain : pattern.gains)
            gain = zeroToOne(random);
        const CRect size(20, 30, 20 + std::uniform_int_distribution(0, 900)(random), 125);
        place(size);
        const Drawing drawing = draw(pattern);
        const std::vector<test::Line> expected = linesByTheLaw(size, pattern);
        ASSERT_EQ(drawing.lines.size(), expected.size()) << pattern.taps << " taps, " << pattern.stretch;
        for (std::size_t i = 0; i < expected.size(); ++i) {
            ASSERT_EQ(drawing.lines[i].from, expected[i].from)
                << pattern.taps << " taps, " << pattern.stretch;
            ASSERT_EQ(drawing.lines[i].to, expected[i].to) << pattern.taps << " taps, " << pattern.stretch;
            ASSERT_EQ(drawing.lines[i].colour, expected[i].colour)
                << pattern.taps << " taps, " << pattern.stretch;
        }
    }
}

std::string blanks(std::size_t count) {
    return std::string(count, ' ');
}

struct Line {
    std::string text;
    double middle; ///< from the view's top
    CColor colour;
};

void expectPage(const Drawing& drawing, const std::vector<Line>& expected) {
    ASSERT_EQ(drawing.texts.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(drawing.texts[i].text, expected[i].text);
        EXPECT_EQ(drawing.texts[i].centre, CPoint(170, 30 + expected[i].middle)) << expected[i].text;
        EXPECT_EQ(drawing.texts[i].colour, expected[i].colour) << expected[i].text;
    }
    EXPECT_TRUE(drawing.lines.empty());
    EXPECT_TRUE(drawing.boxes.empty());
}

TEST_F(TapView, TellsOfTheMemoryOnItsFirstPage) {
    std::string dashes;
    for (int i = 0; i < 40; ++i)
        dashes += " _";
    press(VSTGUI::kRButton);
    expectPage(
        draw(),
        {{"Things you must know about Quillon Multitap Delay.", 5.5, pageBlue},
         {"First thing to know, the size of the memory is fixed at 4194304 samples, that means that at "
          "SampleRate  = 44100",
          19.5, pageBlue},
         {"the Quillon Multitap Delay has a maximum delay of about 95 seconds (as per 4194304/44100),  "
          "therefore you could easly" +
              blanks(5),
          31.5, pageBlue},
         {"have more than one minute of audio stored in your Quillon Multitap Delay instance while "
          "running, and that can come and go" +
              blanks(2),
          43.5, pageBlue},
         {"depending on your settings." + dashes + blanks(22), 55.5, pageBlue},
         {"To clear the memory just turn the plugin off and then on again." + blanks(50), 67.5, pageBlue},
         {"...right-click for more...", 81.5, pageBlue}});
}

TEST_F(TapView, TellsOfMidiOnItsSecondPage) {
    press(VSTGUI::kRButton);
    press(VSTGUI::kRButton);
    expectPage(
        draw(),
        {{"Quillon Multitap Delay supports MIDI Learn/Forget for any parameter; all you need to do is to "
          "right-click on a parameter",
          5.5, pageBlue},
         {" and select 'MIDI Learn', then move a controller. The controller will then be bound to that "
          "parameter." +
              blanks(7),
          17.5, pageBlue},
         {"To clear a bound-parameter, right-click on it again, and select the 'Forget' option from the "
          "dropdown Menu." +
              blanks(2),
          29.5, pageBlue},
         {"The settings also responde to MIDI Program Change messages so that preset changes can be "
          "automated." +
              blanks(10),
          41.5, pageBlue},
         {"[Please press the Alt key and click here to open the Help file as PDF]", 53.5,
          CColor(0xFF, 0xFF, 0x66, 0xFF)},
         {"VST Plug-In Technology by Steinberg, AU System by Apple", 94.5, grey}});
}

TEST_F(TapView, TurnsItsPageAtARightPress) {
    press(VSTGUI::kRButton);
    EXPECT_EQ(view->shownPage(), 1);
    press(VSTGUI::kRButton);
    EXPECT_EQ(view->shownPage(), 2);
    press(VSTGUI::kRButton);
    EXPECT_EQ(view->shownPage(), 2) << "there are two";
}

TEST_F(TapView, ShowsThePictureAgainAtALeftPress) {
    for (int pages : {1, 2}) {
        for (int i = 0; i < pages; ++i)
            press(VSTGUI::kRButton);
        press(VSTGUI::kLButton);
        EXPECT_EQ(view->shownPage(), 0);
        EXPECT_EQ(draw().words().back(), banner);
    }
}

TEST_F(TapView, RedrawsThePictureAtALeftPressOnIt) {
    draw();
    press(VSTGUI::kLButton);
    EXPECT_EQ(view->shownPage(), 0);
    EXPECT_TRUE(view->isDirty());
}

TEST_F(TapView, KeepsItsPageWithAnyOtherButtons) {
    using namespace VSTGUI;
    for (int page = 0; page < 3; ++page) {
        for (int buttons : {0, +kMButton, +kButton4, +kButton5, kLButton | kRButton, kLButton | kMButton,
                            kRButton | kMButton, kRButton | kButton4, kLButton | kButton5}) {
            press(buttons);
            EXPECT_EQ(view->shownPage(), page) << buttons;
            EXPECT_TRUE(view->isDirty());
        }
        press(kRButton);
    }
}

TEST_F(TapView, GoesByTheButtonsAloneWhateverKeysAreHeld) {
    using namespace VSTGUI;
    for (int keys : {+kAlt, +kShift, +kControl, kAlt | kShift}) {
        press(kRButton | keys);
        EXPECT_EQ(view->shownPage(), 1);
        press(kRButton | keys);
        EXPECT_EQ(view->shownPage(), 2);
        press(kLButton | keys);
        EXPECT_EQ(view->shownPage(), 0) << "and opens nothing";
    }
}

TEST_F(TapView, TakesTheButtonsOfMovesAndReleasesTheSameWay) {
    CPoint where(25, 35);
    EXPECT_EQ(view->onMouseMoved(where, VSTGUI::kRButton), VSTGUI::kMouseEventHandled);
    EXPECT_EQ(view->shownPage(), 1);
    EXPECT_EQ(view->onMouseUp(where, VSTGUI::kRButton), VSTGUI::kMouseEventHandled);
    EXPECT_EQ(view->shownPage(), 2);
    EXPECT_EQ(view->onMouseUp(where, VSTGUI::kLButton), VSTGUI::kMouseEventHandled);
    EXPECT_EQ(view->shownPage(), 0);
}

TEST_F(TapView, TakesNoMouseWhereItIsDisabled) {
    draw();
    view->setMouseEnabled(false);
    press(VSTGUI::kRButton);
    EXPECT_EQ(view->shownPage(), 0);
    EXPECT_FALSE(view->isDirty());
}

TEST_F(TapView, RedrawsWhateverIsShowingWhenThePatternChanges) {
    press(VSTGUI::kRButton);
    EXPECT_EQ(draw({.taps = 9}).texts.size(), 7u);
    EXPECT_TRUE(view->isDirty());
    press(VSTGUI::kLButton);
    EXPECT_EQ(draw().words()[2], "Taps: 9");
}

/// The view in a frame, with whole events.
class TapViewInAFrame : public testing::Test {
  protected:
    TapViewInAFrame() { controls::resetOnlyControlsWithDefault(); }

    RecordedFrame frame;
    ViewTaps* view = frame.add(new ViewTaps(CRect(20, 30, 320, 125)));
    const CPoint inside{100, 60};
};

TEST_F(TapViewInAFrame, TurnsOnePageWithOneRightClick) {
    for (int page : {1, 2, 2}) {
        EXPECT_TRUE(frame.click(inside, MouseButton::Right));
        EXPECT_EQ(view->shownPage(), page);
    }
    frame.click(inside, MouseButton::Left);
    EXPECT_EQ(view->shownPage(), 0);
}

TEST_F(TapViewInAFrame, ReachesItsSecondPageWithTheFirstMoveOfARightDrag) {
    frame.press(inside, MouseButton::Right);
    EXPECT_EQ(view->shownPage(), 1);
    frame.move(CPoint(101, 60), MouseButton::Right);
    EXPECT_EQ(view->shownPage(), 2);
    frame.release(CPoint(101, 60), MouseButton::Right);
    EXPECT_EQ(view->shownPage(), 2);
}

TEST_F(TapViewInAFrame, GoesOnReceivingADragThatHasLeftIt) {
    frame.press(inside, MouseButton::Right);
    frame.move(CPoint(390, 290), MouseButton::Right);
    EXPECT_EQ(view->shownPage(), 2);
}

TEST_F(TapViewInAFrame, KeepsItsPageWhenTwoButtonsArePressedTogetherAndReleased) {
    frame.click(inside, MouseButton::Right);
    frame.press(inside, both(MouseButton::Left, MouseButton::Right));
    EXPECT_EQ(view->shownPage(), 1);
    frame.release(inside, both(MouseButton::Left, MouseButton::Right));
    EXPECT_EQ(view->shownPage(), 1);
}

TEST_F(TapViewInAFrame, ShowsThePictureAtALeftClickWithAnyKey) {
    for (VSTGUI::ModifierKey key :
         {VSTGUI::ModifierKey::Control, VSTGUI::ModifierKey::Alt, VSTGUI::ModifierKey::Shift}) {
        frame.click(inside, MouseButton::Right);
        ASSERT_EQ(view->shownPage(), 1);
        EXPECT_TRUE(frame.click(inside, MouseButton::Left, VSTGUI::Modifiers(key)));
        EXPECT_EQ(view->shownPage(), 0);
        EXPECT_EQ(view->getValue(), 0) << "there is no value to go back to its default";
    }
}

TEST_F(TapViewInAFrame, HandsAReleaseOnAsItWas) {
    VSTGUI::MouseUpEvent release(inside, MouseButton::Right);
    view->dispatchEvent(release);
    EXPECT_TRUE(release.buttonState.isRight());
    EXPECT_TRUE(static_cast<bool>(release.consumed));
    EXPECT_EQ(view->shownPage(), 0);
}

TEST_F(TapViewInAFrame, LeavesClicksBesideItAlone) {
    EXPECT_FALSE(frame.click(CPoint(5, 5), MouseButton::Right));
    EXPECT_EQ(view->shownPage(), 0);
}

} // namespace
