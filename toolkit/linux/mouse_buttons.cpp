#include "mouse_buttons.h"

#include <array>

namespace toolkit {

using VSTGUI::EventType;
using VSTGUI::MouseButton;
using VSTGUI::MouseEventButtonState;

namespace {

constexpr std::array kButtons = {MouseButton::Left, MouseButton::Middle, MouseButton::Right};

MouseEventButtonState joined(MouseEventButtonState state, const MouseEventButtonState& more) {
    for (MouseButton button : kButtons)
        if (more.has(button))
            state.add(button);
    return state;
}

MouseEventButtonState without(const MouseEventButtonState& state, const MouseEventButtonState& less) {
    MouseEventButtonState rest;
    for (MouseButton button : kButtons)
        if (state.has(button) && !less.has(button))
            rest.add(button);
    return rest;
}

MouseEventButtonState middleAndRightSwapped(const MouseEventButtonState& state) {
    MouseEventButtonState swapped = without(state, joined(MouseButton::Middle, MouseButton::Right));
    if (state.has(MouseButton::Middle))
        swapped.add(MouseButton::Right);
    if (state.has(MouseButton::Right))
        swapped.add(MouseButton::Middle);
    return swapped;
}

} // namespace

void MouseButtons::onMouseEvent(VSTGUI::MouseEvent& event, VSTGUI::CFrame*) {
    switch (event.type) {
    case EventType::MouseDown:
        held_ = joined(held_, event.buttonState);
        event.buttonState = held_;
        break;
    case EventType::MouseUp: {
        const MouseEventButtonState released = event.buttonState;
        event.buttonState = joined(held_, released);
        held_ = without(held_, released);
        break;
    }
    case EventType::MouseMove:
        // The server's own count, which also knows of a release that never reached us.
        held_ = middleAndRightSwapped(event.buttonState);
        event.buttonState = held_;
        break;
    default:
        break;
    }
}

} // namespace toolkit
