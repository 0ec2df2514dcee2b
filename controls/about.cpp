#include "controls/about.h"

#include "vstgui/lib/cbitmap.h"
#include "vstgui/lib/cdrawcontext.h"
#include "vstgui/lib/cfont.h"

#include <cmath>

namespace controls {

using VSTGUI::CBitmap;
using VSTGUI::CButtonState;
using VSTGUI::CControl;
using VSTGUI::CCoord;
using VSTGUI::CDrawContext;
using VSTGUI::CMouseEventResult;
using VSTGUI::CPoint;
using VSTGUI::CRect;

namespace {

/// A line of the credits; top and bottom count upwards from the height of the clickable area.
struct Credit {
    CCoord top;
    CCoord bottom;
    const char* text;
};

constexpr Credit kCredits[] = {
    {160, 145, "Quillon Multitap Delay 1.0"},
    {140, 125, "Plug-in design and DSP code by Quillon Software"},
    {105, 90, "Skinnable GUI system by Quillon Software"},
    {80, 65, "GUI design and graphics by Quillon Software"},
    {55, 40, "Presets by Quillon Software"},
    {38, 23, "VST Plug-In Technology by Steinberg"},
};

/// Where the credits are drawn, in the window's coordinates. The clickable area is meant to be half as wide
/// again as the picture; the shift then brings the middle of the one over the middle of the other.
CRect creditsArea(const CRect& clickable, const CRect& toDisplay) {
    const CCoord left = toDisplay.left - std::trunc(clickable.getWidth() * 0.17543860236179962);
    const CCoord height = clickable.getHeight();
    return {left, height - kCredits[0].top, left + clickable.getWidth(),
            height - std::end(kCredits)[-1].bottom};
}

/// A tag that is no parameter's, so that no hint is given for one while the box is open.
constexpr std::int32_t kNoParameter = -1;

/// What covers the window while the box is open. Closes it at a left click, wherever.
class OpenBox final : public CControl {
  public:
    OpenBox(CAbout& about, CBitmap* picture, const CRect& toDisplay, const CPoint& offset)
        : CControl(creditsArea(about.getViewSize(), toDisplay), &about, kNoParameter), about_(about),
          toDisplay_(toDisplay), offset_(offset) {
        // Both the picture and the credits are to be seen, even of a skin that lets the one stick out.
        setViewSize(CRect(getViewSize()).unite(toDisplay));
        setMouseableArea(getViewSize());
        setBackground(picture);
        setTransparency(true);
    }

    void draw(CDrawContext* context) override {
        if (CBitmap* picture = getDrawBackground())
            picture->draw(context, toDisplay_, offset_);
        about_.draw(context);
        setDirty(false);
    }

    CMouseEventResult onMouseDown(CPoint&, const CButtonState& buttons) override {
        if (!buttons.isLeftButton())
            return VSTGUI::kMouseEventNotHandled;
        valueChanged();
        return VSTGUI::kMouseDownEventHandledButDontNeedMovedOrUpEvents;
    }

    CLASS_METHODS_NOCOPY(OpenBox, CControl)

  private:
    CAbout& about_; ///< holds this view
    CRect toDisplay_;
    CPoint offset_;
};

} // namespace

CAbout::CAbout(const CRect& size, VSTGUI::IControlListener* boxListener, std::int32_t boxTag,
               CBitmap* picture, const CRect& pictureArea, const CPoint& pictureOffset)
    : CSplashScreen(size, boxListener, boxTag, picture, pictureArea, pictureOffset) {
    auto* const box = new OpenBox(*this, picture, pictureArea, pictureOffset);
    modalView->forget();
    modalView = box;
}

void CAbout::draw(CDrawContext* context) {
    if (value == 0.0f)
        return;
    setDirty(false);
    const CRect area = creditsArea(getViewSize(), toDisplay);
    const CCoord height = getHeight();
    context->setFont(VSTGUI::kNormalFont, 10.0, VSTGUI::kItalicFace);
    context->setFontColor(VSTGUI::CColor(0xFF, 0xFF, 0xFF, 0xFF));
    for (const Credit& credit : kCredits)
        context->drawString(credit.text,
                            CRect(area.left, height - credit.top, area.right, height - credit.bottom),
                            VSTGUI::kCenterText, true);
}

void CAbout::drawRect(CDrawContext* context, const CRect& updateRect) {
    if (!modalView->isAttached())
        CSplashScreen::drawRect(context, updateRect);
}

VSTGUI::CBaseObject* CAbout::newCopy() const {
    return new CAbout(getViewSize(), listener, tag, getBackground(), toDisplay, offset);
}

} // namespace controls
