#include "effect/missing_channels.h"

#include <algorithm>

namespace effect {

void MissingChannels::process(MultitapDelay& effect, const InputChannels& inputs,
                              const OutputChannels& outputs, std::uint32_t frames) {
    const bool isComplete = inputs[0] && inputs[1] && outputs[0] && outputs[1];
    if (isComplete || frames == 0)
        effect.processReplacing(inputs.data(), outputs.data(), static_cast<std::int32_t>(frames));
    else
        playInPieces(effect, inputs, outputs, frames);
}

void MissingChannels::playInPieces(MultitapDelay& effect, const InputChannels& inputs,
                                   const OutputChannels& outputs, std::uint32_t frames) {
    for (std::uint32_t first = 0; first < frames; first += kMostFramesAtOnce) {
        InputChannels ins;
        OutputChannels outs;
        for (std::size_t channel = 0; channel < 2; ++channel) {
            ins[channel] = inputs[channel] ? inputs[channel] + first : silence_.data();
            outs[channel] = outputs[channel] ? outputs[channel] + first : unheard_.data();
        }
        const std::uint32_t count = std::min(frames - first, kMostFramesAtOnce);
        effect.processReplacing(ins.data(), outs.data(), static_cast<std::int32_t>(count));
    }
}

} // namespace effect
