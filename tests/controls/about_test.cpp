// The about box: where its lines stand, and how it opens and closes.
#include "controls/about.h"

#include "controls/default_values.h"
#include "recorded_toolkit.h"

#include "vstgui/lib/cbitmap.h"
#include "vstgui/lib/cdrawcontext.h"

#include <cmath>

#include <gtest/gtest.h>

namespace {

using controls::CAbout;
using test::both;
using test::Drawing;
using test::Listener;
using test::RecordedFrame;
using VSTGUI::CColor;
using VSTGUI::CPoint;
using VSTGUI::CRect;
using VSTGUI::MouseButton;

/// Writes down where it is drawn, as a box that is filled with black.
class Picture final : public VSTGUI::CBitmap {
  public:
    Picture() = default;
    void draw(VSTGUI::CDrawContext* context, const CRect& rect, const CPoint& offset, float) override {
        context->setFillColor(VSTGUI::kBlackCColor);
        context->drawRect(rect, VSTGUI::kDrawFilled);
        offsets.push_back(offset);
    }

    std::vector<CPoint> offsets;
};

/// An about area of 300 by 200 at (15, 25) in a window of 400 by 300 with a picture of 194 by 100 in its
/// middle.
class About : public testing::Test {
  protected:
    About() {
        controls::resetOnlyControlsWithDefault();
        area = addArea(CRect(15, 25, 315, 225));
    }

    CAbout* addArea(const CRect& size) {
        return frame.add(new CAbout(size, &listener, 1020, picture, place, CPoint(3, 4)));
    }
    bool click(MouseButton button = MouseButton::Left, VSTGUI::Modifiers keys = VSTGUI::Modifiers()) {
        return frame.click(CPoint(20, 30), button, keys);
    }
    bool isOpen() const { return frame->getModalView() != nullptr; }

    // The list of reports outlives the frame, and the frame the picture.
    Listener listener;
    RecordedFrame frame{CRect(0, 0, 400, 300)};
    VSTGUI::SharedPointer<Picture> picture = VSTGUI::makeOwned<Picture>();
    const CRect place{103, 100, 297, 200};
    CAbout* area = nullptr;
};

TEST_F(About, TakesEverythingFromItsMaker) {
    EXPECT_EQ(area->getTag(), 1020);
    EXPECT_EQ(area->getListener(), &listener);
    EXPECT_EQ(area->getBackground(), picture);
    CRect display;
    EXPECT_EQ(area->getDisplayArea(display), place);
    EXPECT_EQ(area->getViewSize(), CRect(15, 25, 315, 225));
}

TEST_F(About, DrawsNothingWhileItIsClosed) {
    area->setDirty(true);
    EXPECT_TRUE(test::drawingOf(*area).order.empty());
    EXPECT_TRUE(area->isDirty()) << "and takes no notice of the flag";
    area->setDirty(false);
    EXPECT_TRUE(test::drawingOf(*area).order.empty());
}

TEST_F(About, StandsItsLinesUpwardsFromItsHeight) {
    click();
    const Drawing drawing = test::drawingOf(*area);
    ASSERT_EQ(drawing.texts.size(), 6u);
    // 200 high: from 40 to 55, from 60 to 75, and so on.
    const double middles[] = {47.5, 67.5, 102.5, 127.5, 152.5, 169.5};
    // 300 wide: moved 52 pixels to the left of the picture.
    for (std::size_t i = 0; i < 6; ++i)
        EXPECT_EQ(drawing.texts[i].centre, CPoint(103 - 52 + 150, middles[i])) << drawing.texts[i].text;
}

TEST_F(About, CutsItsShiftTowardZero) {
    for (double width : {1.0, 5.0, 6.0, 57.0, 399.0}) {
        CAbout* other = addArea(CRect(0, 0, width, 200));
        other->setValue(1);
        const double left = 103 - std::floor(width * 0.17543860236179962);
        EXPECT_EQ(test::drawingOf(*other).texts[0].centre.x, left + width / 2);
    }
}

TEST_F(About, NamesTheProductItsVersionAndItsMakers) {
    click();
    const std::vector<std::string> words = test::drawingOf(*area).words();
    ASSERT_EQ(words.size(), 6u);
    EXPECT_EQ(words.front(), "Quillon Multitap Delay 1.0");
    EXPECT_EQ(words.back(), "VST Plug-In Technology by Steinberg");
    const char* topics[] = {"DSP code", "Skinnable GUI system", "GUI design and graphics", "Presets"};
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_NE(words[i + 1].find(topics[i]), std::string::npos) << words[i + 1];
}

TEST_F(About, WritesInSmallWhiteItalics) {
    click();
    for (const test::Text& text : test::drawingOf(*area).texts) {
        EXPECT_EQ(text.font, "Arial 10");
        EXPECT_EQ(text.style, VSTGUI::kItalicFace);
        EXPECT_EQ(text.colour, CColor(0xFF, 0xFF, 0xFF, 0xFF));
        EXPECT_TRUE(text.antialiased);
    }
}

TEST_F(About, IsCleanWhenItHasBeenDrawnOpen) {
    click();
    area->setDirty(true);
    test::drawingOf(*area);
    EXPECT_FALSE(area->isDirty());
}

TEST_F(About, LosesItsLinesAboveTheWindowWhenItsAreaIsLow) {
    CAbout* low = addArea(CRect(0, 0, 300, 20));
    low->setValue(1);
    for (const test::Text& text : test::drawingOf(*low).texts)
        EXPECT_LT(text.centre.y, 0);
}

TEST_F(About, ShowsItsLinesOnItsPictureInTheModalView) {
    ASSERT_TRUE(click());
    ASSERT_TRUE(isOpen());
    VSTGUI::CView& box = *frame->getModalView();
    const Drawing drawing = test::drawingOf(box);
    const std::vector<std::string> expected = {"box", "text", "text", "text", "text", "text", "text"};
    EXPECT_EQ(drawing.order, expected);
    EXPECT_EQ(drawing.boxes[0].area, place);
    EXPECT_EQ(picture->offsets, std::vector<CPoint>{CPoint(3, 4)});
    EXPECT_EQ(drawing.words(), test::drawingOf(*area).words());
    EXPECT_FALSE(box.isDirty());
}

TEST_F(About, DrawsItsLinesOnceInTheWholeWindow) {
    click();
    EXPECT_EQ(test::drawingOf(*frame.get()).texts.size(), 6u);
    frame.click(CPoint(200, 150), MouseButton::Left);
    EXPECT_TRUE(test::drawingOf(*frame.get()).texts.empty());
    area->setValue(1);
    EXPECT_EQ(test::drawingOf(*frame.get()).texts.size(), 6u) << "also if nobody has opened a box";
}

TEST_F(About, HasRoomForThePictureAndForEveryLine) {
    click();
    const CRect box = frame->getModalView()->getViewSize();
    for (const CRect& part : {place, CRect(51, 40, 351, 177)}) {
        EXPECT_LE(box.left, part.left);
        EXPECT_LE(box.top, part.top);
        EXPECT_GE(box.right, part.right);
        EXPECT_GE(box.bottom, part.bottom);
    }
}

TEST_F(About, OpensAndClosesWithALeftClick) {
    for (int round = 0; round < 3; ++round) {
        EXPECT_TRUE(click());
        EXPECT_TRUE(isOpen());
        EXPECT_EQ(area->getValue(), 1);
        EXPECT_TRUE(frame.click(CPoint(200, 150), MouseButton::Left));
        EXPECT_FALSE(isOpen());
        EXPECT_EQ(area->getValue(), 0);
    }
    EXPECT_EQ(listener.reports.size(), 6u);
}

TEST_F(About, ClosesWhereverTheClickIs) {
    click();
    EXPECT_TRUE(frame.click(CPoint(1, 299), MouseButton::Left));
    EXPECT_FALSE(isOpen());
}

TEST_F(About, IsNotForOtherButtons) {
    for (MouseButton button : {MouseButton::Right, MouseButton::Middle, MouseButton::Fourth}) {
        EXPECT_FALSE(click(button));
        EXPECT_FALSE(isOpen());
    }
    EXPECT_FALSE(frame.press(CPoint(20, 30), both(MouseButton::Left, MouseButton::Right)));
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(area->getValue(), 0);
}

TEST_F(About, StaysOpenAtARightClick) {
    click();
    frame.click(CPoint(200, 150), MouseButton::Right);
    EXPECT_TRUE(isOpen());
}

TEST_F(About, OpensAndClosesWithAnyKeyHeld) {
    for (VSTGUI::ModifierKey key :
         {VSTGUI::ModifierKey::Control, VSTGUI::ModifierKey::Alt, VSTGUI::ModifierKey::Shift})
        for (int round = 0; round < 2; ++round) {
            EXPECT_TRUE(click(MouseButton::Left, VSTGUI::Modifiers(key)));
            EXPECT_TRUE(isOpen());
            EXPECT_EQ(area->getValue(), 1);
            EXPECT_TRUE(frame.click(CPoint(200, 150), MouseButton::Left, VSTGUI::Modifiers(key)));
            EXPECT_FALSE(isOpen());
        }
}

TEST_F(About, OpensWithoutAPicture) {
    CAbout* plain = frame.add(new CAbout(CRect(350, 0, 360, 200), &listener, 1021, nullptr, place));
    frame.click(CPoint(355, 5), MouseButton::Left);
    ASSERT_EQ(plain->getValue(), 1);
    EXPECT_EQ(test::drawingOf(*frame->getModalView()).texts.size(), 6u);
}

TEST_F(About, MayGoWithItsWindowWhileItIsOpen) {
    click();
    ASSERT_TRUE(isOpen());
    frame.close();
}

TEST_F(About, CopiesWithABoxOfItsOwn) {
    RecordedFrame otherFrame(CRect(0, 0, 400, 300));
    auto* copy = dynamic_cast<CAbout*>(area->newCopy());
    ASSERT_NE(copy, nullptr);
    otherFrame.add(copy);
    otherFrame.click(CPoint(20, 30), MouseButton::Left);
    EXPECT_EQ(copy->getValue(), 1);
    EXPECT_EQ(area->getValue(), 0);
    ASSERT_NE(otherFrame->getModalView(), nullptr);
    EXPECT_EQ(test::drawingOf(*otherFrame->getModalView()).order.size(), 7u);
    otherFrame.click(CPoint(200, 150), MouseButton::Left);
    EXPECT_EQ(copy->getValue(), 0);
}

TEST_F(About, FurtherBoxesShowTheirPictureAlone) {
    frame.add(new VSTGUI::CSplashScreen(CRect(350, 0, 390, 200), &listener, 1021, picture, place));
    frame.click(CPoint(355, 5), MouseButton::Left);
    ASSERT_TRUE(isOpen());
    EXPECT_EQ(test::drawingOf(*frame->getModalView()).order, std::vector<std::string>{"box"});
}

} // namespace
