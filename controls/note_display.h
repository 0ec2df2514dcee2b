// The name of a MIDI note, such as "C# 3", or "Chord", or "OFF". Whoever knows of notes writes two fields
// that this display looks at when it is drawn.
#pragma once

#include "vstgui/lib/ccolor.h"
#include "vstgui/lib/controls/ccontrol.h"

#include <cstdint>

namespace controls {

/// What is shown; every further value means a chord too.
enum NoteMode : std::int32_t { kNoNote = 0, kOneNote = 1, kChord = 2 };

/// Does nothing with the mouse, its listener and its tag. On the window thread.
class CNoteDisplay final : public VSTGUI::CControl {
  public:
    /// `note` is a MIDI note, 0..127, and `mode` a NoteMode; both outlive the display.
    CNoteDisplay(const VSTGUI::CRect& size, VSTGUI::IControlListener* listener, std::int32_t tag,
                 const std::int8_t* note, const std::int32_t* mode);

    void setBackColor(const VSTGUI::CColor& colour) { backColor = colour; }
    void setFontColor(const VSTGUI::CColor& colour) { fontColor = colour; }
    VSTGUI::CColor getBackColor() const { return backColor; }
    VSTGUI::CColor getFontColor() const { return fontColor; }

    /// Paints the background only if the view is dirty; the text goes over what is there.
    void draw(VSTGUI::CDrawContext* context) override;

    /// A plain view: a copy does not know whose notes to show.
    VSTGUI::CBaseObject* newCopy() const override { return new CView(*this); }

  private:
    const std::int8_t* note;  ///< not owned
    const std::int32_t* mode; ///< not owned
    VSTGUI::CColor backColor;
    VSTGUI::CColor fontColor;
};

} // namespace controls
