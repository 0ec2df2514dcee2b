#include "controls/displays.h"

#include "base/fixed_text.h"
#include "interfaces/editor_host.h"
#include "parameters/parameter_table.h"

#include "vstgui/lib/cstring.h"

namespace controls {

using VSTGUI::CBitmap;
using VSTGUI::CDrawContext;
using VSTGUI::CRect;
using VSTGUI::UTF8String;

CParamDisplayLink::CParamDisplayLink(interfaces::EditorHost* shownEffect, std::int32_t shownParameter,
                                     const CRect& size, std::int32_t ownTag, CBitmap* background,
                                     std::int32_t displayStyle)
    : CParamDisplay(size, background, displayStyle), effect(shownEffect), link(shownParameter) {
    setTag(ownTag);
}

void CParamDisplayLink::draw(CDrawContext* context) {
    char text[parameters::kDisplayTextSize] = "";
    effect->getParameterDisplay(link, text);
    const UTF8String shown(text);
    drawPlatformText(context, shown.getPlatformString());
}

CDisplay::CDisplay(const CRect& size, CBitmap* background, std::int32_t displayStyle)
    : CParamDisplay(size, background, displayStyle) {
    setText("init");
}

void CDisplay::setText(const char* newText) {
    base::copyText(text.data(), newText, text.size() - 1);
}

void CDisplay::draw(CDrawContext* context) {
    const UTF8String shown(text.data());
    drawPlatformText(context, shown.getPlatformString());
}

} // namespace controls
