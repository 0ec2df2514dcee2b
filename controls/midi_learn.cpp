#include "controls/midi_learn.h"

#include "interfaces/editor_host.h"
#include "midi/cc_map.h"

#include "vstgui/lib/cframe.h"
#include "vstgui/lib/controls/coptionmenu.h"
#include "vstgui/lib/events.h"

#include <cstring>
#include <string>

namespace controls {

using VSTGUI::CButtonState;
using VSTGUI::CControl;
using VSTGUI::CMouseEventResult;
using VSTGUI::COptionMenu;
using VSTGUI::CPoint;
using VSTGUI::CRect;
using VSTGUI::Event;
using VSTGUI::EventType;

namespace {

/// The entries of the menu, by their place in it.
enum Choice : std::int32_t { kLearn = 0, kForget = 1 };

bool isRightAlone(Event& event) {
    const auto* gesture = VSTGUI::asMouseDownEvent(event); // a press, a move or a release
    return gesture && VSTGUI::buttonStateFromMouseEvent(*gesture).isRightButton();
}

/// Whether a control goes on from its value at this event.
bool startsFromValue(const Event& event) {
    return event.type == EventType::MouseDown || event.type == EventType::MouseWheel ||
           event.type == EventType::KeyDown;
}

/// A menu with a tag that is the first parameter's id. What it is opened for is no gesture of that.
class LearnMenu final : public COptionMenu {
  public:
    using COptionMenu::COptionMenu;
    void beginEdit() override {}
    void endEdit() override {}
    /// The toolkit would tick the first entry when it opens the menu, and after a choice the menu is gone.
    bool checkEntryAlone(std::int32_t) override { return false; }
};

/// To be given to a frame. The toolkit opens the menu at its place, where otherwise it shows nothing.
COptionMenu* makeMenu(const CPoint& where, std::int32_t controller) {
    CRect place(where.x, where.y, where.x + 1, where.y + 1);
    place.normalize();
    auto* menu =
        new LearnMenu(place, nullptr, 0, nullptr, nullptr,
                      COptionMenu::kPopupStyle | COptionMenu::kCheckStyle | COptionMenu::kNoDrawStyle);
    menu->addEntry("MidiLearn");
    if (controller != midi::kNoController)
        menu->addEntry("Forget CC " + std::to_string(controller));
    return menu;
}

void removeMenu(COptionMenu* menu) {
    VSTGUI::CFrame* frame = menu->getFrame();
    if (!frame)
        return; // gone with its window
    if (frame->getFocusView() == menu)
        frame->setFocusView(nullptr);
    frame->removeView(menu);
}

} // namespace

CMidiLearn::CMidiLearn(const CRect& size, VSTGUI::IControlListener* editor, std::int32_t ownTag,
                       CControl* controlBelow, interfaces::EditorHost* plugIn)
    : CControl(size, editor, ownTag), control(controlBelow), effect(plugIn) {
    // What the control below does not take goes on to the views below that.
    setTransparency(true);
    // The frame remembers what is being dragged by its focus.
    setWantsFocus(true);
}

std::int32_t CMidiLearn::getTag() const {
    return control ? control->getTag() : CControl::getTag();
}

void CMidiLearn::dispatchEvent(Event& event) {
    if (isRightAlone(event))
        return CControl::dispatchEvent(event);
    if (!control || !getMouseEnabled())
        return;
    if (startsFromValue(event))
        refreshControl();
    control->dispatchEvent(event);
}

void CMidiLearn::refreshControl() {
    if (refresh_)
        refresh_(*control);
}

CMouseEventResult CMidiLearn::onMouseDown(CPoint& where, const CButtonState& buttons) {
    if (!getMouseEnabled())
        return VSTGUI::kMouseEventNotHandled;
    if (!buttons.isRightButton()) {
        if (!control)
            return VSTGUI::kMouseEventNotHandled;
        refreshControl();
        return control->onMouseDown(where, buttons);
    }
    openMenu(where);
    return VSTGUI::kMouseDownEventHandledButDontNeedMovedOrUpEvents;
}

CMouseEventResult CMidiLearn::onMouseUp(CPoint& where, const CButtonState& buttons) {
    if (buttons.isRightButton())
        return VSTGUI::kMouseEventHandled;
    return control ? control->onMouseUp(where, buttons) : VSTGUI::kMouseEventNotHandled;
}

CMouseEventResult CMidiLearn::onMouseMoved(CPoint& where, const CButtonState& buttons) {
    if (buttons.isRightButton())
        return VSTGUI::kMouseEventHandled;
    return control ? control->onMouseMoved(where, buttons) : VSTGUI::kMouseEventNotHandled;
}

void CMidiLearn::openMenu(const CPoint& where) {
    const std::int32_t id = getTag();
    VSTGUI::CFrame* frame = getFrame();
    if (!frame || id < 0 || id >= parameters::kNumParameters || (effect && !effect->bindsControllers()))
        return;
    CPoint inFrame(where);
    localToFrame(inFrame);
    COptionMenu* menu = makeMenu(inFrame, midi::controllerOf(id));
    frame->addView(menu);
    // On some systems the answer is there when this returns, on others it comes later; the window may have
    // been closed by then.
    menu->popup([self = VSTGUI::shared(this), below = VSTGUI::shared(control)](COptionMenu* answered) {
        if (self->isAttached())
            self->finishMenu(answered->getLastResult());
        removeMenu(answered);
    });
}

/// Whatever else the menu answers, nothing was chosen.
void CMidiLearn::finishMenu(std::int32_t choice) {
    const std::int32_t id = getTag();
    if (choice == kLearn)
        report(1.0f);
    if (choice == kForget) {
        report(-1.0f);
        midi::bindController(id, midi::kNoController);
    }
}

/// As a gesture of the parameter. Past setValue(), which would bring the value into 0..1.
void CMidiLearn::report(float reported) {
    const std::int32_t id = getTag();
    if (effect)
        effect->beginEdit(id);
    value = reported;
    valueChanged();
    value = 0.0f;
    if (effect)
        effect->endEdit(id);
}

bool CMidiLearn::isTypeOf(const char* name) const {
    return std::strcmp(name, "CMidiLearn") == 0;
}

VSTGUI::CBaseObject* CMidiLearn::newCopy() const {
    return new CMidiLearn(*this);
}

} // namespace controls
