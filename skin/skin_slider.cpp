#include "skin/skin_slider.h"

#include "vstgui/lib/events.h"

namespace skin {

void SkinSlider::onMouseWheelEvent(VSTGUI::MouseWheelEvent& event) {
    if (!isStyleHorizontal() || event.deltaX != 0.0)
        return CSlider::onMouseWheelEvent(event);
    // Sideways, the toolkit takes right for less, and for more where the style is inverse.
    event.deltaX = isInverseStyle() ? event.deltaY : -event.deltaY;
    CSlider::onMouseWheelEvent(event);
    event.deltaX = 0.0;
}

} // namespace skin
