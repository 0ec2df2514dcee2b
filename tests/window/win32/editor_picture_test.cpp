// What the editor looks like on Windows, and how that changes under the hand.
#include "support/shown_editor.h"
#include "support/wine.h"

#include <algorithm>
#include <tuple>

namespace {

using namespace test;

// The parameters of the controls in the skin, and of the picture.
constexpr std::int32_t kTaps = 1, kHorizontal = 14;

const bool areFontsNamed = nameFontsUnderWine();

using DrawnEditor = EditorOnScreen;

TEST_F(DrawnEditor, IsDrawn) {
    auto& editor = showLifted();
    EXPECT_EQ(editor.pixel(kSkinWidth - 1, kSkinHeight - 1), kGrey);
    editor.plugin().setParameter(kHorizontal, 1.0f);
    EXPECT_TRUE(editor.showsPixel(165, 18, 0xFF8000));
    editor.plugin().setParameter(kHorizontal, 0.0f);
    EXPECT_TRUE(editor.showsPixel(65, 18, 0xFF8000));
}

// One change of a parameter draws many controls anew in one turn, each in a rectangle of its own.
TEST_F(DrawnEditor, DrawsSeveralPartsAnewInOneTurn) {
    auto& editor = showLifted();
    editor.serveAll();
    editor.plugin().setParameter(kTaps, 0.05f);
    for (const auto& [x, y, colour] :
         {std::tuple(245, 18, Pixel{0x00FF00}), std::tuple(270, 18, Pixel{0x00FF00}),
          std::tuple(80, 18, kGrey), std::tuple(18, 45, kGrey)})
        EXPECT_TRUE(editor.showsPixel(x, y, colour)) << x << ", " << y;
}

TEST_F(DrawnEditor, ShowsInTheHintLineWhatIsDragged) {
    auto& editor = showLifted();
    const auto hint = [&] { return editor.part(10, 215, 200, 18); };
    ASSERT_TRUE(editor.serveUntil([&] {
        return std::ranges::any_of(hint(), [](Pixel pixel) { return pixel != kGrey; });
    })) << "the resting text";
    editor.serveAll();
    const auto resting = hint();
    editor.point(30, 30);
    editor.press(Button::left);
    EXPECT_TRUE(editor.changes(resting, 10, 215, 200, 18));
    editor.release(Button::left);
    EXPECT_TRUE(editor.serveUntil([&] { return hint() == resting; }));
}

TEST_F(DrawnEditor, TurnsThePagesOfHelpByRightClicks) {
    auto& editor = showLifted();
    editor.serveAll();
    const auto page = [&] { return editor.part(10, 110, 200, 60); };
    const auto picture = page();
    editor.postClick(100, 140, Button::right);
    ASSERT_TRUE(editor.changes(picture, 10, 110, 200, 60));
    editor.serveAll();
    const auto firstPage = page();
    editor.postClick(100, 140, Button::right);
    ASSERT_TRUE(editor.changes(firstPage, 10, 110, 200, 60));
    editor.postClick(100, 140);
    EXPECT_TRUE(editor.serveUntil([&] { return page() == picture; }));
}

TEST_F(DrawnEditor, DrawsTheEchoesAnewWhenThePatternChanges) {
    auto& editor = showLifted();
    editor.plugin().setParameter(kTaps, 0.05f);
    editor.serveAll();
    const auto before = editor.part(10, 110, 200, 60);
    editor.plugin().setParameter(kTaps, 0.2f);
    EXPECT_TRUE(editor.changes(before, 10, 110, 200, 60));
}

TEST_F(DrawnEditor, OpensTheAboutBoxByAClickAndClosesItByAnother) {
    auto& editor = showLifted();
    const int x = kSkinWidth / 2 - 48, y = kSkinHeight / 2 + 28;
    const Pixel before = editor.pixel(x, y);
    editor.postClick(270, 180, Button::right);
    editor.serveAll();
    EXPECT_EQ(editor.pixel(x, y), before) << "a right click does not open it";
    editor.postClick(270, 180);
    EXPECT_TRUE(editor.showsPixel(x, y, kAboutBlue));
    editor.postClick(x, y);
    EXPECT_TRUE(editor.showsPixel(x, y, before));
}

} // namespace
