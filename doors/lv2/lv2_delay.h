// The effect as LV2 hosts know it. A host holds one instance, connects each port to a place in memory and has
// it read and write there. What a control's place holds is what the parameter is: the host alone stores it.
#pragma once

#include "base/four_character_code.h"
#include "doors/lv2/host_log.h"
#include "doors/lv2/ports.h"
#include "effect/large_object.h"
#include "effect/missing_channels.h"
#include "effect/multitap_delay.h"

#include <array>
#include <cstdint>

namespace lv2_door {

class Lv2Delay final : public effect::LargeObject, private interfaces::EffectHost {
  public:
    /// `rate` in Hz. A bank that cannot be used is told to the host's log. Throws std::bad_alloc.
    Lv2Delay(double rate, const LV2_Feature* const* features);

    /// Where a port reads or writes from now on; null for nowhere. Ports that there are not are passed over.
    void connectPort(std::uint32_t port, void* place);
    /// Forgets every echo, sets every parameter and brings the taps to their places.
    void activate();
    /// Plays a block, which may be of any length, also of no frame, and in place. The first block after
    /// activate() begins like that: a host may have placed and filled the controls only now. Allocates
    /// nothing, locks nothing. The audio thread.
    void run(std::uint32_t frames);

  private:
    bool updateDisplay() override { return false; }
    std::int32_t uniqueID() const override { return base::fourCharacterCode("qlvd"); }
    void reportProblem(const char* text, const char* caption) override { log_.warn(caption, text); }

    float controlValue(std::int32_t id) const;
    void setParameter(std::int32_t id, float value);
    void setAllParameters();
    void setChangedParameters();

    HostLog log_;
    effect::MultitapDelay effect_{*this};
    effect::InputChannels inputs_ = {};
    effect::OutputChannels outputs_ = {};
    std::array<const float*, parameters::kNumLiveParameters> controls_ = {};
    /// What each parameter was set to last.
    std::array<float, parameters::kNumLiveParameters> values_;
    bool isPlaying_ = false; ///< run() has been called since activate()
    effect::MissingChannels missing_;
};

} // namespace lv2_door
