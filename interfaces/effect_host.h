// The host as the effect knows it. A door implements it.
#pragma once

#include <cstdint>

namespace interfaces {

class EffectHost {
  public:
    /// Has the host read names and values again. Any thread.
    virtual bool updateDisplay() = 0;
    /// The four-character code under which the host knows the effect; banks carry it too.
    virtual std::int32_t uniqueID() const = 0;

  protected:
    ~EffectHost() = default;
};

} // namespace interfaces
