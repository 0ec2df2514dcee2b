// The effect's window as CLAP hosts know it: made without a place, put into a window of the host's, shown and
// hidden, and served by a timer of the host's. What the hand does goes to the effect at once and to the host
// with the next block; what changes in the effect reaches the window by itself.
//
// Everything runs on the host's main thread.
#pragma once

#include "doors/clap/clap_delay.h"
#include "editor/editor_or_notice.h"
#include "interfaces/editor_host.h"

#include <clap/id.h>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

namespace clap_door {

class ClapWindow final : public interfaces::EditorHost {
  public:
    /// Asks nothing of anybody. `delay` outlives the window.
    explicit ClapWindow(ClapDelay& delay) : delay_(delay) {}
    ClapWindow(const ClapWindow&) = delete;
    ClapWindow& operator=(const ClapWindow&) = delete;

    /// Makes the window, which lies nowhere yet, and looks at the chosen skin; what is wrong with that goes
    /// to the host's log. False if there is one already or the host has no timers, without which a window
    /// would stand still. Throws std::bad_alloc.
    bool create();
    /// The host may have taken its own window away before. May be called in the middle of any other call.
    void destroy();
    bool isCreated() const { return isCreated_; }

    /// Opens the window in one of the host's, or a notice if nothing can be built from the skin. Again it
    /// moves to another one. False if the display does not know `parent`. Throws std::bad_alloc.
    bool setParent(void* parent);
    /// False if it lies in no window.
    bool setVisible(bool isVisible) { return isCreated_ && window_.setVisible(isVisible); }
    /// The only size that it can have. When it has been created.
    editor::WindowSize size() const { return window_.size(); }

    /// Serves the window if the timer is its own.
    void onTimer(clap_id timer);
    /// The host calls as it was asked to.
    void onMainThread();

    /// The host ends the instance, and is told nothing from now on.
    void end();

    // For the editor. The ids above the live ones are held free, as in other formats: a skin may name them.
    std::int32_t getNumParameters() const override { return parameters::kNumParameters; }
    float getParameter(std::int32_t id) override { return delay_.effect().getParameter(id); }
    /// The same as setParameterAutomated(): a host is told of every value.
    void setParameter(std::int32_t id, float value) override { delay_.setByHand(id, value); }
    void setParameterAutomated(std::int32_t id, float value) override { delay_.setByHand(id, value); }
    void getParameterName(std::int32_t id, char* text) override;
    void getParameterLabel(std::int32_t id, char* text) override;
    void getParameterDisplay(std::int32_t id, char* text) override;
    float getSampleRate() const override { return delay_.effect().getSampleRate(); }
    bool bindsControllers() const override { return true; }
    bool beginEdit(std::int32_t id) override;
    bool endEdit(std::int32_t id) override;
    void reportUnreadableSkin(const char* line) override { window_.noteFault(line); }
    void masterIdle() override {}
    /// "sizeWindow", if the host resizes.
    bool canHostDo(const char* what) override;
    bool sizeWindow(std::int32_t width, std::int32_t height) override;
    std::shared_ptr<void> keepAlive() override { return instance_.lock(); }

    /// The instance, which the window is a part of.
    void setInstance(std::weak_ptr<void> instance) { instance_ = std::move(instance); }

  private:
    bool startTimer();
    void stopTimer();
    void endGestures();
    void warn(const char* text) const;
    int& holds(std::int32_t id) { return holds_[static_cast<std::size_t>(id)]; }

    ClapDelay& delay_;
    std::weak_ptr<void> instance_;
    editor::EditorOrNotice window_{
        *this, [this](const char* subject, const char* text) { delay_.host().warn(subject, text); }};
    bool isCreated_ = false;
    std::optional<clap_id> timer_; ///< runs
    /// How often the hand holds each parameter: controls may begin a gesture inside another one.
    std::array<int, parameters::kNumLiveParameters> holds_ = {};
};

} // namespace clap_door
