#include "doors/lv2_window/lv2_window.h"

#include "base/fixed_text.h"
#include "doors/lv2/ports.h"
#include "editor/my_editor.h"
#include "parameters/pattern_laws.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string_view>

namespace lv2_window {

using namespace parameters;

namespace {

constexpr char kWindow[] = "Window";
constexpr std::uint32_t kFloatFormat = 0;

} // namespace

Lv2Window::Lv2Window(LV2UI_Write_Function write, LV2UI_Controller controller,
                     const LV2_Feature* const* features)
    : write_(write), controller_(controller), features_(features), log_(features) {
    for (std::int32_t id = 0; id < kNumLiveParameters; ++id)
        value(id) = parameter(id).defaultValue;
    computePattern();
}

Lv2Window::~Lv2Window() = default;

// The host's calls

bool Lv2Window::open() {
    if (!features_.parent) {
        log_.warn(kWindow, "the host offers no parent");
        return false;
    }
    window_.prepare(pattern_.tapGain);
    if (!window_.open(features_.parent)) {
        log_.warn(kWindow, "cannot be opened in the parent that the host offers");
        return false;
    }
    requestRoom();
    return true;
}

void Lv2Window::requestRoom() {
    const editor::WindowSize size = window_.size();
    // Hosts look at it when they make room.
    window_.announceSize();
    if (canHostDo("sizeWindow"))
        sizeWindow(size.width, size.height);
}

LV2UI_Widget Lv2Window::widget() const {
    return window_.ownWindow();
}

void Lv2Window::close() {
    for (std::int32_t id = 0; id < kNumLiveParameters; ++id)
        if (echoes(id).isHeld())
            tellOfTouch(id, false);
    write_ = nullptr;
    features_ = {};
    window_.close();
}

void Lv2Window::idle() {
    window_.idle();
    for (std::int32_t id = 0; id < kNumLiveParameters; ++id)
        if (const auto late = echoes(id).idle())
            show(id, *late);
}

void Lv2Window::portEvent(std::uint32_t port, std::uint32_t size, std::uint32_t format, const void* data) {
    const bool isControl = port >= lv2_door::kFirstControl && port < lv2_door::kNumPorts;
    float received = 0.0f;
    if (!isControl || format != kFloatFormat || size != sizeof received || !data)
        return;
    std::memcpy(&received, data, sizeof received);
    if (std::isnan(received))
        return;
    const auto id = static_cast<std::int32_t>(port - lv2_door::kFirstControl);
    if (const auto news = echoes(id).received(std::clamp(received, 0.0f, 1.0f)))
        show(id, *news);
}

// The parameters

float Lv2Window::getParameter(std::int32_t id) {
    return isLive(id) ? value(id) : 0.0f;
}

void Lv2Window::setParameterAutomated(std::int32_t id, float newValue) {
    if (!isLive(id) || std::isnan(newValue))
        return;
    const float ranged = std::clamp(newValue, 0.0f, 1.0f);
    show(id, ranged);
    echoes(id).written(ranged);
    if (write_)
        write_(controller_, lv2_door::controlPort(id), sizeof ranged, kFloatFormat, &ranged);
}

/// Everything that hangs on the parameters of the pattern is drawn with each of them.
void Lv2Window::show(std::int32_t id, float newValue) {
    value(id) = newValue;
    editor::myEditor& shown = window_.editor();
    if (shapesPattern(id)) {
        computePattern();
        shown.setParameter(interfaces::kRefreshAll, static_cast<float>(interfaces::kRefreshAll));
        shown.updateTapView(value(kTaps), value(kStretch), value(kBaseLength), getSampleRate(),
                            pattern_.tapGain);
    } else {
        shown.setParameter(id, newValue);
    }
    shown.queueParameterUpdate(id);
}

void Lv2Window::computePattern() {
    const dsp::PatternParameters shape = {value(kBaseLength), value(kTaps), value(kStretch),
                                          std::min(value(kAmpDecay), kMostAmpDecay), value(kCurve)};
    dsp::computeTaps(pattern_, shape, features_.sampleRate);
}

void Lv2Window::getParameterName(std::int32_t id, char* text) {
    base::copyText(text, parameter(id).name, interfaces::kParameterTextSize - 1);
}

void Lv2Window::getParameterLabel(std::int32_t, char* text) {
    *text = '\0';
}

void Lv2Window::getParameterDisplay(std::int32_t id, char* text) {
    *text = '\0';
    parameter(id).display(getParameter(id), text);
}

// Gestures

bool Lv2Window::beginEdit(std::int32_t id) {
    if (!isLive(id))
        return false;
    echoes(id).beginEdit(value(id));
    return tellOfTouch(id, true);
}

bool Lv2Window::endEdit(std::int32_t id) {
    if (!isLive(id))
        return false;
    const bool isTold = tellOfTouch(id, false);
    if (const auto late = echoes(id).endEdit())
        show(id, *late);
    return isTold;
}

bool Lv2Window::tellOfTouch(std::int32_t id, bool isTouched) {
    if (!features_.touch)
        return false;
    features_.touch->touch(features_.touch->handle, lv2_door::controlPort(id), isTouched);
    return true;
}

// The window

void Lv2Window::reportUnreadableSkin(const char* line) {
    window_.noteFault(line);
}

bool Lv2Window::canHostDo(const char* what) {
    return features_.resize && std::string_view(what) == "sizeWindow";
}

bool Lv2Window::sizeWindow(std::int32_t width, std::int32_t height) {
    return features_.resize && features_.resize->ui_resize(features_.resize->handle, width, height) == 0;
}

} // namespace lv2_window
