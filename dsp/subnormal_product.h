// Products of tiny samples. Processors multiply subnormals ten to a hundred times more slowly than other
// numbers; a signal that decays below them would cost more than one that sounds. Static, as all that the
// kernels include (dsp/memory_span.h).
#pragma once

#include <bit>
#include <cstdint>

namespace dsp {

/// Bits of a sample's magnitude, in the order of their values.
static inline std::uint32_t magnitudeBits(float sample) {
    return std::bit_cast<std::uint32_t>(sample) & 0x7FFFFFFFu;
}

/// 2^-80. What is below it may become subnormal in a few products with levels; what is not below it does not.
constexpr std::uint32_t kTinyBits = (127u - 80u) << 23;

/// Whether a sample is tiny, but not zero.
static inline bool isTiny(float sample) {
    return magnitudeBits(sample) - 1 < kTinyBits - 1;
}

/// `sample` * `level`, to the last bit, with no subnormal arithmetic if the sample is tiny. It has no
/// branches, so that compilers vectorise loops over it, and computes both products. The plain one takes the
/// larger of the sample and 2^-80: an operand that is merely selected, compilers replace by the sample.
///
/// A tiny sample is counted in steps of the smallest subnormal, 2^-149. A double holds its product with any
/// level exactly. Below 2^24 steps floats have all whole steps and the bits of a float are their number, so
/// the product is rounded to whole steps, to even as for any float. From 2^24 on, floats are normal.
static inline float subnormalProduct(float sample, float level) {
    constexpr std::int32_t tiny = static_cast<std::int32_t>(kTinyBits);
    constexpr std::int32_t stepExponent = 149 << 23;
    constexpr std::int32_t smallestNormal = 1 << 23;
    constexpr double withoutFractions = 0x1p52;
    const auto magnitude = static_cast<std::int32_t>(magnitudeBits(sample));
    const float levelMagnitude = std::bit_cast<float>(magnitudeBits(level));
    const std::int32_t above = magnitude - tiny;
    const std::int32_t belowTiny = tiny + (above & (above >> 31));
    const std::int32_t aboveTiny = tiny + (above & ~(above >> 31));

    const float fewSteps = static_cast<float>(belowTiny & (smallestNormal - 1));
    const float manySteps = std::bit_cast<float>(belowTiny + stepExponent);
    const double steps = static_cast<double>(belowTiny < smallestNormal ? fewSteps : manySteps) *
                         static_cast<double>(levelMagnitude);
    const auto whole = static_cast<std::uint32_t>(std::bit_cast<std::uint64_t>(steps + withoutFractions));
    const float normal = static_cast<float>((steps < 0x1p24 ? 0x1p24 : steps) * 0x1p-149);
    const std::uint32_t exact = steps < 0x1p24 ? whole : std::bit_cast<std::uint32_t>(normal);

    const float plain = std::bit_cast<float>(aboveTiny) * levelMagnitude;
    const std::uint32_t sign =
        (std::bit_cast<std::uint32_t>(sample) ^ std::bit_cast<std::uint32_t>(level)) & 0x80000000u;
    return std::bit_cast<float>((above < 0 ? exact : std::bit_cast<std::uint32_t>(plain)) | sign);
}

} // namespace dsp
