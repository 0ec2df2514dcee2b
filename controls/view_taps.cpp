#include "controls/view_taps.h"

#include "base/truncation.h"

#include "vstgui/lib/cdrawcontext.h"
#include "vstgui/lib/cfont.h"
#include "vstgui/lib/events.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace controls {

using base::trunc;
using VSTGUI::CButtonState;
using VSTGUI::CColor;
using VSTGUI::CCoord;
using VSTGUI::CDrawContext;
using VSTGUI::CMouseEventResult;
using VSTGUI::CPoint;
using VSTGUI::CRect;

namespace {

constexpr CColor kPictureColour(0x66, 0x66, 0x66, 0xFF);
constexpr std::uint8_t kBrightGreen = 0xBD;
constexpr std::uint8_t kWarningRed = 0xB3;
constexpr CColor kPageColour(0x2D, 0x2D, 0x66, 0xFF);
constexpr CColor kLinkColour(0xFF, 0xFF, 0x66, 0xFF);

/// A line of help; top and bottom count from the view's top.
struct HelpLine {
    CCoord top;
    CCoord bottom;
    CColor colour;
    const char* text;
};

// The blanks at the ends and in between are meant: they move the centred lines to where they stand.
constexpr HelpLine kFirstPage[] = {
    {0, 11, kPageColour, "Things you must know about Quillon Multitap Delay."},
    {14, 25, kPageColour,
     "First thing to know, the size of the memory is fixed at 4194304 samples, that means that at SampleRate "
     " = "
     "44100"},
    {26, 37, kPageColour,
     "the Quillon Multitap Delay has a maximum delay of about 95 seconds (as per 4194304/44100),  therefore "
     "you "
     "could easly     "},
    {38, 49, kPageColour,
     "have more than one minute of audio stored in your Quillon Multitap Delay instance while running, and "
     "that "
     "can come and go  "},
    {50, 61, kPageColour,
     "depending on your settings. _ _ _ _ _ _ _ _ _ _ _ _ _ _ _ _ _ _ _ _ _ _ _ _ _ _ _ _ _ _ _ _ _ _ _ _ _ "
     "_ _ _                      "},
    {62, 73, kPageColour,
     "To clear the memory just turn the plugin off and then on again.                                        "
     "   "
     "       "},
    {76, 87, kPageColour, "...right-click for more..."},
};

constexpr HelpLine kSecondPage[] = {
    {0, 11, kPageColour,
     "Quillon Multitap Delay supports MIDI Learn/Forget for any parameter; all you need to do is to "
     "right-click "
     "on a parameter"},
    {12, 23, kPageColour,
     " and select 'MIDI Learn', then move a controller. The controller will then be bound to that parameter. "
     "   "
     "   "},
    {24, 35, kPageColour,
     "To clear a bound-parameter, right-click on it again, and select the 'Forget' option from the dropdown "
     "Menu.  "},
    {36, 47, kPageColour,
     "The settings also responde to MIDI Program Change messages so that preset changes can be automated.    "
     "   "
     "   "},
    {48, 59, kLinkColour, "[Please press the Alt key and click here to open the Help file as PDF]"},
    {89, 100, kPictureColour, "VST Plug-In Technology by Steinberg, AU System by Apple"},
};

/// The colour of a tap's core at `t`, 0 for the first tap up to 1. Green is left to the caller.
CColor barColour(double t, double bend, std::uint8_t green) {
    const double p = t * 255.0;
    const auto blue = static_cast<std::uint8_t>(trunc((1 - bend) * p + bend * (255.0 - p)));
    const auto red = static_cast<std::uint8_t>((blue >> 1) + 0x27);
    return CColor(red, green, blue, 0xFF);
}

void drawCentred(CDrawContext& context, const char* text, const CRect& area) {
    context.drawString(text, area, VSTGUI::kCenterText, true);
}

void setTextFont(CDrawContext& context) {
    // Arial, 10 points.
    context.setFont(VSTGUI::kNormalFontSmaller, 0, -1);
}

} // namespace

ViewTaps::ViewTaps(const CRect& size) : CControl(size, nullptr, -1) {}

void ViewTaps::showPattern(const float* gains, std::int32_t milliseconds, std::int32_t taps, float stretch) {
    for (std::size_t i = 0; i < tapGain.size(); ++i)
        tapGain[i].store(gains[i]);
    shownMs.store(milliseconds);
    numTaps.store(std::clamp(taps, 1, kMaxTaps));
    setDirty(true);
    bend.store(stretch);
    stretched.store(1);
}

void ViewTaps::draw(CDrawContext* context) {
    if (helpPage == 0)
        drawPicture(*context);
    else
        drawHelp(*context);
}

void ViewTaps::drawPicture(CDrawContext& context) {
    // Other views leave their pens behind.
    context.setDrawMode(VSTGUI::kAliasing);
    context.setLineStyle(VSTGUI::kLineSolid);
    context.setLineWidth(1);
    context.setFrameColor(kPictureColour);
    context.setFillColor(kPictureColour);
    if (isDirty())
        setDirty(false);
    const std::int64_t end = drawBars(context);
    drawText(context, end);
}

/// Gives the place, in pixels from the view's left, where the next bar would stand.
std::int64_t ViewTaps::drawBars(CDrawContext& context) {
    const CRect view = getViewSize();
    const std::int32_t height = trunc(view.bottom - view.top);
    const std::int64_t unit = 2 * std::int64_t{trunc(view.right - view.left)} / 128;
    const std::int32_t taps = numTaps.load();
    const double shape = bend.load();
    const bool wide = stretched.load() != 0;
    const float inv = 1.0f / static_cast<float>(taps);
    const float add = wide ? static_cast<float>(taps) * 0.022779042f : 0.0f;
    const float mul = wide ? inv * 45.9f : 1.0f;
    std::uint8_t green = kPictureColour.green;
    std::int64_t x = 0;
    for (std::int32_t i = 0; i < taps; ++i) {
        const double t = static_cast<float>(i) * inv;
        const double s = 1 / (std::exp(4.0 - t * 8.0) + 1);
        const std::int64_t next =
            trunc((s + (1 - 2 * s) * shape) * static_cast<double>(unit) * mul + add + static_cast<double>(x));
        const float gain = tapGain[static_cast<std::size_t>(i)].load();
        const auto full = static_cast<float>(height);
        const double y = (full - full * gain) + view.top - 1.0;
        for (std::int64_t column = 0; column < 3 && x + column <= next + 1; ++column) {
            // A dim column ends a bar that has the room. Even taps are lit up before it, odd ones go on with
            // what the bar before them ended in.
            if (column == 2)
                green = kPictureColour.green;
            else if (i % 2 == 0)
                green = kBrightGreen;
            context.setFrameColor(barColour(t, shape, green));
            const CCoord left = view.left + static_cast<double>(x + column);
            context.drawLine(CPoint(left, view.bottom), CPoint(left, y));
        }
        x = next;
    }
    return x;
}

void ViewTaps::drawText(CDrawContext& context, std::int64_t end) {
    const CRect view = getViewSize();
    context.setFrameColor(kPictureColour);
    const bool full = takeWarning();
    CColor colour = kPictureColour;
    if (full)
        colour.red = kWarningRed;
    context.setFontColor(colour);
    setTextFont(context);

    const CCoord x = trunc(static_cast<double>(end + 2) + view.left);
    const std::int32_t third = trunc(view.bottom - view.top) / 3;
    const CCoord y = trunc(third + view.top);
    char text[32];
    std::snprintf(text, sizeof text, "%d", shownMs.load());
    drawMeasured(context, 0, text, CRect(x, y, x + 46, y + 14));
    drawMeasured(context, 1, " ms for", CRect(x, y + 14, x + 46, y + 28));
    std::snprintf(text, sizeof text, "Taps: %d", numTaps.load());
    drawMeasured(context, 2, text, CRect(x, y + 28, x + 46, y + 42));
    context.drawRect(CRect(x, y + 43, x + 46, y + 51), VSTGUI::kDrawStroked);
    context.drawRect(CRect(x, y - 9, x + 46, y - 1), VSTGUI::kDrawStroked);

    drawMeasured(context, 3,
                 full ? "**** Using maximum memory capacity! ****"
                      : "**** Quillon Multitap Delay : The 128 Taps Echo, right-click for Help ****",
                 CRect(view.left, view.top, view.right, view.top + 14));
}

/// Centred, and measured only when it is another text than last at this place: to measure a text costs as
/// much as to draw it, and the picture is drawn anew with every change of the pattern.
void ViewTaps::drawMeasured(CDrawContext& context, std::size_t place, const char* text, const CRect& area) {
    MeasuredText& measured = measuredTexts_[place];
    if (measured.text != text)
        measured = {text, context.getStringWidth(text)};
    CRect rest = area;
    rest.left = area.left + area.getWidth() / 2. - measured.width / 2.;
    context.drawString(text, rest, VSTGUI::kLeftText, true);
}

/// Whether a warning is due; if so, takes its sign away, so that it is given once.
bool ViewTaps::takeWarning() {
    const std::int32_t seen = shownMs.load();
    if (seen >= 0)
        return false;
    const auto positive = static_cast<std::int32_t>(-static_cast<std::int64_t>(seen));
    // A pattern that arrives right now keeps its own number.
    shownMs.replace(seen, positive);
    return true;
}

void ViewTaps::drawHelp(CDrawContext& context) const {
    const CRect view = getViewSize();
    setTextFont(context);
    const auto drawLine = [&](const HelpLine& line) {
        context.setFontColor(line.colour);
        drawCentred(context, line.text,
                    CRect(view.left, view.top + line.top, view.right, view.top + line.bottom));
    };
    if (helpPage == 1)
        std::for_each(std::begin(kFirstPage), std::end(kFirstPage), drawLine);
    else
        std::for_each(std::begin(kSecondPage), std::end(kSecondPage), drawLine);
}

void ViewTaps::mouse(CPoint&, const CButtonState& buttons) {
    if (!getMouseEnabled())
        return;
    if (buttons.isLeftButton())
        helpPage = 0;
    else if (buttons.isRightButton())
        helpPage = helpPage == 0 ? 1 : 2;
    setDirty(true);
}

CMouseEventResult ViewTaps::onMouseDown(CPoint& where, const CButtonState& buttons) {
    mouse(where, buttons);
    return VSTGUI::kMouseEventHandled;
}

CMouseEventResult ViewTaps::onMouseUp(CPoint& where, const CButtonState& buttons) {
    mouse(where, buttons);
    return VSTGUI::kMouseEventHandled;
}

CMouseEventResult ViewTaps::onMouseMoved(CPoint& where, const CButtonState& buttons) {
    mouse(where, buttons);
    return VSTGUI::kMouseEventHandled;
}

void ViewTaps::dispatchEvent(VSTGUI::Event& event) {
    if (event.type != VSTGUI::EventType::MouseUp) {
        CControl::dispatchEvent(event);
        return;
    }
    // A release names the buttons that were held up to then. With one of them it is clear which is held no
    // longer; with more it is not, and together they turn no page.
    auto& release = VSTGUI::castMouseUpEvent(event);
    const VSTGUI::MouseEventButtonState named = release.buttonState;
    if (named.isLeft() || named.isRight())
        release.buttonState.clear();
    CControl::dispatchEvent(event);
    release.buttonState = named;
}

bool ViewTaps::isTypeOf(const char* name) const {
    return std::strcmp(name, "ViewTaps") == 0;
}

VSTGUI::CBaseObject* ViewTaps::newCopy() const {
    return new ViewTaps(*this);
}

} // namespace controls
