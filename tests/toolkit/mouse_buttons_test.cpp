#include "toolkit/linux/mouse_buttons.h"

#include "toolkit/toolkit.h"

#include <gtest/gtest.h>

namespace {

using VSTGUI::MouseButton;
using VSTGUI::MouseEventButtonState;

MouseEventButtonState both(MouseButton one, MouseButton other) {
    MouseEventButtonState state(one);
    state.add(other);
    return state;
}

/// The state that views see, after the toolkit has said `state`.
template <typename Event>
MouseEventButtonState seen(toolkit::MouseButtons& buttons, MouseEventButtonState state) {
    Event event;
    event.buttonState = state;
    buttons.onMouseEvent(event, nullptr);
    EXPECT_FALSE(event.consumed);
    return event.buttonState;
}

using Down = VSTGUI::MouseDownEvent;
using Up = VSTGUI::MouseUpEvent;
using Move = VSTGUI::MouseMoveEvent;

class MouseButtons : public testing::Test {
  protected:
    toolkit::Toolkit toolkit;
    toolkit::MouseButtons buttons;
};

TEST_F(MouseButtons, AreHeldFromThePressToTheRelease) {
    EXPECT_TRUE(buttons.held().empty());
    EXPECT_TRUE(seen<Down>(buttons, MouseButton::Left).isLeft());
    EXPECT_TRUE(buttons.held().isLeft());
    EXPECT_TRUE(seen<Move>(buttons, MouseButton::Left).isLeft());
    EXPECT_TRUE(buttons.held().isLeft());
    EXPECT_TRUE(seen<Up>(buttons, MouseButton::Left).isLeft()) << "a release names the released button";
    EXPECT_TRUE(buttons.held().empty());
}

TEST_F(MouseButtons, TellMiddleAndRightApartInMotion) {
    seen<Down>(buttons, MouseButton::Right);
    EXPECT_TRUE(seen<Move>(buttons, MouseButton::Middle).isRight());
    EXPECT_TRUE(buttons.held().isRight());
    seen<Up>(buttons, MouseButton::Right);
    seen<Down>(buttons, MouseButton::Middle);
    EXPECT_TRUE(seen<Move>(buttons, MouseButton::Right).isMiddle());
}

TEST_F(MouseButtons, AreAllNamedInAPress) {
    seen<Down>(buttons, MouseButton::Left);
    const auto state = seen<Down>(buttons, MouseButton::Right);
    EXPECT_EQ(state, both(MouseButton::Left, MouseButton::Right));
    EXPECT_FALSE(state.isRight()) << "not the right one alone";
}

TEST_F(MouseButtons, StayHeldWhenAnotherIsReleased) {
    seen<Down>(buttons, MouseButton::Left);
    seen<Down>(buttons, MouseButton::Right);
    EXPECT_EQ(seen<Up>(buttons, MouseButton::Right), both(MouseButton::Left, MouseButton::Right));
    EXPECT_TRUE(buttons.held().isLeft());
}

TEST_F(MouseButtons, AreForgottenWhenAMotionKnowsOfTheRelease) {
    seen<Down>(buttons, MouseButton::Left);
    EXPECT_TRUE(seen<Move>(buttons, {}).empty());
    EXPECT_TRUE(buttons.held().empty());
}

TEST_F(MouseButtons, IgnoreEventsWithoutButtons) {
    seen<Down>(buttons, MouseButton::Left);
    seen<VSTGUI::MouseExitEvent>(buttons, {});
    EXPECT_TRUE(buttons.held().isLeft());
}

} // namespace
