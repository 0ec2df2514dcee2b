#include "skin/skin_menu.h"

#include "base/truncation.h"

namespace skin {

void SkinMenu::showValue(float newValue) {
    value = newValue;
    const std::int32_t nearest = base::trunc(newValue + 0.5f);
    const bool isEntry = newValue >= 0.0f && nearest < getNbEntries();
    currentIndex = isEntry ? nearest : -1;
}

void SkinMenu::showNoChoice() {
    currentIndex = -1;
    inPopup = false;
    invalid();
}

void SkinMenu::valueChanged() {
    const bool isDismissed = inPopup && lastResult < 0;
    if (!isDismissed)
        COptionMenu::valueChanged();
}

void SkinMenu::endEdit() {
    if (getListener())
        COptionMenu::endEdit();
}

} // namespace skin
