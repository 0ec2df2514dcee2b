// An invisible view above every control of a parameter. A right click on it opens the menu for the
// parameter's MIDI controller, or does nothing where the effect binds no controllers. All other events go to
// the control below, as if the view were not there.
#pragma once

#include "vstgui/lib/controls/ccontrol.h"

#include <cstdint>
#include <functional>
#include <utility>

namespace interfaces {
class EditorHost;
}

namespace VSTGUI {
class COptionMenu;
}

namespace controls {

/// The menu's first entry, "MidiLearn", reports the value 1.0 to the listener; the second, "Forget CC %d",
/// reports -1.0 and unbinds the parameter's controller. Right after that the value is 0 again. To the
/// listener this looks like a control of the parameter itself, as getTag() gives the parameter's id, and to
/// the host like a gesture of that parameter. On the window thread.
class CMidiLearn final : public VSTGUI::CControl {
  public:
    /// `tag` is midi::kLearnTagBase and the parameter's id. `control` is the control below, of the same
    /// frame, which owns both; `size` is its place. `effect` is the plug-in, which is told of gestures
    /// and asked whether it binds controllers; without one nobody is.
    CMidiLearn(const VSTGUI::CRect& size, VSTGUI::IControlListener* listener, std::int32_t tag,
               VSTGUI::CControl* control, interfaces::EditorHost* effect);
    CMidiLearn(const CMidiLearn& other) = default;

    /// `refresh` is called with the control below right before a press, a tick of the wheel or a key is
    /// passed on to it, so that the gesture starts from the present value.
    void setRefresh(std::function<void(VSTGUI::CControl&)> refresh) { refresh_ = std::move(refresh); }

    /// The tag of the control below, and so the parameter's id.
    std::int32_t getTag() const override;
    VSTGUI::CControl* getControl() const { return control; }
    interfaces::EditorHost* getEffect() const { return effect; }

    /// Nothing is to be seen.
    void draw(VSTGUI::CDrawContext*) override {}

    /// Passes everything on, wheel and keys too, but what the right button does alone.
    void dispatchEvent(VSTGUI::Event& event) override;
    VSTGUI::CMouseEventResult onMouseDown(VSTGUI::CPoint& where,
                                          const VSTGUI::CButtonState& buttons) override;
    VSTGUI::CMouseEventResult onMouseUp(VSTGUI::CPoint& where, const VSTGUI::CButtonState& buttons) override;
    VSTGUI::CMouseEventResult onMouseMoved(VSTGUI::CPoint& where,
                                           const VSTGUI::CButtonState& buttons) override;

    /// Whether this is a "CMidiLearn".
    bool isTypeOf(const char* name) const;
    VSTGUI::CBaseObject* newCopy() const override;

  private:
    void refreshControl();
    void openMenu(const VSTGUI::CPoint& where);
    void finishMenu(std::int32_t choice);
    void report(float reported);

    VSTGUI::CControl* control;      ///< not owned
    interfaces::EditorHost* effect; ///< not owned
    std::function<void(VSTGUI::CControl&)> refresh_;
};

} // namespace controls
