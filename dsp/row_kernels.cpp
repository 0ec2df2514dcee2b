// Compiled once for each instruction set, named by INSTRUCTION_SET. All functions, those from headers
// included, are local to this file: see dsp/tap_kernels.cpp.
#include "dsp/row_kernels.h"

#include "dsp/fixed_length.h"
#include "dsp/module_fm_op.h"

namespace dsp::INSTRUCTION_SET {

namespace {

constexpr float kNan = __builtin_nanf("");

/// The bits of offsets that are zero or negative are in the order of their magnitudes. Compilers vectorise a
/// search for the extremes of integers, but not of floats.
Sweep sweep(const float* __restrict phases, float phaseMod, const float* __restrict depths,
            float* __restrict lfoOffset, std::int32_t frames) {
    return atItsLength<kSubBlockFrames>(frames, [=](auto length) {
        for (std::int32_t i = 0; i < length; ++i)
            lfoOffset[i + 1] = sweptOffset(phases[i], phaseMod, depths[i]);
        constexpr std::int32_t infinity = 0x7F800000;
        std::int32_t least = infinity;
        std::int32_t most = 0;
        std::int32_t outOfRange = 0;
        for (std::int32_t i = 0; i < length; ++i) {
            const auto magnitude = static_cast<std::int32_t>(magnitudeBits(lfoOffset[i]));
            least = magnitude < least ? magnitude : least;
            most = magnitude > most ? magnitude : most;
            outOfRange |= lfoOffset[i] <= 0.0f ? 0 : 1;
        }
        const auto offsetOf = [](std::int32_t magnitude) { return -__builtin_bit_cast(float, magnitude); };
        return outOfRange != 0 ? Sweep{lfoOffset, kNan, kNan}
                               : Sweep{lfoOffset, offsetOf(most), offsetOf(least)};
    });
}

/// Whether a row holds a sample that is tiny, but not zero.
template <class Length>
bool holdsTiny(const Row& row, Length frames) {
    std::uint32_t tiny = 0;
    for (std::int32_t i = 0; i < frames; ++i)
        tiny |= isTiny(row.data()[i]) ? 1u : 0u;
    return tiny != 0;
}

void mixInput(const StereoRow& dry, float pan, float* __restrict mono, std::int32_t frames) {
    const float* const left = dry.left.data();
    const float* const right = dry.right.data();
    atItsLength<kSubBlockFrames>(frames, [&](auto length) {
        withProductFor(holdsTiny(dry.left, length) || holdsTiny(dry.right, length), [&](auto times) {
            for (std::int32_t i = 0; i < length; ++i)
                mono[i] = mixedInput({left[i], right[i]}, pan, times);
        });
    });
}

/// Whether all samples of a row are the same.
template <class Length>
bool isSteady(const Row& row, Length frames) {
    const std::uint32_t first = __builtin_bit_cast(std::uint32_t, row.data()[0]);
    std::uint32_t difference = 0;
    for (std::int32_t i = 0; i < frames; ++i)
        difference |= __builtin_bit_cast(std::uint32_t, row.data()[i]) ^ first;
    return difference == 0;
}

/// Gives use() a function from a frame to the share that a row of samples has in a mix: share(i, times),
/// where times is the product that is right for the samples. Tiny samples that do not change, as after a
/// sound, are multiplied once if the levels do not change either.
template <class Length, class LevelsAreSteady, class Share, class Use>
void withShares(const Row& samples, Length frames, LevelsAreSteady levelsAreSteady, Share share, Use use) {
    if (!holdsTiny(samples, frames)) {
        use([&](std::int32_t i) { return share(i, PlainProduct{}); });
    } else if (isSteady(samples, frames) && levelsAreSteady()) {
        const float steady = share(0, SubnormalProduct{});
        use([=](std::int32_t) { return steady; });
    } else {
        use([&](std::int32_t i) { return share(i, SubnormalProduct{}); });
    }
}

/// sum[i] = shares(i) + others(i).
template <class Length, class Shares, class Others>
void addShares(Length frames, Shares shares, Others others, float* __restrict sum) {
    for (std::int32_t i = 0; i < frames; ++i)
        sum[i] = shares(i) + others(i);
}

template <class Length>
void crossOver(const Row& wet, const Row& other, const Row& stereo, Row& pair, Length frames) {
    const float* const levels = stereo.data();
    const auto steady = [&] { return isSteady(stereo, frames); };
    const auto own = [&](std::int32_t i, auto times) { return ownShare(wet.data()[i], levels[i], times); };
    const auto crossing = [&](std::int32_t i, auto times) {
        return crossingShare(other.data()[i], levels[i], times);
    };
    withShares(wet, frames, steady, own, [&](auto ownShares) {
        withShares(other, frames, steady, crossing,
                   [&](auto crossingShares) { addShares(frames, ownShares, crossingShares, pair.data()); });
    });
}

/// One channel of the output; `wetShare` is leftShare or rightShare of a frame.
template <class Length, class WetShare>
void mixChannel(const Row& pair, const Row& dry, const SmoothedRows& levels, WetShare wetShare, Row& mixed,
                Length frames) {
    const auto steady = [&] { return isSteady(levels.pan, frames) && isSteady(levels.mix, frames); };
    const auto dryOf = [&](std::int32_t i, auto times) {
        return dryShare(dry.data()[i], levels.mix.data()[i], times);
    };
    withShares(pair, frames, steady, wetShare, [&](auto wetShares) {
        withShares(dry, frames, steady, dryOf,
                   [&](auto dryShares) { addShares(frames, wetShares, dryShares, mixed.data()); });
    });
}

void mixOutput(const StereoRow& dry, const StereoRow& wet, const SmoothedRows& levels, float* left,
               float* right, std::int32_t frames) {
    StereoRow pair, mixed;
    const float* const mix = levels.mix.data();
    const float* const pan = levels.pan.data();
    const auto leftOf = [&](std::int32_t i, auto times) {
        return leftShare(pair.left.data()[i], pan[i], mix[i], times);
    };
    const auto rightOf = [&](std::int32_t i, auto times) {
        return rightShare(pair.right.data()[i], pan[i], mix[i], times);
    };
    atItsLength<kSubBlockFrames>(frames, [&](auto length) {
        crossOver(wet.left, wet.right, levels.stereo, pair.left, length);
        crossOver(wet.right, wet.left, levels.stereo, pair.right, length);
        mixChannel(pair.left, dry.left, levels, leftOf, mixed.left, length);
        mixChannel(pair.right, dry.right, levels, rightOf, mixed.right, length);
        const auto bytes = sizeof(float) * static_cast<std::size_t>(length);
        __builtin_memcpy(left, mixed.left.data(), bytes);
        __builtin_memcpy(right, mixed.right.data(), bytes);
    });
}

} // namespace

const RowKernels kRowKernels = {sweep, mixInput, mixOutput};

} // namespace dsp::INSTRUCTION_SET
