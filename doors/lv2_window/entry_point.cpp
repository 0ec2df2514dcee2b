// The function that an LV2 host's loader of windows looks for, and those that it finds through it. Only
// making a window can fail. No exception leaves them: where memory runs out, they do less.
#include "doors/lv2/ports.h"
#include "doors/lv2_window/lv2_window.h"

#include <memory>
#include <new>
#include <string_view>
#include <utility>

namespace {

using lv2_window::Lv2Window;

/// The host's hold on a window. The views may hold it longer, if the host ends it in one of their events.
class HostsHold {
  public:
    explicit HostsHold(std::shared_ptr<Lv2Window> window) : window_(std::move(window)) {}
    ~HostsHold() { window_->close(); }
    HostsHold(const HostsHold&) = delete;
    HostsHold& operator=(const HostsHold&) = delete;

    /// To be held during a call: the host may end the window in the middle of it.
    std::shared_ptr<Lv2Window> window() const { return window_; }

  private:
    std::shared_ptr<Lv2Window> window_;
};

std::shared_ptr<Lv2Window> windowOf(LV2UI_Handle handle) {
    return static_cast<HostsHold*>(handle)->window();
}

LV2UI_Handle instantiate(const LV2UI_Descriptor*, const char* plugin, const char*, LV2UI_Write_Function write,
                         LV2UI_Controller controller, LV2UI_Widget* widget,
                         const LV2_Feature* const* features) noexcept try {
    if (std::string_view(plugin) != lv2_door::kPluginUri)
        return nullptr;
    auto hold = std::make_unique<HostsHold>(std::make_shared<Lv2Window>(write, controller, features));
    if (!hold->window()->open())
        return nullptr;
    *widget = hold->window()->widget();
    return hold.release();
} catch (...) {
    return nullptr;
}

void cleanup(LV2UI_Handle handle) noexcept {
    delete static_cast<HostsHold*>(handle);
}

void portEvent(LV2UI_Handle handle, std::uint32_t port, std::uint32_t size, std::uint32_t format,
               const void* data) noexcept try {
    windowOf(handle)->portEvent(port, size, format, data);
} catch (const std::bad_alloc&) {
    // The next value shows all of it.
}

int idle(LV2UI_Handle handle) noexcept try {
    windowOf(handle)->idle();
    return 0;
} catch (...) {
    return 0;
}

constexpr LV2UI_Idle_Interface kIdle = {idle};

const void* extensionData(const char* uri) noexcept {
    return std::string_view(uri) == LV2_UI__idleInterface ? &kIdle : nullptr;
}

constexpr LV2UI_Descriptor kDescriptor = {lv2_door::kWindowUri, instantiate, cleanup, portEvent,
                                          extensionData};

} // namespace

LV2_SYMBOL_EXPORT const LV2UI_Descriptor* lv2ui_descriptor(std::uint32_t index) {
    return index == 0 ? &kDescriptor : nullptr;
}
