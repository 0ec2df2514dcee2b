// What a window looks like, without a window: views drawn into a picture that can be looked at.
#pragma once

#include "vstgui/lib/cbitmap.h"
#include "vstgui/lib/cframe.h"

#include <string>

namespace test {

/// The size of a bitmap as "width x height", by which tests tell pictures apart; "none" for null.
std::string sizeOf(const VSTGUI::CBitmap* bitmap);

/// A frame with all its views, as it looks at the moment of construction.
class DrawnFrame {
  public:
    explicit DrawnFrame(VSTGUI::CFrame& frame);

    VSTGUI::CColor pixel(int x, int y) const;
    /// The place of the pixels that have this colour; empty if none has.
    VSTGUI::CRect boundsOf(const VSTGUI::CColor& colour) const;

  private:
    VSTGUI::SharedPointer<VSTGUI::CBitmap> picture_;
};

} // namespace test
