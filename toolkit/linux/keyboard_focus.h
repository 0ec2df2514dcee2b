// Gives the keyboard back to whoever had it. The toolkit takes it with each press that a view uses and drops
// every key that no view wants, so that a host would hear neither the space bar nor Ctrl and S once a knob
// has been turned.
#pragma once

#include "vstgui/lib/cframe.h"
#include "vstgui/lib/events.h"

#include <cstdint>

namespace toolkit {

/// Watches a frame for presses. On the window thread.
class KeyboardFocus final : public VSTGUI::IMouseObserver {
  public:
    /// Gives the keyboard back once no button of `held` is down and no menu, which has a use for it, is open.
    void giveBack(const VSTGUI::CFrame& frame, const VSTGUI::MouseEventButtonState& held);

    void onMouseEntered(VSTGUI::CView*, VSTGUI::CFrame*) override {}
    void onMouseExited(VSTGUI::CView*, VSTGUI::CFrame*) override {}
    void onMouseEvent(VSTGUI::MouseEvent& event, VSTGUI::CFrame* frame) override;

  private:
    bool isTaken_ = false;    ///< by a press, and not given back
    std::uint32_t owner_ = 0; ///< the window that had the keyboard before
    std::uint8_t revert_ = 0; ///< what was to have it after that window
};

} // namespace toolkit
