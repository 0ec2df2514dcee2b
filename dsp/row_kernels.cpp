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

template <class Length>
void crossOver(const Row& wet, const Row& other, const Row& stereo, Row& pair, Length frames) {
    withProductFor(holdsTiny(wet, frames), [&](auto times) {
        withProductFor(holdsTiny(other, frames), [&](auto timesOther) {
            for (std::int32_t i = 0; i < frames; ++i)
                pair.data()[i] = crossed(wet.data()[i], other.data()[i], stereo.data()[i], times, timesOther);
        });
    });
}

void mixOutput(const StereoRow& dry, const StereoRow& wet, const SmoothedRows& levels, float* left,
               float* right, std::int32_t frames) {
    StereoRow pair, mixed;
    const float* const mix = levels.mix.data();
    const float* const pan = levels.pan.data();
    atItsLength<kSubBlockFrames>(frames, [&](auto length) {
        crossOver(wet.left, wet.right, levels.stereo, pair.left, length);
        crossOver(wet.right, wet.left, levels.stereo, pair.right, length);
        withProductFor(holdsTiny(pair.left, length) || holdsTiny(dry.left, length), [&](auto times) {
            for (std::int32_t i = 0; i < length; ++i)
                mixed.left.data()[i] =
                    mixedLeft(pair.left.data()[i], dry.left.data()[i], pan[i], mix[i], times);
        });
        withProductFor(holdsTiny(pair.right, length) || holdsTiny(dry.right, length), [&](auto times) {
            for (std::int32_t i = 0; i < length; ++i)
                mixed.right.data()[i] =
                    mixedRight(pair.right.data()[i], dry.right.data()[i], pan[i], mix[i], times);
        });
        const auto bytes = sizeof(float) * static_cast<std::size_t>(length);
        __builtin_memcpy(left, mixed.left.data(), bytes);
        __builtin_memcpy(right, mixed.right.data(), bytes);
    });
}

} // namespace

const RowKernels kRowKernels = {sweep, mixInput, mixOutput};

} // namespace dsp::INSTRUCTION_SET
