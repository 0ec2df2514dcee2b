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

/// "Stereo" crosses a channel of the wet pair over with the `other` one.
template <class Product, class OtherProduct>
static inline float crossed(float wet, float other, float stereo, Product times, OtherProduct timesOther) {
    return times(wet, 1.0f - stereo) + timesOther(other, stereo);
}

/// "Out Pan" balances a channel of the crossed pair, "Dry Wet" mixes it with the dry input.
template <class Product>
static inline float mixedLeft(float crossed, float dry, float pan, float mix, Product times) {
    return times(times(crossed, (1.0f - pan) + (1.0f - pan)), mix) + times(dry, 1.0f - mix);
}
template <class Product>
static inline float mixedRight(float crossed, float dry, float pan, float mix, Product times) {
    return times(times(crossed, pan) + times(crossed, pan), mix) + times(dry, 1.0f - mix);
}

/// All of them for one frame.
static inline StereoSample mixedOutput(const StereoSample& dry, const StereoSample& wet,
                                       const MixLevels& levels) {
    const float stereo = levels.stereo, mix = levels.mix, pan = levels.pan;
    const StereoSample pair = withProductFor(isTiny(wet.left) || isTiny(wet.right), [&](auto times) {
        return StereoSample{crossed(wet.left, wet.right, stereo, times, times),
                            crossed(wet.right, wet.left, stereo, times, times)};
    });
    const bool someTiny = isTiny(pair.left) || isTiny(pair.right) || isTiny(dry.left) || isTiny(dry.right);
    return withProductFor(someTiny, [&](auto times) {
        return StereoSample{mixedLeft(pair.left, dry.left, pan, mix, times),
                            mixedRight(pair.right, dry.right, pan, mix, times)};
    });
}

} // namespace dsp
