// Two texts in the window: a parameter's value as the effect formats it, and a text that somebody else sets.
// Both draw nothing but their text, in the font, colours and place of the toolkit's CParamDisplay, so that
// the skin's background shows behind it.
#pragma once

#include "vstgui/lib/controls/cparamdisplay.h"

#include <array>
#include <cstdint>

namespace interfaces {
class EditorHost;
}

namespace controls {

/// Shows the value of one parameter, read anew at each drawing. On the window thread.
class CParamDisplayLink final : public VSTGUI::CParamDisplay {
  public:
    /// `effect` outlives the display. `link` is the id of the parameter that is shown, `tag` the control's
    /// own; the one need not be the other. The background is kept and not painted.
    CParamDisplayLink(interfaces::EditorHost* effect, std::int32_t link, const VSTGUI::CRect& size,
                      std::int32_t tag, VSTGUI::CBitmap* background = nullptr, std::int32_t style = 0);

    std::int32_t getLink() const { return link; }

    void draw(VSTGUI::CDrawContext* context) override;

  private:
    interfaces::EditorHost* effect; ///< not owned
    std::int32_t link;
};

/// Shows "init" until it is given another text. On the window thread.
class CDisplay final : public VSTGUI::CParamDisplay {
  public:
    /// The background is kept and not painted.
    explicit CDisplay(const VSTGUI::CRect& size, VSTGUI::CBitmap* background = nullptr,
                      std::int32_t style = 0);

    /// Keeps a copy, cut to 255 bytes. Marks nothing for redrawing: that is the caller's to say.
    void setText(const char* newText);
    const char* getText() const { return text.data(); }

    void draw(VSTGUI::CDrawContext* context) override;

  private:
    std::array<char, 256> text = {}; ///< ends in a NUL
};

} // namespace controls
