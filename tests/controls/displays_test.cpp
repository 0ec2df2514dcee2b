// The displays, the note display and the help launcher.
#include "controls/displays.h"

#include "controls/help.h"
#include "controls/note_display.h"
#include "desk/private_folder.h"
#include "doors/vst2/audio_effect_x.h"
#include "platform/module_folder.h"
#include "platform/web_browser.h"
#include "recorded_toolkit.h"

#include "vstgui/lib/cbitmap.h"
#include "vstgui/lib/cfont.h"

#include <cstdlib>
#include <cstring>

#include <gtest/gtest.h>

namespace {

using controls::CDisplay;
using controls::CNoteDisplay;
using controls::CParamDisplayLink;
using test::Drawing;
using VSTGUI::CColor;
using VSTGUI::CPoint;
using VSTGUI::CRect;
using VSTGUI::makeOwned;

/// Shows the id that it is asked for, and a text that can be changed.
class Effect final : public vst2_door::AudioEffectX {
  public:
    Effect() : AudioEffectX(nullptr, 1, 21) {}
    void processReplacing(float**, float**, std::int32_t) override {}
    void getParameterDisplay(std::int32_t id, char* out) override {
        std::strcpy(out, (std::to_string(id) + text).c_str());
    }
    void getParameterName(std::int32_t, char* out) override { std::strcpy(out, "name"); }
    void getParameterLabel(std::int32_t, char* out) override { std::strcpy(out, "label"); }

    std::string text = " is shown";
};

/// A picture that nobody may draw.
class ForbiddenPicture final : public VSTGUI::CBitmap {
  public:
    ForbiddenPicture() = default;
    void draw(VSTGUI::CDrawContext*, const CRect&, const CPoint&, float) override { ADD_FAILURE(); }
};

class Displays : public testing::Test {
  protected:
    Displays() { test::useRecordedToolkit(); }

    const CRect size{10, 20, 110, 40};
    Effect effect;
};

TEST_F(Displays, OfAParameterShowItsTextAndNeitherItsNameNorItsLabel) {
    const auto display = makeOwned<CParamDisplayLink>(&effect, 6, size, 77);
    EXPECT_EQ(display->getLink(), 6);
    EXPECT_EQ(display->getTag(), 77);
    const Drawing drawing = test::drawingOf(*display);
    EXPECT_EQ(drawing.words(), std::vector<std::string>{"6 is shown"});
    EXPECT_EQ(drawing.order, std::vector<std::string>{"text"}) << "and no background";
    EXPECT_EQ(drawing.texts[0].centre, CPoint(60, 30));
}

TEST_F(Displays, OfAParameterAskAnewAtEachDrawing) {
    const auto display = makeOwned<CParamDisplayLink>(&effect, 20, size, 77);
    test::drawingOf(*display);
    effect.text = " now";
    EXPECT_EQ(test::drawingOf(*display).words(), std::vector<std::string>{"20 now"});
}

TEST_F(Displays, OfAParameterDoNotShowTheirOwnValue) {
    const auto display = makeOwned<CParamDisplayLink>(&effect, 6, size, 6);
    display->setValue(0.75f);
    display->setPrecision(1);
    display->setValueToStringFunction([](float, char*, VSTGUI::CParamDisplay*) {
        ADD_FAILURE();
        return true;
    });
    EXPECT_EQ(test::drawingOf(*display).words(), std::vector<std::string>{"6 is shown"});
}

TEST_F(Displays, OfAParameterHaveRoomForTheLongestText) {
    effect.text = std::string(61, 'x');
    const auto display = makeOwned<CParamDisplayLink>(&effect, 16, size, 77);
    EXPECT_EQ(test::drawingOf(*display).words(), std::vector<std::string>{"16" + effect.text});
}

TEST_F(Displays, SayInitForTheirWholeLifeUnlessTold) {
    const auto display = makeOwned<CDisplay>(size);
    EXPECT_STREQ(display->getText(), "init");
    for (int i = 0; i < 2; ++i) {
        const Drawing drawing = test::drawingOf(*display);
        EXPECT_EQ(drawing.words(), std::vector<std::string>{"init"});
        EXPECT_EQ(drawing.order, std::vector<std::string>{"text"});
    }
}

TEST_F(Displays, ShowTheTextTheyWereGiven) {
    const auto display = makeOwned<CDisplay>(size);
    display->setText("Feedback: 0.5 %");
    EXPECT_EQ(test::drawingOf(*display).words(), std::vector<std::string>{"Feedback: 0.5 %"});
    display->setText("");
    EXPECT_STREQ(display->getText(), "");
}

TEST_F(Displays, CutATextOfMoreThan255Bytes) {
    const auto display = makeOwned<CDisplay>(size);
    display->setText(std::string(1000, 'x').c_str());
    EXPECT_EQ(display->getText(), std::string(255, 'x'));
    display->setText("short");
    EXPECT_STREQ(display->getText(), "short");
}

TEST_F(Displays, DoNotPaintTheirPicture) {
    const auto picture = makeOwned<ForbiddenPicture>();
    const auto linked = makeOwned<CParamDisplayLink>(&effect, 1, size, 1, picture, 0);
    const auto fixed = makeOwned<CDisplay>(size, picture);
    EXPECT_EQ(linked->getBackground(), picture);
    EXPECT_EQ(fixed->getBackground(), picture);
    test::drawingOf(*linked);
    test::drawingOf(*fixed);
}

TEST_F(Displays, KeepTheFontColourAndPlaceOfTheToolkitsDisplay) {
    const auto display = makeOwned<CDisplay>(size, nullptr, VSTGUI::CParamDisplay::kNoFrame);
    display->setFont(makeOwned<VSTGUI::CFontDesc>("Courier", 17, VSTGUI::kBoldFace));
    display->setFontColor(CColor(1, 2, 3));
    display->setHoriAlign(VSTGUI::kLeftText);
    const Drawing drawing = test::drawingOf(*display);
    EXPECT_EQ(display->getStyle(), VSTGUI::CParamDisplay::kNoFrame);
    EXPECT_EQ(drawing.texts[0].font, "Courier 17");
    EXPECT_EQ(drawing.texts[0].style, VSTGUI::kBoldFace);
    EXPECT_EQ(drawing.texts[0].colour, CColor(1, 2, 3));
    EXPECT_EQ(drawing.texts[0].centre, CPoint(10, 30)) << "a text on the left starts there";
}

TEST_F(Displays, DrawATextsShadowIfTheirStyleSaysSo) {
    const auto display =
        makeOwned<CParamDisplayLink>(&effect, 1, size, 1, nullptr, VSTGUI::CParamDisplay::kShadowText);
    EXPECT_EQ(test::drawingOf(*display).texts.size(), 2u);
}

TEST_F(Displays, CopyAsThoseOfTheToolkit) {
    const auto display = makeOwned<CDisplay>(size);
    const auto copy = VSTGUI::owned(dynamic_cast<VSTGUI::CParamDisplay*>(display->newCopy()));
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(dynamic_cast<CDisplay*>(copy.get()), nullptr);
    EXPECT_EQ(copy->getViewSize(), size);
}

class NoteDisplay : public testing::Test {
  protected:
    NoteDisplay() {
        test::useRecordedToolkit();
        display = makeOwned<CNoteDisplay>(CRect(10, 20, 110, 40), nullptr, 55, &note, &mode);
        display->setBackColor(CColor(0x11, 0x22, 0x33, 0));
        display->setFontColor(CColor(0x44, 0x55, 0x66, 0));
    }

    std::string shown() {
        const Drawing drawing = test::drawingOf(*display);
        EXPECT_EQ(drawing.texts.size(), 1u);
        return drawing.texts[0].text;
    }
    std::string nameOf(int number) {
        mode = controls::kOneNote;
        note = static_cast<std::int8_t>(number);
        return shown();
    }

    std::int8_t note = 0;
    std::int32_t mode = 0;
    VSTGUI::SharedPointer<CNoteDisplay> display;
};

TEST_F(NoteDisplay, SaysOffInTransparentColoursAtFirst) {
    const Drawing drawing = test::drawingOf(*display);
    ASSERT_EQ(drawing.order, (std::vector<std::string>{"box", "text"}));
    EXPECT_EQ(drawing.boxes[0].area, CRect(10, 20, 110, 40));
    EXPECT_TRUE(drawing.boxes[0].filled);
    EXPECT_EQ(drawing.boxes[0].colour, CColor(0x11, 0x22, 0x33, 0));
    const test::Text& text = drawing.texts[0];
    EXPECT_EQ(text.text, "OFF");
    EXPECT_EQ(text.colour, CColor(0x44, 0x55, 0x66, 0));
    EXPECT_EQ(text.centre, CPoint(60, 30));
    EXPECT_EQ(text.font, "Arial 9");
    EXPECT_EQ(text.style, 0);
    EXPECT_TRUE(text.antialiased);
}

TEST_F(NoteDisplay, PaintsItsBackgroundOnlyWhenItIsDirty) {
    display->setDirty(true);
    EXPECT_EQ(test::drawingOf(*display).boxes.size(), 1u);
    EXPECT_FALSE(display->isDirty());
    const Drawing clean = test::drawingOf(*display);
    EXPECT_TRUE(clean.boxes.empty());
    EXPECT_EQ(clean.fillColour, CColor(0x11, 0x22, 0x33, 0));
    EXPECT_EQ(clean.words(), std::vector<std::string>{"OFF"});
}

TEST_F(NoteDisplay, NamesNotesByPitchAndOctave) {
    EXPECT_EQ(nameOf(60), "C 3");
    EXPECT_EQ(nameOf(0), "C -2");
    EXPECT_EQ(nameOf(127), "G 8");
    EXPECT_EQ(nameOf(69), "A 3");
    EXPECT_EQ(nameOf(23), "B -1");
    EXPECT_EQ(nameOf(24), "C 0");
}

TEST_F(NoteDisplay, KnowsTheTwelvePitches) {
    const char* names[] = {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "A#", "B"};
    for (int pitch = 0; pitch < 12; ++pitch)
        EXPECT_EQ(nameOf(60 + pitch), std::string(names[pitch]) + " 3");
}

TEST_F(NoteDisplay, SaysChordForEveryOtherMode) {
    for (std::int32_t other : {2, 3, -1, 1000}) {
        mode = other;
        EXPECT_EQ(shown(), "Chord");
    }
}

TEST_F(NoteDisplay, NeverLooksBeyondItsNamesForANoteThatIsNone) {
    for (int number = -128; number < 0; ++number)
        EXPECT_FALSE(nameOf(number).empty());
}

TEST_F(NoteDisplay, KeepsItsTagAndListenerForOthers) {
    EXPECT_EQ(display->getTag(), 55);
    EXPECT_EQ(display->getListener(), nullptr);
}

TEST_F(NoteDisplay, CopiesAsAPlainView) {
    const auto copy = VSTGUI::owned(dynamic_cast<VSTGUI::CView*>(display->newCopy()));
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->getViewSize(), display->getViewSize());
    EXPECT_EQ(dynamic_cast<VSTGUI::CControl*>(copy.get()), nullptr);
}

/// The browser of a person, with what it was asked to open.
class Help : public testing::Test {
  protected:
    Help() {
        platform::replaceBrowser(
            [](void* context, const char* argument) {
                static_cast<std::vector<std::string>*>(context)->emplace_back(argument);
            },
            &opened);
    }
    ~Help() override { platform::replaceBrowser(nullptr, nullptr); }

    std::vector<std::string> opened;
    char written[controls::kHelpArgumentSize + 1] = {};
};

TEST_F(Help, LiesBesideTheLibrary) {
    controls::helpFileArgument(written);
    ASSERT_LT(platform::moduleFolder().size(), 200u) << "this test needs a folder with a shorter path";
    EXPECT_EQ(written, "\"" + platform::moduleFolder() + "Quillon Multitap Delay Help.htm\"");
}

TEST_F(Help, OpensInTheBrowser) {
    controls::helpFileArgument(written);
    controls::openHelp();
    EXPECT_EQ(opened, std::vector<std::string>{written});
}

TEST_F(Help, OpensWithoutASignWhereThereIsNoBrowser) {
    const desk::PrivateFolder emptyFolder;
    const std::string path = std::getenv("PATH");
    setenv("PATH", emptyFolder.path().c_str(), 1);
    platform::replaceBrowser(nullptr, nullptr);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    controls::openHelp();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    setenv("PATH", path.c_str(), 1);
}

TEST_F(Help, OpensFromBelowALongPath) {
    for (const std::size_t length : {300u, 1000u}) {
        const std::string folder = "/" + std::string(length, 'd') + "/";
        platform::replaceModuleFolder(folder);
        opened.clear();
        controls::openHelp();
        EXPECT_EQ(opened, std::vector<std::string>{"\"" + folder + "Quillon Multitap Delay Help.htm\""});
    }
    platform::replaceModuleFolder("");
}

TEST_F(Help, FillsItsBufferToTheLastByteAndNoFurther) {
    constexpr std::size_t others = sizeof "\"Quillon Multitap Delay Help.htm\"" - 1;
    const std::string longest(controls::kHelpArgumentSize - 1 - others, 'x');
    written[controls::kHelpArgumentSize] = '#';
    controls::helpFileArgument(longest, written);
    EXPECT_EQ(written, "\"" + longest + "Quillon Multitap Delay Help.htm\"");
    controls::helpFileArgument(longest + "x", written);
    EXPECT_STREQ(written, "") << "a path that is too long is none";
    EXPECT_EQ(written[controls::kHelpArgumentSize], '#');
}

TEST_F(Help, IsNotSoughtInTheCurrentFolder) {
    controls::helpFileArgument("", written);
    EXPECT_STREQ(written, "");
}

} // namespace
