// The menus of a skin.
#pragma once

#include "vstgui/lib/controls/coptionmenu.h"

namespace skin {

/// A menu that can stand between two entries or beyond the last, where no title is to be seen, as happens
/// when it shows a parameter that has other values than the menu, or a choice that was only an order.
class SkinMenu final : public VSTGUI::COptionMenu {
  public:
    using COptionMenu::COptionMenu;

    /// Takes the value as it is, where setValue() rounds it or leaves it out. Reports nothing.
    void showValue(float newValue);

    /// Looks closed, with no entry chosen, as long as its value stays.
    void showNoChoice();

    /// Reports a choice, and not the dismissal of the menu, which the toolkit ends in the same way.
    void valueChanged() override;
    /// Without a listener nothing: that has ended while it was told of the choice, and the frame would tell
    /// it of the end of the gesture.
    void endEdit() override;
};

} // namespace skin
