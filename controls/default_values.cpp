#include "controls/default_values.h"

#include "vstgui/lib/controls/cbuttons.h"
#include "vstgui/lib/controls/cknob.h"
#include "vstgui/lib/controls/cslider.h"
#include "vstgui/lib/controls/cswitch.h"

namespace controls {

using VSTGUI::CControl;

namespace {

template <class... Kinds>
bool isOneOf(const CControl& control) {
    return (... || (dynamic_cast<const Kinds*>(&control) != nullptr));
}

/// The toolkit's own test, which looks at buttons and keys only. The first call must come before ours is
/// installed.
CControl::CheckDefaultValueEventFuncT toolkitResetClick() {
    static const auto isResetClick = CControl::CheckDefaultValueEventFunc;
    return isResetClick;
}

bool isResetClickOnDefault(CControl* control, VSTGUI::MouseDownEvent& event) {
    return hasDefault(*control) && toolkitResetClick()(control, event);
}

bool installResetClick() {
    toolkitResetClick();
    CControl::CheckDefaultValueEventFunc = isResetClickOnDefault;
    return true;
}

} // namespace

bool hasDefault(const CControl& control) {
    return isOneOf<VSTGUI::CSlider, VSTGUI::CKnobBase, VSTGUI::COnOffButton, VSTGUI::CVerticalSwitch,
                   VSTGUI::CHorizontalSwitch>(control);
}

void resetOnlyControlsWithDefault() {
    // Hosts may make instances on several threads at once: one of them does it, the others see it done.
    [[maybe_unused]] static const bool isDone = installResetClick();
}

} // namespace controls
