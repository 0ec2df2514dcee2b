// The effect's window as LV2 hosts know it. It speaks to the instance that plays through ports alone: what a
// hand does is written to them, and what they hold the host tells. The picture of the echoes is computed from
// their values by the law that the engine plays by.
//
// Everything runs on the host's window thread.
#pragma once

#include "doors/lv2/host_log.h"
#include "doors/lv2_window/echo_filter.h"
#include "doors/lv2_window/window_features.h"
#include "dsp/tap_pattern.h"
#include "editor/editor_or_notice.h"
#include "interfaces/editor_host.h"
#include "parameters/parameter_table.h"

#include <lv2/core/lv2.h>
#include <lv2/ui/ui.h>

#include <array>
#include <cstdint>
#include <memory>

namespace lv2_window {

/// Always held by a std::shared_ptr, as its views may end later than the host's window.
class Lv2Window final : public interfaces::EditorHost, public std::enable_shared_from_this<Lv2Window> {
  public:
    /// With the parameters' defaults, not open yet. `write` and `controller` are the host's way to its ports;
    /// `features` may be null.
    Lv2Window(LV2UI_Write_Function write, LV2UI_Controller controller, const LV2_Feature* const* features);
    ~Lv2Window() override;
    Lv2Window(const Lv2Window&) = delete;
    Lv2Window& operator=(const Lv2Window&) = delete;

    /// Opens in the host's window, and asks the host for room. What is wrong with the skin goes to the host's
    /// log; if nothing can be built from it, a notice is shown in its place. False if nothing could be
    /// opened. Throws std::bad_alloc.
    bool open();
    /// The system's handle of the window, the same from open() to close().
    LV2UI_Widget widget() const;
    /// The host has ended the window: from now on it is told nothing.
    void close();
    void idle();
    /// What a port holds. Anything but a number for a control is passed over.
    void portEvent(std::uint32_t port, std::uint32_t size, std::uint32_t format, const void* data);

    // For the editor. The ids above the live ones are held free, as in other formats: a skin may name them.
    std::int32_t getNumParameters() const override { return parameters::kNumParameters; }
    float getParameter(std::int32_t id) override;
    /// The same as setParameterAutomated(): there is no way to the effect but through the host.
    void setParameter(std::int32_t id, float value) override { setParameterAutomated(id, value); }
    void setParameterAutomated(std::int32_t id, float value) override;
    void getParameterName(std::int32_t id, char* text) override;
    void getParameterLabel(std::int32_t id, char* text) override;
    void getParameterDisplay(std::int32_t id, char* text) override;
    float getSampleRate() const override { return features_.sampleRate; }
    /// Hosts bind controllers to ports by themselves.
    bool bindsControllers() const override { return false; }
    bool beginEdit(std::int32_t id) override;
    bool endEdit(std::int32_t id) override;
    void reportUnreadableSkin(const char* line) override;
    void masterIdle() override {}
    /// "sizeWindow", if the host resizes.
    bool canHostDo(const char* what) override;
    bool sizeWindow(std::int32_t width, std::int32_t height) override;
    std::shared_ptr<void> keepAlive() override { return shared_from_this(); }

  private:
    void requestRoom();
    void show(std::int32_t id, float value);
    void computePattern();
    bool tellOfTouch(std::int32_t id, bool isTouched);
    EchoFilter& echoes(std::int32_t id) { return echoes_[static_cast<std::size_t>(id)]; }
    float& value(std::int32_t id) { return values_[static_cast<std::size_t>(id)]; }

    LV2UI_Write_Function write_; ///< null once the host has ended the window
    LV2UI_Controller controller_;
    WindowFeatures features_;
    lv2_door::HostLog log_;
    std::array<float, parameters::kNumLiveParameters> values_ = {}; ///< normalised, as the window shows them
    std::array<EchoFilter, parameters::kNumLiveParameters> echoes_;
    dsp::TapPattern pattern_;
    editor::EditorOrNotice window_{
        *this, [this](const char* subject, const char* text) { log_.warn(subject, text); }};
};

} // namespace lv2_window
