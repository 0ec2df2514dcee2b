// The about box: a picture in the middle of the window with the product's name and credits on it. A left
// click on the about area opens it, a left click anywhere closes it again.
#pragma once

#include "vstgui/lib/controls/csplashscreen.h"

#include <cstdint>

namespace controls {

/// The clickable area; open while its value is not 0. The toolkit's splash screen would show the picture
/// alone, in a modal view that covers whatever the area itself draws; here that view shows the credits too.
/// On the window thread.
class CAbout final : public VSTGUI::CSplashScreen {
  public:
    /// `size` is the clickable area, whose width and height alone place the credits (see draw()), `toDisplay`
    /// the place of the picture in the window, `offset` the part of the picture shown there.
    CAbout(const VSTGUI::CRect& size, VSTGUI::IControlListener* listener, std::int32_t tag,
           VSTGUI::CBitmap* picture, const VSTGUI::CRect& toDisplay,
           const VSTGUI::CPoint& offset = VSTGUI::CPoint(0, 0));

    /// The credits, if the box is open. They stand upwards from the area's height, counted from the top of
    /// the window: an area less than 160 pixels high loses lines there.
    void draw(VSTGUI::CDrawContext* context) override;

    /// Leaves it to the open box to draw the credits, which twice on one another would be bolder.
    void drawRect(VSTGUI::CDrawContext* context, const VSTGUI::CRect& updateRect) override;
    VSTGUI::CBaseObject* newCopy() const override;
};

} // namespace controls
