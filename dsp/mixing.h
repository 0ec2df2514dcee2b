// The mixes before and behind the delay, for one frame. Static, as all that the kernels include
// (dsp/memory_span.h).
#pragma once

#include "dsp/memory_span.h"
#include "dsp/subnormal_product.h"

namespace dsp {

/// One signal of a sub-block for each channel.
struct StereoRow {
    alignas(64) Row left, right;
};

/// One frame of both channels.
struct StereoSample {
    float left, right;
};

/// The levels of the output's mix in one frame, normalised.
struct MixLevels {
    float stereo, mix, pan;
};

/// The product of a sample and a level, as processors have it and for tiny samples.
struct PlainProduct {
    float operator()(float sample, float level) const { return sample * level; }
};
struct SubnormalProduct {
    float operator()(float sample, float level) const { return subnormalProduct(sample, level); }
};

/// Calls `mix` with the product that is right for samples of which some are tiny or none is.
template <class Mix>
static inline auto withProductFor(bool someTiny, Mix mix) {
    return someTiny ? mix(SubnormalProduct{}) : mix(PlainProduct{});
}

/// "Pre Pan" mixes both channels into one.
template <class Product>
static inline float mixedInput(const StereoSample& dry, float pan, Product times) {
    return times(dry.left, 1.0f - pan) + times(dry.right, pan);
}

/// "Stereo" crosses the wet pair over: a channel is its own share of the wet one and a share of the other.
template <class Product>
static inline float ownShare(float wet, float stereo, Product times) {
    return times(wet, 1.0f - stereo);
}
template <class Product>
static inline float crossingShare(float otherWet, float stereo, Product times) {
    return times(otherWet, stereo);
}

/// "Out Pan" balances the crossed pair, "Dry Wet" mixes it with the dry input.
template <class Product>
static inline float leftShare(float crossed, float pan, float mix, Product times) {
    return times(times(crossed, (1.0f - pan) + (1.0f - pan)), mix);
}
template <class Product>
static inline float rightShare(float crossed, float pan, float mix, Product times) {
    return times(times(crossed, pan) + times(crossed, pan), mix);
}
template <class Product>
static inline float dryShare(float dry, float mix, Product times) {
    return times(dry, 1.0f - mix);
}

/// The output of one frame.
static inline StereoSample mixedOutput(const StereoSample& dry, const StereoSample& wet,
                                       const MixLevels& levels) {
    const float stereo = levels.stereo, mix = levels.mix, pan = levels.pan;
    const StereoSample pair = withProductFor(isTiny(wet.left) || isTiny(wet.right), [&](auto times) {
        return StereoSample{ownShare(wet.left, stereo, times) + crossingShare(wet.right, stereo, times),
                            ownShare(wet.right, stereo, times) + crossingShare(wet.left, stereo, times)};
    });
    const bool someTiny = isTiny(pair.left) || isTiny(pair.right) || isTiny(dry.left) || isTiny(dry.right);
    return withProductFor(someTiny, [&](auto times) {
        return StereoSample{leftShare(pair.left, pan, mix, times) + dryShare(dry.left, mix, times),
                            rightShare(pair.right, pan, mix, times) + dryShare(dry.right, mix, times)};
    });
}

} // namespace dsp
