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
    /// Says what went wrong with a bank or a chunk, under the title `caption`. Returns when that is done,
    /// which may take until a person has acknowledged it. Any thread but the audio thread.
    virtual void reportProblem(const char* text, const char* caption) = 0;

  protected:
    ~EffectHost() = default;
};

} // namespace interfaces
