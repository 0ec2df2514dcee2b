// Which mouse buttons are held. On X11 the toolkit cannot be asked, and what it says in passing is half the
// truth: a press or release names its own button alone, and a motion takes the middle for the right one.
#pragma once

#include "vstgui/lib/cframe.h"
#include "vstgui/lib/events.h"

namespace toolkit {

/// Watches a frame, and puts the state in each event right before any view sees it: a press and a motion
/// carry all held buttons, a release those held before it.
class MouseButtons final : public VSTGUI::IMouseObserver {
  public:
    const VSTGUI::MouseEventButtonState& held() const { return held_; }

    void onMouseEntered(VSTGUI::CView*, VSTGUI::CFrame*) override {}
    void onMouseExited(VSTGUI::CView*, VSTGUI::CFrame*) override {}
    void onMouseEvent(VSTGUI::MouseEvent& event, VSTGUI::CFrame* frame) override;

  private:
    VSTGUI::MouseEventButtonState held_;
};

} // namespace toolkit
