// Makes the toolkit's menus follow the hand. On X11 a menu is a view in the window, modal, which fades out
// before it gives its answer and takes every press meanwhile, and closes at the release of the very press
// that has opened it.
#pragma once

#include "vstgui/lib/cframe.h"
#include "vstgui/lib/events.h"

namespace toolkit {

/// Watches a frame. A menu that has been answered or left is gone when the event is over, its answer given; a
/// click keeps it open however long it takes. On the window thread.
class MenuEvents final : public VSTGUI::IMouseObserver, public VSTGUI::IKeyboardHook {
  public:
    /// To be called once the frame is open, until which it has no menus.
    static void switchFadingOff(VSTGUI::CFrame& frame);

    void watch(VSTGUI::CFrame& frame);
    void leave(VSTGUI::CFrame& frame);

    void onMouseEntered(VSTGUI::CView*, VSTGUI::CFrame*) override {}
    void onMouseExited(VSTGUI::CView*, VSTGUI::CFrame*) override {}
    void onMouseEvent(VSTGUI::MouseEvent& event, VSTGUI::CFrame* frame) override;
    void onKeyboardEvent(VSTGUI::KeyboardEvent& event, VSTGUI::CFrame* frame) override;

  private:
    bool endsOpeningClick(const VSTGUI::MouseEvent& release, const VSTGUI::CFrame& frame) const;

    VSTGUI::CPoint pressPlace_;
    VSTGUI::CView* modalViewAtPress_ = nullptr; ///< only compared with
};

} // namespace toolkit
