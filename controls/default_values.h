// Which controls have a default value that control and a left click bring back.
#pragma once

namespace VSTGUI {
class CControl;
}

namespace controls {

/// Sliders, knobs and switches, on-off buttons among them. The skin or the value at the window's opening
/// gives them their default; all others keep the toolkit's, which means nothing.
bool hasDefault(const VSTGUI::CControl& control);

/// Makes control and a left click a plain click on every control that has no default. For the whole process,
/// from the first call on; further calls change nothing. Any thread.
void resetOnlyControlsWithDefault();

} // namespace controls
