// The sliders of a skin.
#pragma once

#include "vstgui/lib/controls/cslider.h"

namespace skin {

/// A slider that follows an ordinary wheel in both directions: up is more. The toolkit's horizontal ones only
/// hear a wheel that turns sideways.
class SkinSlider final : public VSTGUI::CSlider {
  public:
    using CSlider::CSlider;

    void onMouseWheelEvent(VSTGUI::MouseWheelEvent& event) override;
};

} // namespace skin
