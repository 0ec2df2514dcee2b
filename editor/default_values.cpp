#include "editor/default_values.h"

#include "vstgui/lib/controls/cbuttons.h"
#include "vstgui/lib/controls/cknob.h"
#include "vstgui/lib/controls/cslider.h"
#include "vstgui/lib/controls/cswitch.h"

#include <utility>

namespace editor {

using VSTGUI::CControl;

namespace {

template <class... Kinds>
bool isOneOf(const CControl& control) {
    return (... || (dynamic_cast<const Kinds*>(&control) != nullptr));
}

/// The toolkit's own test, which looks at buttons and keys and takes every control.
CControl::CheckDefaultValueEventFuncT isResetClick = nullptr;

bool isResetClickOnDefault(CControl* control, VSTGUI::MouseDownEvent& event) {
    return hasDefault(*control) && isResetClick(control, event);
}

} // namespace

bool hasDefault(const CControl& control) {
    return isOneOf<VSTGUI::CSlider, VSTGUI::CKnobBase, VSTGUI::COnOffButton, VSTGUI::CVerticalSwitch,
                   VSTGUI::CHorizontalSwitch>(control);
}

void resetOnlyControlsWithDefault() {
    if (!isResetClick)
        isResetClick = std::exchange(CControl::CheckDefaultValueEventFunc, isResetClickOnDefault);
}

} // namespace editor
