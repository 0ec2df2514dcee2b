// Products of tiny samples against the processor's own.
#include "dsp/subnormal_product.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

namespace {

using namespace dsp;

/// The product that the processor computes, whatever the compiler knows of the factors.
float processorsProduct(float sample, float level) {
    const volatile float first = sample, second = level;
    return first * second;
}

void expectSameBits(float sample, float level) {
    const float expected = processorsProduct(sample, level);
    const float product = subnormalProduct(sample, level);
    if (std::isnan(expected))
        EXPECT_TRUE(std::isnan(product)) << std::hexfloat << sample << " * " << level;
    else
        EXPECT_EQ(std::bit_cast<std::uint32_t>(product), std::bit_cast<std::uint32_t>(expected))
            << std::hexfloat << sample << " * " << level;
}

TEST(SubnormalProduct, HasTheBitsOfAnyProduct) {
    std::mt19937 random(1);
    for (int i = 0; i < 3000000 && !testing::Test::HasFailure(); ++i)
        expectSameBits(std::bit_cast<float>(static_cast<std::uint32_t>(random())),
                       std::bit_cast<float>(static_cast<std::uint32_t>(random())));
}

TEST(SubnormalProduct, HasTheBitsOfTinySamplesTimesLevels) {
    std::mt19937 random(2);
    for (int i = 0; i < 3000000 && !testing::Test::HasFailure(); ++i) {
        const auto exponent = static_cast<std::uint32_t>(random() % 60) << 23;
        const std::uint32_t sample = (static_cast<std::uint32_t>(random()) & 0x807FFFFFu) | exponent;
        expectSameBits(std::bit_cast<float>(sample), static_cast<float>(random() % 0x1000001u) * 0x1p-24f);
    }
}

TEST(SubnormalProduct, RoundsHalfStepsToEven) {
    constexpr float step = std::numeric_limits<float>::denorm_min();
    for (int steps = -9; steps <= 9; ++steps)
        for (const float level : {0.25f, 0.5f, 0.75f, 1.0f, 1.5f, 2.0f, 0x1.fffffep-2f, 0x1.000002p-1f})
            expectSameBits(static_cast<float>(steps) * step, level);
}

TEST(SubnormalProduct, HasTheBitsWhereTheNormalNumbersBegin) {
    for (const float sample :
         {0x1p-126f, 0x1.fffffcp-127f, 0x1p-125f, 0x1.fffffep-126f, 0x1p-80f, 0x1.fffffep-81f})
        for (const float level : {0x1.fffffep-1f, 1.0f, 0x1.000002p0f, 0x1.555556p-1f, 0x1p-24f, 0x1p24f})
            for (const float sign : {1.0f, -1.0f})
                expectSameBits(sign * sample, level);
}

TEST(SubnormalProduct, KeepsSignsOfZeroAndWhatIsNoNumber) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr float smallest = std::numeric_limits<float>::denorm_min();
    for (const float sample : {0.0f, -0.0f, smallest, -smallest, 1.0f, infinity, nan})
        for (const float level : {0.0f, -0.0f, 0.5f, -0.5f, 1e30f, infinity, -infinity, nan})
            expectSameBits(sample, level);
}

TEST(SubnormalProduct, CountsNoZeroAsTiny) {
    EXPECT_FALSE(isTiny(0.0f));
    EXPECT_FALSE(isTiny(-0.0f));
    EXPECT_TRUE(isTiny(std::numeric_limits<float>::denorm_min()));
    EXPECT_TRUE(isTiny(-0x1.fffffep-81f));
    EXPECT_FALSE(isTiny(0x1p-80f));
}

} // namespace
