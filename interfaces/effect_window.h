// The window as the effect knows it: where it tells of changes. Every function may be called on any thread,
// also while the window is closed, and none waits.
#pragma once

#include "base/shared.h"
#include "parameters/pattern_laws.h"

#include <cstdint>
#include <span>

namespace interfaces {

/// As a value of EffectWindow::setParameter: sets all controls from the effect.
constexpr std::int32_t kRefreshAll = -909090;

/// The levels of all taps, linear, 0..1. The effect's own table, which other threads may rewrite at any time.
using TapGains = std::span<const base::Shared<float>, parameters::kMaxTaps>;

class EffectWindow {
  public:
    /// Whether a host has opened it.
    virtual bool isOpen() = 0;

    /// Shows a parameter's new value, normalised; with kRefreshAll for id and value all parameters.
    virtual void setParameter(std::int32_t id, float value) = 0;
    /// Has the views of a parameter drawn at one of the next idle rounds.
    virtual void queueParameterUpdate(std::int32_t id) = 0;

    /// Shows a new pattern. The values are those of "Taps #", "Stretch dly" and "Bs Lgh 1", normalised,
    /// `sampleRate` is in Hz.
    virtual void updateTapView(float tapsValue, float stretchValue, float lengthValue, float sampleRate,
                               TapGains tapGain) = 0;

    /// Binds the controller to the control that waits for one, if any.
    virtual void learnController(std::int32_t controller) = 0;

  protected:
    ~EffectWindow() = default;
};

} // namespace interfaces
