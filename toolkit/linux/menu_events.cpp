#include "menu_events.h"

#include "vstgui/lib/platform/common/genericoptionmenu.h"
#include "vstgui/lib/platform/iplatformframe.h"

#include <cmath>
#include <vector>

namespace toolkit {

using VSTGUI::CFrame;
using VSTGUI::EventType;

namespace {

/// How far the pointer may wander in a click, in pixels; the toolkit's own measure for a double click.
constexpr double kClickDistance = 5.0;

/// A menu that has just opened still has its fade to do, and takes nothing before that.
void endFadeIn(const CFrame& frame) {
    VSTGUI::CView* const modalView = frame.getModalView();
    VSTGUI::CViewContainer* const container = modalView ? modalView->asViewContainer() : nullptr;
    if (!container)
        return;
    // A submenu on its way out is removed at the end of its fade.
    std::vector<VSTGUI::SharedPointer<VSTGUI::CView>> views;
    container->forEachChild([&views](VSTGUI::CView* view) { views.push_back(VSTGUI::shared(view)); });
    for (const auto& view : views)
        view->removeAllAnimations();
}

/// A menu that goes still has its fade to do, and gives its answer behind that.
void endFadeOutAfterEvent(CFrame& frame) {
    frame.doAfterEventProcessing([held = VSTGUI::shared(&frame)] {
        if (const auto modalView = VSTGUI::shared(held->getModalView()))
            modalView->removeAllAnimations();
    });
}

} // namespace

void MenuEvents::switchFadingOff(CFrame& frame) {
    VSTGUI::GenericOptionMenuTheme theme;
    theme.menuAnimationTime = 0;
    frame.getPlatformFrame()->setupGenericOptionMenu(true, &theme);
}

void MenuEvents::watch(CFrame& frame) {
    frame.registerMouseObserver(this);
    frame.registerKeyboardHook(this);
}

void MenuEvents::leave(CFrame& frame) {
    frame.unregisterMouseObserver(this);
    frame.unregisterKeyboardHook(this);
}

void MenuEvents::onMouseEvent(VSTGUI::MouseEvent& event, CFrame* frame) {
    if (event.type == EventType::MouseDown) {
        pressPlace_ = event.mousePosition;
        modalViewAtPress_ = frame->getModalView();
        endFadeIn(*frame);
        endFadeOutAfterEvent(*frame);
    } else if (event.type == EventType::MouseUp) {
        if (endsOpeningClick(event, *frame)) {
            event.consumed = true;
            return;
        }
        endFadeIn(*frame);
        endFadeOutAfterEvent(*frame);
    }
}

void MenuEvents::onKeyboardEvent(VSTGUI::KeyboardEvent&, CFrame* frame) {
    endFadeOutAfterEvent(*frame);
}

/// Of the click that has opened the modal view. With a drag it is left to the view: that chooses an entry.
bool MenuEvents::endsOpeningClick(const VSTGUI::MouseEvent& release, const CFrame& frame) const {
    const VSTGUI::CView* const modalView = frame.getModalView();
    return modalView && modalView != modalViewAtPress_ &&
           std::abs(release.mousePosition.x - pressPlace_.x) <= kClickDistance &&
           std::abs(release.mousePosition.y - pressPlace_.y) <= kClickDistance;
}

} // namespace toolkit
