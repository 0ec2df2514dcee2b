#include "doors/lv2_window/lv2_window.h"

#include "base/fixed_text.h"
#include "doors/lv2/ports.h"
#include "editor/my_editor.h"
#include "parameters/pattern_laws.h"
#include "platform/message_box.h"
#include "skin/notice_editor.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string_view>

namespace lv2_window {

using namespace parameters;

namespace {

constexpr char kSkinError[] = "Skin Error", kWindow[] = "Window";
constexpr std::uint32_t kFloatFormat = 0;

/// While one of these lives, messages go to a host's log and not into boxes: a host that looks at all windows
/// has nobody to close a box.
class MessagesInLog {
  public:
    explicit MessagesInLog(lv2_door::HostLog& log) { platform::replaceMessageBox(write, &log); }
    ~MessagesInLog() { platform::replaceMessageBox(nullptr, nullptr); }
    MessagesInLog(const MessagesInLog&) = delete;
    MessagesInLog& operator=(const MessagesInLog&) = delete;

  private:
    static void write(void* log, const char* text, const char* caption, const platform::MessageLook&) {
        static_cast<lv2_door::HostLog*>(log)->warn(caption, text);
    }
};

interfaces::EditorRect placeOf(interfaces::AEffEditor& editor) {
    interfaces::EditorRect* place = nullptr;
    return editor.getRect(&place) ? *place : interfaces::EditorRect{};
}

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
    if (!openSkin() && !openNotice()) {
        log_.warn(kWindow, "cannot be opened in the parent that the host offers");
        return false;
    }
    requestRoom();
    return true;
}

bool Lv2Window::openSkin() {
    const MessagesInLog messages(log_);
    editor_ = std::make_unique<editor::myEditor>(this, pattern_.tapGain);
    editor_->setKnobMode(VSTGUI::kLinearMode);
    const interfaces::EditorRect place = placeOf(*editor_);
    if (place.right <= 0 || place.bottom <= 0) {
        if (fault_.empty())
            reportUnreadableSkin("The skin has no background picture that can be read");
        return false;
    }
    if (editor_->open(features_.parent) && editor_->ownWindow())
        shown_ = editor_.get();
    else
        editor_->close();
    return shown_ != nullptr;
}

bool Lv2Window::openNotice() {
    notice_ = std::make_unique<skin::NoticeEditor>(this, fault_);
    if (notice_->open(features_.parent) && notice_->ownWindow())
        shown_ = notice_.get();
    return shown_ != nullptr;
}

void Lv2Window::requestRoom() {
    const interfaces::EditorRect place = placeOf(*shown_);
    // Hosts look at it when they make room.
    shown_->announceSize();
    if (canHostDo("sizeWindow"))
        sizeWindow(place.right, place.bottom);
}

LV2UI_Widget Lv2Window::widget() const {
    return shown_ ? shown_->ownWindow() : nullptr;
}

void Lv2Window::close() {
    for (std::int32_t id = 0; id < kNumLiveParameters; ++id)
        if (echoes(id).isHeld())
            tellOfTouch(id, false);
    write_ = nullptr;
    features_ = {};
    shown_ = nullptr;
    if (editor_)
        editor_->close();
    if (notice_)
        notice_->close();
}

void Lv2Window::idle() {
    if (shown_)
        shown_->idle();
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
    if (shapesPattern(id)) {
        computePattern();
        editor_->setParameter(interfaces::kRefreshAll, static_cast<float>(interfaces::kRefreshAll));
        editor_->updateTapView(value(kTaps), value(kStretch), value(kBaseLength), getSampleRate(),
                               pattern_.tapGain);
    } else {
        editor_->setParameter(id, newValue);
    }
    editor_->queueParameterUpdate(id);
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
    fault_ = line;
    log_.warn(kSkinError, line);
}

bool Lv2Window::canHostDo(const char* what) {
    return features_.resize && std::string_view(what) == "sizeWindow";
}

bool Lv2Window::sizeWindow(std::int32_t width, std::int32_t height) {
    return features_.resize && features_.resize->ui_resize(features_.resize->handle, width, height) == 0;
}

} // namespace lv2_window
