#include "controls/note_display.h"

#include "vstgui/lib/cdrawcontext.h"
#include "vstgui/lib/cfont.h"

#include <cstdio>
#include <cstdlib>

namespace controls {

using VSTGUI::CDrawContext;

namespace {

constexpr const char* kNoteNames[] = {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "A#", "B"};

} // namespace

CNoteDisplay::CNoteDisplay(const VSTGUI::CRect& size, VSTGUI::IControlListener* ownListener,
                           std::int32_t ownTag, const std::int8_t* shownNote, const std::int32_t* shownMode)
    : CControl(size, ownListener, ownTag), note(shownNote), mode(shownMode) {}

void CNoteDisplay::draw(CDrawContext* context) {
    const bool paintsBackground = isDirty();
    if (paintsBackground)
        setDirty(false);
    context->setFillColor(backColor);
    if (paintsBackground)
        context->drawRect(getViewSize(), VSTGUI::kDrawFilled);
    // Arial, 9 points.
    context->setFont(VSTGUI::kNormalFontVerySmall, 0, -1);
    context->setFontColor(fontColor);

    char text[32] = "Chord";
    if (*mode == kOneNote) {
        const std::int8_t pitch = *note;
        std::snprintf(text, sizeof text, "%s %d", kNoteNames[std::abs(pitch % 12)], pitch / 12 - 2);
    } else if (*mode == kNoNote) {
        std::snprintf(text, sizeof text, "OFF");
    }
    context->drawString(text, getViewSize(), VSTGUI::kCenterText, true);
}

} // namespace controls
