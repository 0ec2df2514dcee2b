// Stands in for audio channels that a host has not given.
#pragma once

#include "effect/multitap_delay.h"

#include <array>
#include <cstdint>

namespace effect {

using InputChannels = std::array<const float*, 2>;
using OutputChannels = std::array<float*, 2>;

class MissingChannels {
  public:
    /// Plays a block through `effect`. Null for a channel that is missing: an input is silent then, an output
    /// unheard, and the block is played in pieces of at most kMostFramesAtOnce. The audio thread. Allocates
    /// nothing, locks nothing.
    void process(MultitapDelay& effect, const InputChannels& inputs, const OutputChannels& outputs,
                 std::uint32_t frames);

  private:
    static constexpr std::uint32_t kMostFramesAtOnce = 1024;
    using Samples = std::array<float, kMostFramesAtOnce>;

    void playInPieces(MultitapDelay& effect, const InputChannels& inputs, const OutputChannels& outputs,
                      std::uint32_t frames);

    const Samples silence_ = {};
    Samples unheard_ = {};
};

} // namespace effect
