#include "menu_events.h"

#include "vstgui/lib/platform/common/genericoptionmenu.h"
#include "vstgui/lib/platform/iplatformframe.h"
#include "vstgui/lib/platform/linux/x11platform.h"

#include <cmath>
#include <vector>
#include <xcb/xcb.h>

namespace platform {

using VSTGUI::CFrame;
using VSTGUI::EventType;

namespace {

/// How far the pointer may wander in a click, in pixels; the toolkit's own measure for a double click.
constexpr double clickDistance = 5.0;

/// The toolkit keeps the pointer to itself from a press until it has done with the release. What a choice
/// opens, such as a message, has to get it earlier.
void letPointerGo() {
    xcb_connection_t* const connection = VSTGUI::X11::RunLoop::instance().getXcbConnection();
    xcb_ungrab_pointer(connection, XCB_CURRENT_TIME);
    xcb_flush(connection);
}

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
void endFadeOutAfterEvent(CFrame& frame, bool letsPointerGo) {
    frame.doAfterEventProcessing([held = VSTGUI::shared(&frame), letsPointerGo] {
        const auto modalView = VSTGUI::shared(held->getModalView());
        if (!modalView)
            return;
        if (letsPointerGo)
            letPointerGo();
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
        endFadeOutAfterEvent(*frame, false);
    } else if (event.type == EventType::MouseUp) {
        if (endsOpeningClick(event, *frame)) {
            event.consumed = true;
            return;
        }
        endFadeIn(*frame);
        endFadeOutAfterEvent(*frame, true);
    }
}

void MenuEvents::onKeyboardEvent(VSTGUI::KeyboardEvent&, CFrame* frame) {
    endFadeOutAfterEvent(*frame, false);
}

/// Of the click that has opened the modal view. With a drag it is left to the view: that chooses an entry.
bool MenuEvents::endsOpeningClick(const VSTGUI::MouseEvent& release, const CFrame& frame) const {
    const VSTGUI::CView* const modalView = frame.getModalView();
    return modalView && modalView != modalViewAtPress_ &&
           std::abs(release.mousePosition.x - pressPlace_.x) <= clickDistance &&
           std::abs(release.mousePosition.y - pressPlace_.y) <= clickDistance;
}

} // namespace platform
