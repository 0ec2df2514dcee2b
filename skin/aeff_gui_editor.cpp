#include "skin/aeff_gui_editor.h"

#include "base/truncation.h"
#include "platform/clock.h"
#include "platform/threads.h"

#include "vstgui/lib/events.h"
#include "vstgui/lib/platform/iplatformframe.h"

#include <utility>

namespace skin {

using base::trunc;
using VSTGUI::CFrame;
using VSTGUI::CPoint;
using VSTGUI::CRect;

namespace {

/// The host's names for the keys that are held down with another.
enum HostModifier : unsigned char { kShiftKey = 1, kAlternateKey = 2, kCommandKey = 4, kControlKey = 8 };

VSTGUI::Modifiers modifiersOf(const interfaces::KeyCode& key) {
    VSTGUI::Modifiers modifiers;
    if (key.modifier & kShiftKey)
        modifiers.add(VSTGUI::ModifierKey::Shift);
    if (key.modifier & kAlternateKey)
        modifiers.add(VSTGUI::ModifierKey::Alt);
    if (key.modifier & kCommandKey)
        modifiers.add(VSTGUI::ModifierKey::Super);
    if (key.modifier & kControlKey)
        modifiers.add(VSTGUI::ModifierKey::Control);
    return modifiers;
}

} // namespace

base::Shared<std::int32_t> AEffGUIEditor::knobMode = VSTGUI::kCircularMode;

AEffGUIEditor::AEffGUIEditor(interfaces::EditorHost* owner)
    : AEffEditor(owner), lastTicks(platform::milliseconds()) {
    noteWindowThread();
}

AEffGUIEditor::~AEffGUIEditor() = default;

bool AEffGUIEditor::getRect(interfaces::EditorRect** size) {
    *size = &rect;
    return true;
}

bool AEffGUIEditor::open(void* ptr) {
    systemWindow.store(ptr);
    return openFrame(rect.right - rect.left, rect.bottom - rect.top, nullptr, ptr);
}

bool AEffGUIEditor::openFrame(int width, int height, VSTGUI::CBitmap* background, void* parent) {
    noteWindowThread();
    auto keptAlive = theEffect().keepAlive();
    auto* const newFrame = new CFrame(CRect(0, 0, width, height), this);
    newFrame->setBackground(background);
    const bool isShown = window_.open(newFrame, parent, std::move(keptAlive));
    // Behind a first frame, a second one stays unseen instead: views of the first are in use.
    if (parent && !isShown && !hasFrame()) {
        closeFrame();
        return false;
    }
    setFrame(newFrame);
    return true;
}

void AEffGUIEditor::closeFrame() {
    setFrame(nullptr);
    window_.close();
}

void AEffGUIEditor::setFrame(CFrame* newFrame) {
    frame = newFrame;
    hasFrame_.store(newFrame != nullptr);
}

bool AEffGUIEditor::hasFrame() const {
    return hasFrame_.load();
}

void* AEffGUIEditor::ownWindow() const {
    const auto* const onScreen = frame ? frame->getPlatformFrame() : nullptr;
    return onScreen ? onScreen->getPlatformRepresentation() : nullptr;
}

void AEffGUIEditor::announceSize() {
    if (frame)
        window_.announceSize(trunc(frame->getWidth()), trunc(frame->getHeight()));
}

void AEffGUIEditor::noteWindowThread() {
    windowThread_.store(platform::currentThread());
}

bool AEffGUIEditor::onWindowThread() const {
    return windowThread_.load() == platform::currentThread();
}

void AEffGUIEditor::idle() {
    noteWindowThread();
    if (inIdleStuff)
        return;
    if (frame)
        frame->idle();
    toolkit::serveToolkitWindows();
}

bool AEffGUIEditor::dispatchKey(const interfaces::KeyCode& key, bool isDown) {
    if (!frame)
        return false;
    VSTGUI::KeyboardEvent event(isDown ? VSTGUI::EventType::KeyDown : VSTGUI::EventType::KeyUp);
    event.character = static_cast<char32_t>(key.character);
    // Both lists of keys are in the same order.
    event.virt = static_cast<VSTGUI::VirtualKey>(key.virt);
    event.modifiers = modifiersOf(key);
    frame->dispatchEvent(event);
    return event.consumed;
}

bool AEffGUIEditor::onKeyDown(interfaces::KeyCode& key) {
    return dispatchKey(key, true);
}

bool AEffGUIEditor::onKeyUp(interfaces::KeyCode& key) {
    return dispatchKey(key, false);
}

bool AEffGUIEditor::onWheel(float distance) {
    CPoint where;
    if (!frame || !frame->getCurrentMouseLocation(where))
        return false;
    VSTGUI::MouseWheelEvent event;
    event.mousePosition = where;
    event.deltaY = distance;
    frame->dispatchEvent(event);
    return event.consumed;
}

bool AEffGUIEditor::setKnobMode(std::int32_t value) {
    knobMode.store(value);
    return true;
}

std::int32_t AEffGUIEditor::getKnobMode() const {
    return knobMode.load();
}

void AEffGUIEditor::beginEdit(std::int32_t index) {
    theEffect().beginEdit(index);
}

void AEffGUIEditor::endEdit(std::int32_t index) {
    theEffect().endEdit(index);
}

void AEffGUIEditor::doIdleStuff() {
    std::uint32_t ticks = platform::milliseconds();
    if (ticks < lastTicks) {
        platform::sleepMilliseconds(4);
        ticks += 4;
        if (ticks + 50 < lastTicks)
            return;
    }
    idle();
    toolkit::paintToolkitWindows();
    lastTicks = ticks + 100;
    inIdleStuff = true;
    theEffect().masterIdle();
    inIdleStuff = false;
}

bool AEffGUIEditor::beforeSizeChange(const CRect& newSize, const CRect&) {
    const std::int32_t width = trunc(newSize.getWidth()), height = trunc(newSize.getHeight());
    if (theEffect().canHostDo("sizeWindow"))
        return theEffect().sizeWindow(width, height);
    if (frame)
        window_.fitContainers(width, height);
    return true;
}

} // namespace skin
