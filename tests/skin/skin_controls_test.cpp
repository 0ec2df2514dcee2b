// Each kind of object, built from a line of a skin's file and read back from the control: its class, place,
// tag, value, default, pictures and looks.
#include "skin_pictures.h"
#include "skin_window.h"

#include "controls/about.h"
#include "controls/displays.h"
#include "skin/skin_menu.h"

#include "vstgui/lib/controls/cbuttons.h"
#include "vstgui/lib/controls/cknob.h"
#include "vstgui/lib/controls/cslider.h"
#include "vstgui/lib/controls/csplashscreen.h"
#include "vstgui/lib/controls/cswitch.h"
#include "vstgui/lib/controls/cvumeter.h"
#include "vstgui/lib/events.h"

#include <vector>

namespace {

using test::sizeOf;
using VSTGUI::CAnimKnob;
using VSTGUI::CColor;
using VSTGUI::CKickButton;
using VSTGUI::CKnob;
using VSTGUI::COnOffButton;
using VSTGUI::CPoint;
using VSTGUI::CRect;
using VSTGUI::CSlider;
using VSTGUI::CVuMeter;
using Messages = std::vector<test::Message>;
using Titles = std::vector<std::string>;

const CColor ground(40, 50, 60);

class Controls : public test::SkinWindow {
  protected:
    ~Controls() override { EXPECT_EQ(bench.messages, Messages{}); }

    test::DrawnFrame draw() { return test::DrawnFrame(*editor->frame); }
};

// Background

TEST_F(Controls, StandOnABackgroundThatGivesTheWindowItsSize) {
    open("");
    EXPECT_EQ(editor->rect.left, 0);
    EXPECT_EQ(editor->rect.top, 0);
    EXPECT_EQ(editor->rect.right, 200);
    EXPECT_EQ(editor->rect.bottom, 100);
    EXPECT_EQ(editor->frame->getViewSize(), CRect(0, 0, 200, 100));
    EXPECT_EQ(editor->frame->getBackground(), editor->background);
    EXPECT_EQ(sizeOf(editor->background), "200 x 100");
    EXPECT_TRUE(editor->controls().empty());
    EXPECT_EQ(draw().pixel(199, 99), ground);
}

TEST_F(Controls, AreNotBuiltWhenTheEditorIsMade) {
    bench.writeSkin(R"(<background filename="ground.png"/><update src="1" dst="2"/>
                       <knob x="0" y="0" w="9" h="9" id="broken"/>)");
    auto& made = bench.makeEditor();
    EXPECT_EQ(made.rect.right, 200);
    EXPECT_EQ(made.frame, nullptr);
    EXPECT_EQ(made.background, nullptr) << "the picture has gone with the pass";
    EXPECT_EQ(made.updateLinks.count, 0);
}

TEST_F(Controls, FindNoWindowWithoutABackground) {
    const char* const objects =
        R"(<onoff x="0" y="0" id="1" bitmap_handle="lamp.png"/>
           <kick x="0" y="0" id="1" bitmap_handle="lamp.png"/>
           <knob x="0" y="0" w="9" h="9" id="1"/>
           <autodisp x="0" y="0" w="9" h="9" id="1" link="1"/>
           <display x="0" y="0" w="9" h="9" id="1"/>
           <anydisp x="0" y="0" w="9" h="9"/>
           <optionmenu x="0" y="0" w="9" h="9" id="1"/>
           <skinselector x="0" y="0" w="9" h="9"/>
           <vswitch x="0" y="0" id="1" entries="5" bitmap_handle="film.png"/>
           <hswitch x="0" y="0" id="1" entries="5" bitmap_handle="film.png"/>
           <about x="0" y="0" w="9" h="9" bitmap_pop="popped.png"/>
           <vumeter x="0" y="0" id="1" leds="4" style="1" bitmap_off="off.png" bitmap_on="on.png"/>)";
    openAlone(objects);
    EXPECT_EQ(editor->frame, nullptr);
    EXPECT_EQ(editor->displayLinks.count, 0);
    EXPECT_EQ(editor->menuIds.count, 0);
    EXPECT_EQ(editor->aboutCount, 0);
    EXPECT_EQ(editor->anyDisplay, nullptr);

    openAlone(std::string(objects) + "<background filename=\"ground.png\"/><display x=\"0\" y=\"0\" w=\"9\" "
                                     "h=\"9\" id=\"1\"/>");
    EXPECT_NE(editor->frame, nullptr);
    EXPECT_EQ(editor->controls().size(), 1U) << "what stands before the background is passed over";
}

TEST_F(Controls, TakeABackgroundWithoutAFileForNone) {
    openAlone(R"(<background/><display x="0" y="0" w="9" h="9" id="1"/>)");
    EXPECT_EQ(editor->frame, nullptr);
    EXPECT_EQ(editor->rect.right, 0);
}

TEST_F(Controls, StandOnTheLastOfSeveralBackgrounds) {
    open(R"(<display x="0" y="0" w="9" h="9" id="1"/>
            <background filename="popped.png"/>
            <display x="0" y="0" w="9" h="9" id="2"/>)");
    EXPECT_EQ(editor->rect.right, 101);
    EXPECT_EQ(editor->frame->getWidth(), 101);
    ASSERT_EQ(editor->controls().size(), 1U) << "the first window is out of reach";
    EXPECT_EQ(editor->controlAt(0)->getTag(), 2);
}

// Slider

TEST_F(Controls, BuildAHorizontalSlider) {
    bench.effect().values[6] = 0.75f;
    open(R"(<slider x="10" y="20" len="62" id="6" style="1" bitmap_handle="handle.png" default="0.5"/>)");
    auto& slider = only<CSlider>();
    EXPECT_EQ(slider.getViewSize(), CRect(10, 20, 72, 28)) << "as high as its handle";
    EXPECT_EQ(slider.getTag(), 6);
    EXPECT_EQ(slider.getListener(), editor);
    EXPECT_EQ(slider.getStyle(), CSlider::kHorizontal);
    EXPECT_EQ(slider.getValue(), 0.75f);
    EXPECT_EQ(slider.getDefaultValue(), 0.5f);
    EXPECT_EQ(sizeOf(slider.getHandle()), "12 x 8");
    EXPECT_EQ(slider.getBackground(), editor->background);
    EXPECT_EQ(slider.getBackgroundOffset(), CPoint(10, 20)) << "shows what lies under it";
}

TEST_F(Controls, BuildAVerticalSlider) {
    open(R"(<slider x="10" y="20" len="68" id="3" style="2" bitmap_handle="handle.png"/>)");
    auto& slider = only<CSlider>();
    EXPECT_EQ(slider.getViewSize(), CRect(10, 20, 22, 88)) << "as wide as its handle";
    EXPECT_EQ(slider.getStyle(), CSlider::kVertical);
}

TEST_F(Controls, GiveASliderOneDirection) {
    for (const auto& [style, expected] :
         {std::pair{"0", 1}, {"1", 1}, {"2", 2}, {"3", 2}, {"34", 34}, {"33", 33}, {"2.9", 2}, {"-1", ~1}}) {
        SCOPED_TRACE(style);
        open(
            std::string("<slider x=\"0\" y=\"0\" len=\"50\" id=\"3\" bitmap_handle=\"handle.png\" style=\"") +
            style + "\"/>");
        EXPECT_EQ(only<CSlider>().getStyle(), expected);
    }
}

TEST_F(Controls, LetTheHandleOfASliderTravelItsWholeLength) {
    const CRect left(10, 20, 22, 28), right(60, 20, 72, 28);
    open(R"(<slider x="10" y="20" len="62" id="6" style="1" bitmap_handle="handle.png"/>)");
    EXPECT_EQ(draw().boundsOf(VSTGUI::kGreenCColor), left);
    only<CSlider>().setValue(1.0f);
    EXPECT_EQ(draw().boundsOf(VSTGUI::kGreenCColor), right);
    only<CSlider>().setValue(0.5f);
    EXPECT_EQ(draw().boundsOf(VSTGUI::kGreenCColor), CRect(35, 20, 47, 28));

    open(R"(<slider x="10" y="20" len="68" id="6" style="2" bitmap_handle="handle.png"/>)");
    EXPECT_EQ(draw().boundsOf(VSTGUI::kGreenCColor), CRect(10, 20, 22, 28));
    only<CSlider>().setValue(1.0f);
    EXPECT_EQ(draw().boundsOf(VSTGUI::kGreenCColor), CRect(10, 80, 22, 88));
}

TEST_F(Controls, LetEverySliderRiseWithAWheelThatTurnsUp) {
    // Horizontal from the left and from the right, vertical.
    for (const char* style : {"1", "9", "34"}) {
        SCOPED_TRACE(style);
        open(std::string(R"(<slider x="5" y="6" len="80" id="2" bitmap_handle="handle.png" style=")") +
             style + "\"/>");
        auto& slider = only<CSlider>();
        slider.setValue(0.5f);
        for (const double turn : {1.0, -2.0}) {
            VSTGUI::MouseWheelEvent wheel;
            wheel.deltaY = turn;
            slider.dispatchEvent(wheel);
            EXPECT_TRUE(static_cast<bool>(wheel.consumed));
            EXPECT_EQ(wheel.deltaX, 0.0);
            EXPECT_FLOAT_EQ(slider.getValue(), turn > 0.0 ? 0.6f : 0.4f);
            EXPECT_FLOAT_EQ(bench.effect().automated.back().value, slider.getValue());
        }
    }
}

TEST_F(Controls, CutTheEndsOfASlidersTravelToPixels) {
    open(R"(<slider x="10.7" y="20.7" len="62.5" id="6" style="1" bitmap_handle="handle.png"/>)");
    auto& slider = only<CSlider>();
    EXPECT_EQ(slider.getViewSize(), CRect(10, 20, 73, 28));
    EXPECT_EQ(slider.getBackgroundOffset(), CPoint(10, 20));
    EXPECT_EQ(draw().boundsOf(VSTGUI::kGreenCColor), CRect(10, 20, 22, 28));
    slider.setValue(1.0f);
    EXPECT_EQ(draw().boundsOf(VSTGUI::kGreenCColor).left, 61) << "10.7 + 62.5 - 12, cut";
}

TEST_F(Controls, GiveASliderABackgroundOfItsOwn) {
    open(R"(<slider x="10" y="20" len="62" id="6" style="1" bitmap_bk="plate.png" bitmap_handle="handle.png"
                    xoff="3.9" yoff="-1.9"/>)");
    auto& slider = only<CSlider>();
    EXPECT_EQ(sizeOf(slider.getBackground()), "31 x 17");
    EXPECT_EQ(slider.getBackgroundOffset(), CPoint(3, -1));
}

TEST_F(Controls, BuildASliderWhoseHandleIsMissing) {
    open(R"(<slider x="10" y="20" len="62" id="6" style="1" bitmap_handle="nowhere.png"/>)");
    EXPECT_EQ(only<CSlider>().getViewSize(), CRect(10, 20, 72, 20)) << "of no height";
    draw();
}

// Knob

TEST_F(Controls, BuildAKnob) {
    bench.effect().values[2] = 0.25f;
    open(R"(<knob x="30" y="40" w="25" h="26" id="2" bitmap_handle="handle.png" default="1"/>)");
    auto& knob = only<CKnob>();
    EXPECT_EQ(knob.getViewSize(), CRect(30, 40, 55, 66));
    EXPECT_EQ(knob.getTag(), 2);
    EXPECT_EQ(knob.getListener(), editor);
    EXPECT_EQ(knob.getValue(), 0.25f);
    EXPECT_EQ(knob.getDefaultValue(), 1.0f);
    EXPECT_EQ(knob.getBackground(), editor->background);
    EXPECT_EQ(sizeOf(knob.getHandleBitmap()), "12 x 8");
    EXPECT_EQ(knob.getTransparency(),
              VSTGUI::makeOwned<CKnob>(CRect(), nullptr, 0, nullptr, nullptr)->getTransparency());
}

TEST_F(Controls, BuildAKnobWithoutAHandle) {
    open(R"(<knob x="30" y="40" w="25" h="26" id="2"/>)");
    EXPECT_EQ(sizeOf(only<CKnob>().getHandleBitmap()), "none");
    draw();
}

TEST_F(Controls, BuildAKnobOnAPlate) {
    bench.drawPicture("halves.png", 60, 60, {VSTGUI::kRedCColor, VSTGUI::kCyanCColor});
    open(R"(<knob x="30" y="40" w="20" h="20" id="2" bitmap_bk="halves.png" xoff="1.9" yoff="20.9"
                  bitmap_handle="handle.png"/>)");
    EXPECT_EQ(sizeOf(only<CKnob>().getBackground()), "60 x 60");
    const auto picture = draw();
    EXPECT_EQ(picture.boundsOf(VSTGUI::kRedCColor).bottom, 50) << "ten of thirty red rows are left";
    EXPECT_EQ(picture.pixel(49, 59), VSTGUI::kCyanCColor);
}

TEST_F(Controls, ShowWhatLiesUnderAKnob) {
    bench.drawPicture("ground.png", 200, 100, {VSTGUI::kRedCColor, VSTGUI::kBlueCColor});
    open(R"(<knob x="30" y="40" w="20" h="20" id="2" bitmap_handle="handle.png"/>)");
    const auto picture = draw();
    EXPECT_EQ(picture.boundsOf(VSTGUI::kRedCColor), CRect(0, 0, 200, 50));
}

TEST_F(Controls, BuildAKnobOfAFilm) {
    bench.effect().values[2] = 1.0f;
    open(R"(<knob x="30" y="40" w="20" h="21" id="2" stackbmp="yes" bitmap_handle="film.png"/>)");
    auto& knob = only<CAnimKnob>();
    EXPECT_EQ(knob.getViewSize(), CRect(30, 40, 50, 61));
    EXPECT_EQ(sizeOf(knob.getBackground()), "20 x 105");
    EXPECT_EQ(knob.getHeightOfOneImage(), 21);
    EXPECT_EQ(knob.getNumSubPixmaps(), 5);
    EXPECT_EQ(knob.getValue(), 1.0f);
    EXPECT_EQ(draw().pixel(35, 45), VSTGUI::kWhiteCColor);
    knob.setValue(0.5f);
    EXPECT_EQ(draw().boundsOf(VSTGUI::kBlueCColor), CRect(30, 40, 50, 61));
}

TEST_F(Controls, CutTheNumberOfPicturesInAFilm) {
    open(R"(<knob x="30" y="40" w="20" h="30" id="2" stackbmp="1" bitmap_handle="film.png"/>)");
    EXPECT_EQ(only<CAnimKnob>().getNumSubPixmaps(), 3);
    EXPECT_EQ(only<CAnimKnob>().getHeightOfOneImage(), 30);
}

TEST_F(Controls, SurviveAFilmWithoutPictures) {
    for (const char* tags : {R"(h="0" bitmap_handle="film.png")", R"(h="21" bitmap_handle="nowhere.png")",
                             R"(h="21")", R"(h="-5" bitmap_handle="film.png")"}) {
        SCOPED_TRACE(tags);
        open(std::string(R"(<knob x="30" y="40" w="20" id="2" stackbmp="y" )") + tags + "/>");
        EXPECT_EQ(only<CAnimKnob>().getNumSubPixmaps(), 0);
        for (float value : {0.0f, 0.5f, 1.0f}) {
            only<CAnimKnob>().setValue(value);
            draw();
        }
    }
}

TEST_F(Controls, TakeAFlagByItsFirstByte) {
    for (const auto& [text, isSet] : {std::pair{"y", true},
                                      {"Y", true},
                                      {"1", true},
                                      {"yes", true},
                                      {"Yellow", true},
                                      {"10", true},
                                      {"no", false},
                                      {"n", false},
                                      {"0", false},
                                      {"true", false},
                                      {" y", false},
                                      {"", false}}) {
        SCOPED_TRACE(text);
        open(std::string(R"(<knob x="0" y="0" w="9" h="9" id="2" transparent=")") + text + "\" stackbmp=\"" +
             text + "\"/>");
        EXPECT_EQ(only<VSTGUI::CControl>().getTransparency(), isSet);
        EXPECT_EQ(dynamic_cast<CAnimKnob*>(editor->controlAt(0)) != nullptr, isSet);
    }
}

// Buttons

TEST_F(Controls, BuildAnOnOffButton) {
    bench.effect().values[8] = 1.0f;
    open(R"(<onoff x="5" y="6" id="8" bitmap_handle="lamp.png"/>)");
    auto& button = only<COnOffButton>();
    EXPECT_EQ(button.getViewSize(), CRect(5, 6, 19, 17)) << "half the picture's height";
    EXPECT_EQ(button.getTag(), 8);
    EXPECT_EQ(button.getListener(), editor);
    EXPECT_EQ(button.getStyle(), 0);
    EXPECT_EQ(sizeOf(button.getBackground()), "14 x 22");
    EXPECT_EQ(button.getValue(), 1.0f);
    EXPECT_EQ(button.getDefaultValue(), 1.0f) << "what it stood at when the window opened";
    EXPECT_EQ(draw().boundsOf(VSTGUI::kGreenCColor), button.getViewSize());
}

TEST_F(Controls, BuildAKickButton) {
    bench.effect().values[8] = 1.0f;
    open(R"(<kick x="5.5" y="6" id="8" bitmap_handle="lamp.png" default="0.5"/>)");
    auto& button = only<CKickButton>();
    EXPECT_EQ(button.getViewSize(), CRect(5, 6, 19, 17));
    EXPECT_EQ(button.getTag(), 8);
    EXPECT_EQ(button.getListener(), editor);
    EXPECT_EQ(sizeOf(button.getBackground()), "14 x 22");
    EXPECT_EQ(button.getValue(), 0.0f) << "it shows no parameter";
    const auto stock = VSTGUI::makeOwned<CKickButton>(CRect(), nullptr, 0, nullptr);
    EXPECT_EQ(button.getDefaultValue(), stock->getDefaultValue());
    EXPECT_EQ(button.getTransparency(), stock->getTransparency());
    EXPECT_EQ(draw().boundsOf(VSTGUI::kRedCColor), button.getViewSize());
}

TEST_F(Controls, MakeAKickButtonTransparentOrNot) {
    open(R"(<kick x="5" y="6" id="8" bitmap_handle="lamp.png" transparent="1"/>)");
    EXPECT_TRUE(only<CKickButton>().getTransparency());
    open(R"(<kick x="5" y="6" id="8" bitmap_handle="lamp.png" transparent="no"/>)");
    EXPECT_FALSE(only<CKickButton>().getTransparency());
}

TEST_F(Controls, HalveAnOddHeightBeforeTheyCutIt) {
    bench.drawPicture("odd.png", 10, 21);
    open(R"(<onoff x="0" y="0.5" id="8" bitmap_handle="odd.png"/>)");
    EXPECT_EQ(only<COnOffButton>().getViewSize(), CRect(0, 0, 10, 11)) << "0.5 + 10.5";
    open(R"(<onoff x="0" y="0" id="8" bitmap_handle="odd.png"/>)");
    EXPECT_EQ(only<COnOffButton>().getViewSize(), CRect(0, 0, 10, 10));
}

// Texts

TEST_F(Controls, BuildADisplayOfAParameter) {
    open(R"(<autodisp x="1" y="2" w="30" h="12" id="40" link="7" style="4" bitmap_bk="plate.png"/>)");
    auto& display = only<controls::CParamDisplayLink>();
    EXPECT_EQ(display.getViewSize(), CRect(1, 2, 31, 14));
    EXPECT_EQ(display.getTag(), 40);
    EXPECT_EQ(display.getLink(), 7);
    EXPECT_EQ(display.getStyle(), 4);
    EXPECT_EQ(sizeOf(display.getBackground()), "31 x 17");
    ASSERT_EQ(editor->displayLinks.count, 1);
    EXPECT_EQ(editor->displayLinks[0], &display);
}

TEST_F(Controls, BuildADisplayOfAParameterFromFewTags) {
    open(R"(<autodisp x="1" y="2" w="30" h="12" id="7" link="7"/>)");
    auto& display = only<controls::CParamDisplayLink>();
    EXPECT_EQ(display.getStyle(), 0);
    EXPECT_EQ(display.getBackground(), nullptr);
}

TEST_F(Controls, LinkADisplayUpToOneBehindTheLastParameter) {
    open(R"(<autodisp x="1" y="2" w="30" h="12" id="7" link="21"/>)");
    EXPECT_EQ(only<controls::CParamDisplayLink>().getLink(), 21);
    draw();
    open(R"(<autodisp x="1" y="2" w="30" h="12" id="7" link="21.9"/>)");
    EXPECT_EQ(only<controls::CParamDisplayLink>().getLink(), 21);
    open(R"(<autodisp x="1" y="2" w="30" h="12" id="7" link="-1"/>)");
    EXPECT_EQ(only<controls::CParamDisplayLink>().getLink(), -1);
    draw();
}

TEST_F(Controls, KeepEveryDisplayOfAParameterInTheirOrder) {
    std::string objects;
    for (int i = 0; i < 40; ++i)
        objects +=
            "<autodisp x=\"0\" y=\"0\" w=\"9\" h=\"9\" id=\"50\" link=\"" + std::to_string(i % 21) + "\"/>";
    open(objects);
    ASSERT_EQ(editor->displayLinks.count, 40);
    for (int i = 0; i < 40; ++i)
        EXPECT_EQ(editor->displayLinks[i], editor->controlAt(static_cast<std::size_t>(i)));
}

TEST_F(Controls, BuildADisplay) {
    open(R"(<display x="1" y="2" w="30" h="12" id="60.7" style="2" bitmap_bk="plate.png"/>)");
    auto& display = only<controls::CDisplay>();
    EXPECT_EQ(display.getViewSize(), CRect(1, 2, 31, 14));
    EXPECT_EQ(display.getTag(), 60);
    EXPECT_EQ(display.getStyle(), 2);
    EXPECT_EQ(sizeOf(display.getBackground()), "31 x 17");
    EXPECT_STREQ(display.getText(), "init");
    EXPECT_EQ(editor->anyDisplay, nullptr);
    EXPECT_EQ(editor->displayLinks.count, 0);
}

TEST_F(Controls, BuildADisplayOfWhatIsBeingTurned) {
    open(R"(<anydisp x="1" y="2" w="30" h="12" bitmap_bk="plate.png" style="2"/>)");
    auto& display = only<controls::CDisplay>();
    EXPECT_EQ(display.getViewSize(), CRect(1, 2, 31, 14));
    EXPECT_EQ(display.getTag(), 980);
    EXPECT_EQ(display.getStyle(), 2);
    EXPECT_EQ(sizeOf(display.getBackground()), "31 x 17");
    EXPECT_EQ(editor->anyDisplay, &display);
}

TEST_F(Controls, GiveTheHintToTheLastDisplayForIt) {
    open(R"(<anydisp x="1" y="2" w="30" h="12"/><anydisp x="1" y="22" w="30" h="12"/>)");
    ASSERT_EQ(editor->controls().size(), 2U);
    EXPECT_EQ(editor->anyDisplay, editor->controlAt(1));
    editor->idle();
    EXPECT_STREQ(editor->anyDisplay->getText(), "Parameter Value");
    EXPECT_STREQ(dynamic_cast<controls::CDisplay&>(*editor->controlAt(0)).getText(), "init");
}

/// The tags for the looks, which all kinds with a text take.
class Looks : public Controls, public testing::WithParamInterface<const char*> {
  protected:
    VSTGUI::CParamDisplay& openWith(const std::string& looks) {
        open(std::string("<") + GetParam() + " x=\"10\" y=\"20\" w=\"30\" h=\"12\" id=\"3\" link=\"3\" " +
             looks + "/>");
        return only<VSTGUI::CParamDisplay>();
    }
};

TEST_P(Looks, AreTheToolkitsWithoutATag) {
    const VSTGUI::SharedPointer<VSTGUI::CParamDisplay> stock =
        VSTGUI::makeOwned<VSTGUI::CParamDisplay>(CRect());
    const auto& text = openWith("");
    EXPECT_EQ(text.getFont(), stock->getFont());
    EXPECT_EQ(text.getHoriAlign(), stock->getHoriAlign());
    EXPECT_EQ(text.getFontColor(), stock->getFontColor());
    EXPECT_EQ(text.getShadowColor(), stock->getShadowColor());
    EXPECT_EQ(text.getBackground(), nullptr);
}

TEST_P(Looks, HaveAFontOfTheStyleAskedFor) {
    const auto& text = openWith(R"(font="1+2.5")");
    EXPECT_EQ(text.getFont()->getName().getString(), "font");
    EXPECT_EQ(text.getFont()->getSize(), 0);
    EXPECT_EQ(text.getFont()->getStyle(), 3);
}

TEST_P(Looks, AlignTheText) {
    EXPECT_EQ(openWith(R"(halign="0")").getHoriAlign(), VSTGUI::kLeftText);
    EXPECT_EQ(openWith(R"(halign="1.9")").getHoriAlign(), VSTGUI::kCenterText);
    EXPECT_EQ(openWith(R"(halign="2")").getHoriAlign(), VSTGUI::kRightText);
}

TEST_P(Looks, ShowWhatLiesUnderTheTextWhateverTransparentSays) {
    for (const char* value : {"yes", "no", "0", ""}) {
        SCOPED_TRACE(value);
        const auto& text = openWith(std::string("bitmap_bk=\"plate.png\" transparent=\"") + value + "\"");
        EXPECT_EQ(text.getBackground(), editor->background);
        EXPECT_EQ(text.getBackOffset(), CPoint(10, 20));
    }
}

TEST_P(Looks, HaveFourColours) {
    const auto& text =
        openWith(R"(fontcolor="FF8001" backcolor="02ff03" framecolor="0405FF" shadowcolor="60708")");
    EXPECT_EQ(text.getFontColor(), CColor(0xFF, 0x80, 0x01));
    EXPECT_EQ(text.getBackColor(), CColor(0x02, 0xFF, 0x03));
    EXPECT_EQ(text.getFrameColor(), CColor(0x04, 0x05, 0xFF));
    EXPECT_EQ(text.getShadowColor(), CColor(0x06, 0x07, 0x08));
}

TEST_P(Looks, HaveColoursOfFullOpacity) {
    EXPECT_EQ(openWith(R"(fontcolor="80112233")").getFontColor(), CColor(0x11, 0x22, 0x33, 0xFF));
}

TEST_P(Looks, TakeColoursAsNumbersAndNotAsExpressions) {
    EXPECT_EQ(openWith(R"(fontcolor="10+20")").getFontColor(), CColor(0, 0, 0x10));
}

TEST_P(Looks, KeepAColourThatCannotBeRead) {
    const VSTGUI::SharedPointer<VSTGUI::CParamDisplay> stock =
        VSTGUI::makeOwned<VSTGUI::CParamDisplay>(CRect());
    for (const char* value : {"#FF0000", "red", "", " "}) {
        SCOPED_TRACE(value);
        EXPECT_EQ(openWith(std::string("fontcolor=\"") + value + "\"").getFontColor(), stock->getFontColor());
    }
}

INSTANTIATE_TEST_SUITE_P(, Looks,
                         testing::Values("autodisp", "display", "anydisp", "optionmenu", "skinselector"),
                         [](const auto& kind) { return kind.param; });

// Menus

class Menus : public Controls {
  protected:
    Titles titles(VSTGUI::COptionMenu& menu) {
        Titles found;
        for (int i = 0; i < menu.getNbEntries(); ++i)
            found.push_back(menu.getEntry(i)->getTitle().getString());
        return found;
    }
};

TEST_F(Menus, AreBuiltFromTheirList) {
    bench.effect().values[8] = 0.3f;
    open(
        R"(<optionmenu x="1" y="2" w="30" h="12" id="8" style="3" bitmap_bk="plate.png" bitmap_bk_active="lamp.png">
              <list><entry>One</entry><other>not me</other><ENTRY>Two &amp; more</ENTRY><entry/></list>
            </optionmenu>)");
    auto& menu = only<skin::SkinMenu>();
    EXPECT_EQ(menu.getViewSize(), CRect(1, 2, 31, 14));
    EXPECT_EQ(menu.getTag(), 8);
    EXPECT_EQ(menu.getListener(), editor);
    EXPECT_EQ(menu.getStyle(), 3);
    EXPECT_EQ(sizeOf(menu.getBackground()), "31 x 17");
    EXPECT_EQ(titles(menu), (Titles{"One", "Two &amp; more", ""}));
    EXPECT_EQ(menu.getValue(), 0.3f * 2.0f) << "stands between two entries";
    ASSERT_EQ(editor->menuIds.count, 1);
    EXPECT_EQ(editor->menuIds[0], 8);
}

TEST_F(Menus, AreNotBoundToWhatIsNoParameter) {
    open(R"(<optionmenu x="1" y="2" w="30" h="12" id="21"><list><entry>One</entry></list></optionmenu>)");
    EXPECT_EQ(editor->menuIds.count, 0);
    EXPECT_EQ(only<skin::SkinMenu>().getValue(), 0.0f);
}

TEST_F(Menus, WithoutAListShowThatTheyNeedAHandler) {
    for (const char* children : {"", "<entry>One</entry><list><entry>Two</entry></list>", "only a text"}) {
        SCOPED_TRACE(children);
        open(std::string(R"(<optionmenu x="1" y="2" w="30" h="12" id="30">)") + children + "</optionmenu>");
        auto& menu = only<skin::SkinMenu>();
        EXPECT_EQ(titles(menu), (Titles{"You", "must", "add", "your", "menu", "handler", "sub"}));
        ASSERT_NE(menu.getSubMenu(6), nullptr);
        EXPECT_EQ(titles(*menu.getSubMenu(6)), (Titles{"Subby", "Subby2"}));
        EXPECT_EQ(menu.getValue(), 0.0f);
    }
}

TEST_F(Menus, WithAnEmptyListHaveNoEntries) {
    open(R"(<optionmenu x="1" y="2" w="30" h="12" id="8"><list><nothing/></list></optionmenu>)");
    EXPECT_EQ(only<skin::SkinMenu>().getNbEntries(), 0);
    EXPECT_EQ(editor->menuIds.count, 1);
    draw();
}

TEST_F(Menus, HaveNoDefault) {
    open(R"(<optionmenu x="1" y="2" w="30" h="12" id="8" default="broken"/>)");
    EXPECT_EQ(only<skin::SkinMenu>().getDefaultValue(),
              VSTGUI::makeOwned<skin::SkinMenu>(CRect(), nullptr, 0)->getDefaultValue());
}

TEST_F(Menus, OfSkinsHaveATagOfTheirOwn) {
    open(
        R"(<skinselector x="1" y="2" w="30" h="12" style="3" bitmap_bk="plate.png" bitmap_bk_active="lamp.png"/>)");
    auto& menu = only<skin::SkinMenu>();
    EXPECT_EQ(menu.getViewSize(), CRect(1, 2, 31, 14));
    EXPECT_EQ(menu.getTag(), 999);
    EXPECT_EQ(menu.getListener(), editor);
    EXPECT_EQ(menu.getStyle(), 3);
    EXPECT_EQ(sizeOf(menu.getBackground()), "31 x 17");
    EXPECT_EQ(titles(menu), (Titles{"Quillon Skin"}));
    EXPECT_EQ(editor->menuIds.count, 0);
}

// Switches

TEST_F(Controls, BuildAVerticalSwitch) {
    bench.effect().values[8] = 0.5f;
    open(R"(<vswitch x="5" y="6" id="8" entries="5" bitmap_handle="film.png" default="0.25"/>)");
    auto& control = only<VSTGUI::CVerticalSwitch>();
    EXPECT_EQ(control.getViewSize(), CRect(5, 6, 25, 27));
    EXPECT_EQ(control.getTag(), 8);
    EXPECT_EQ(control.getListener(), editor);
    EXPECT_EQ(sizeOf(control.getBackground()), "20 x 105");
    EXPECT_EQ(control.getNumSubPixmaps(), 5);
    EXPECT_EQ(control.getHeightOfOneImage(), 21);
    EXPECT_EQ(control.getValue(), 0.5f);
    EXPECT_EQ(control.getDefaultValue(), 0.25f);
    EXPECT_EQ(draw().boundsOf(VSTGUI::kBlueCColor), control.getViewSize());
}

TEST_F(Controls, BuildAHorizontalSwitchFromImagesThatAreStackedToo) {
    bench.effect().values[8] = 1.0f;
    open(R"(<hswitch x="5" y="6" id="8" entries="5" bitmap_handle="film.png"/>)");
    auto& control = only<VSTGUI::CHorizontalSwitch>();
    EXPECT_EQ(control.getViewSize(), CRect(5, 6, 25, 27));
    EXPECT_EQ(control.getNumSubPixmaps(), 5);
    EXPECT_EQ(control.getHeightOfOneImage(), 21);
    EXPECT_EQ(control.getDefaultValue(), 1.0f);
    EXPECT_EQ(draw().boundsOf(VSTGUI::kWhiteCColor), control.getViewSize());
}

TEST_F(Controls, GiveASwitchWithoutEntriesNoUsefulHeight) {
    for (const char* kind : {"vswitch", "hswitch"})
        for (const char* entries : {"0", "-0", "-2", "0.001", "0/0", "1/0"}) {
            SCOPED_TRACE(std::string(kind) + " " + entries);
            open(std::string("<") + kind + R"( x="5" y="6" id="8" bitmap_handle="film.png" entries=")" +
                 entries + "\"/>");
            ASSERT_EQ(editor->controls().size(), 1U);
            for (float value : {0.0f, 0.5f, 1.0f}) {
                editor->controlAt(0)->setValue(value);
                draw();
            }
        }
}

// About

TEST_F(Controls, BuildAnAboutBox) {
    open(R"(<about x="1" y="2" w="150" h="90" bitmap_pop="popped.png"/>)");
    auto& box = only<controls::CAbout>();
    EXPECT_EQ(box.getViewSize(), CRect(1, 2, 151, 92));
    EXPECT_EQ(box.getTag(), 1020);
    EXPECT_EQ(box.getListener(), editor);
    EXPECT_EQ(sizeOf(box.getBackground()), "101 x 51");
    CRect shown;
    EXPECT_EQ(box.getDisplayArea(shown), CRect(49, 24, 150, 75))
        << "(200 - 101) / 2 and (100 - 51) / 2, whole";
    EXPECT_EQ(editor->aboutCount, 1);
    EXPECT_EQ(editor->aboutBoxes[0], &box);
}

TEST_F(Controls, BringAnAboutPictureThatIsLargerThanTheWindowToItsMiddle) {
    bench.drawPicture("large.png", 205, 107);
    open(R"(<about x="1" y="2" w="150" h="90" bitmap_pop="large.png"/>)");
    CRect shown;
    EXPECT_EQ(only<controls::CAbout>().getDisplayArea(shown), CRect(-2, -3, 203, 104));
}

TEST_F(Controls, BuildFurtherAboutBoxesWithoutCredits) {
    std::string objects;
    for (int i = 0; i < 6; ++i)
        objects += R"(<about x="1" y="2" w="15" h="9" bitmap_pop="popped.png"/>)";
    open(objects);
    ASSERT_EQ(editor->controls().size(), 6U);
    EXPECT_EQ(editor->aboutCount, 6);
    for (int i = 0; i < 6; ++i) {
        VSTGUI::CControl* const box = editor->controlAt(static_cast<std::size_t>(i));
        EXPECT_EQ(box->getTag(), 1020 + i);
        EXPECT_NE(dynamic_cast<VSTGUI::CSplashScreen*>(box), nullptr);
        EXPECT_EQ(dynamic_cast<controls::CAbout*>(box) != nullptr, i == 0) << i;
    }
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(editor->aboutBoxes[i], editor->controlAt(static_cast<std::size_t>(i))) << "room for four";
}

TEST_F(Controls, CountAboutBoxesAnewInEachWindow) {
    open(R"(<about x="1" y="2" w="15" h="9" bitmap_pop="popped.png"/>)");
    editor->close();
    editor->open(nullptr);
    EXPECT_EQ(only<controls::CAbout>().getTag(), 1020);
}

// Meter

TEST_F(Controls, BuildAMeterThatStaysAtRest) {
    bench.effect().values[0] = 1.0f;
    open(R"(<vumeter x="5" y="6" id="0" leds="12" style="2" bitmap_off="off.png" bitmap_on="on.png"/>
            <knob x="30" y="40" w="20" h="20" id="0"/>)");
    auto* const meter = dynamic_cast<CVuMeter*>(editor->controlAt(0));
    ASSERT_NE(meter, nullptr);
    EXPECT_EQ(meter->getViewSize(), CRect(5, 6, 16, 46)) << "as large as its lit picture";
    EXPECT_EQ(sizeOf(meter->getOnBitmap()), "11 x 40");
    EXPECT_EQ(sizeOf(meter->getOffBitmap()), "10 x 41");
    EXPECT_EQ(meter->getNbLed(), 12);
    EXPECT_EQ(meter->getStyle(), 2);
    EXPECT_EQ(meter->getListener(), nullptr);
    EXPECT_EQ(editor->controlOf(0), editor->controlAt(1)) << "it is not the control of a parameter";

    editor->setParameter(0, 0.5f);
    EXPECT_EQ(meter->getValue(), 0.0f);
    EXPECT_EQ(editor->controlAt(1)->getValue(), 0.5f);
    editor->setParameter(-1, 0.0f);
    editor->setParameter(skin::kRefreshAll, static_cast<float>(skin::kRefreshAll));
    EXPECT_EQ(meter->getValue(), 0.0f);
}

TEST_F(Controls, SurviveAMeterWithoutLamps) {
    for (const char* lamps : {"0", "-3", "1/0"}) {
        SCOPED_TRACE(lamps);
        open(std::string(
                 R"(<vumeter x="5" y="6" id="0" style="1" bitmap_off="off.png" bitmap_on="on.png" leds=")") +
             lamps + "\"/>");
        only<CVuMeter>().setValue(0.5f);
        draw();
    }
}

// Links

TEST_F(Controls, LinkOneToAnother) {
    open(R"(<update src="3" dst="1+40"/><update SRC="-7.9" DST="41.9"/>)");
    ASSERT_EQ(editor->updateLinks.count, 2);
    EXPECT_EQ(editor->updateLinks[0].src, 3);
    EXPECT_EQ(editor->updateLinks[0].dst, 41);
    EXPECT_EQ(editor->updateLinks[1].src, -7);
    EXPECT_EQ(editor->updateLinks[1].dst, 41);
    EXPECT_TRUE(editor->controls().empty()) << "nothing to be seen";
}

TEST_F(Controls, MayBeLinkedBeforeThereIsAWindow) {
    openAlone(R"(<update src="3" dst="4"/>)");
    EXPECT_EQ(editor->updateLinks.count, 1);
}

// All kinds

TEST_F(Controls, StandInTheOrderOfTheFileTheLaterAboveTheEarlier) {
    open(R"(<knob x="10" y="10" w="20" h="21" id="2" stackbmp="y" bitmap_handle="film.png"/>
            <onoff x="12" y="12" id="3" bitmap_handle="lamp.png"/>)");
    bench.effect().values[3] = 1.0f;
    EXPECT_EQ(editor->controlAt(0)->getTag(), 2);
    EXPECT_EQ(editor->controlAt(1)->getTag(), 3);
    editor->controlAt(1)->setValue(1.0f);
    const auto picture = draw();
    EXPECT_EQ(picture.pixel(11, 11), VSTGUI::kRedCColor);
    EXPECT_EQ(picture.pixel(13, 13), VSTGUI::kGreenCColor);
}

TEST_F(Controls, PassOverObjectsThatNobodyKnows) {
    open(
        R"(<unknown x="broken"/><list><entry>One</entry></list><GUI/><display x="0" y="0" w="9" h="9" id="1"/>)");
    EXPECT_EQ(editor->controls().size(), 1U);
}

TEST_F(Controls, TakeAnIdThatIsNoParameterForATagAlone) {
    open(R"(<knob x="0" y="0" w="9" h="9" id="21" default="0.5"/><knob x="0" y="0" w="9" h="9" id="5000"/>)");
    EXPECT_EQ(editor->controlAt(0)->getTag(), 21);
    EXPECT_EQ(editor->controlAt(0)->getValue(), 0.0f);
    EXPECT_EQ(editor->controlAt(0)->getDefaultValue(), 0.5f);
    EXPECT_EQ(editor->controlAt(1)->getTag(), 5000);
}

TEST_F(Controls, GoBackToADefaultAtControlAndClickOnlyIfTheyHaveOne) {
    open(R"(<slider x="0" y="0" len="50" id="2" style="1" bitmap_handle="handle.png"/>
            <knob x="0" y="0" w="9" h="9" id="3"/>
            <knob x="0" y="0" w="20" h="21" id="4" stackbmp="y" bitmap_handle="film.png"/>
            <onoff x="0" y="0" id="5" bitmap_handle="lamp.png"/>
            <vswitch x="0" y="0" id="6" entries="2" bitmap_handle="lamp.png"/>
            <hswitch x="0" y="0" id="7" entries="2" bitmap_handle="lamp.png"/>
            <autodisp x="0" y="0" w="9" h="9" id="8" link="8"/>
            <display x="0" y="0" w="9" h="9" id="9"/>
            <anydisp x="0" y="0" w="9" h="9"/>
            <optionmenu x="0" y="0" w="9" h="9" id="10"/>
            <skinselector x="0" y="0" w="9" h="9"/>
            <kick x="0" y="0" id="11" bitmap_handle="lamp.png"/>
            <about x="0" y="0" w="9" h="9" bitmap_pop="popped.png"/>
            <about x="0" y="0" w="9" h="9" bitmap_pop="popped.png"/>
            <vumeter x="0" y="0" id="12" leds="3" style="1" bitmap_off="off.png" bitmap_on="on.png"/>)");
    const auto all = editor->controls();
    ASSERT_EQ(all.size(), 15u);
    for (std::size_t i = 0; i < all.size(); ++i) {
        VSTGUI::MouseDownEvent press({1, 1}, VSTGUI::MouseButton::Left);
        EXPECT_FALSE(VSTGUI::CControl::CheckDefaultValueEventFunc(all[i], press)) << i;
        press.modifiers.add(VSTGUI::ModifierKey::Control);
        EXPECT_EQ(VSTGUI::CControl::CheckDefaultValueEventFunc(all[i], press), i < 6) << i;
        press.modifiers.add(VSTGUI::ModifierKey::Shift);
        EXPECT_FALSE(VSTGUI::CControl::CheckDefaultValueEventFunc(all[i], press)) << i;
    }
}

TEST_F(Controls, CutEachSideAfterTheAddition) {
    open(R"(<knob x="1.5" y="-1.5" w="1.5" h="3.4" id="2"/>)");
    EXPECT_EQ(only<CKnob>().getViewSize(), CRect(1, -1, 3, 1));
}

TEST_F(Controls, LetGoOfTheirPicturesWithTheWindow) {
    open(R"(<knob x="0" y="0" w="9" h="9" id="2" bitmap_handle="handle.png"/>)");
    const auto handle = VSTGUI::shared(only<CKnob>().getHandleBitmap());
    EXPECT_EQ(handle->getNbReference(), 2) << "the control's and this test's";
    editor->close();
    EXPECT_EQ(handle->getNbReference(), 1);
}

} // namespace
