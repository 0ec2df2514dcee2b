// Numbers as hosts show them, down to the byte that ends them.
#include "base/number_text.h"

#include <array>
#include <clocale>
#include <limits>
#include <string>

#include <gtest/gtest.h>

namespace {

constexpr std::size_t kLimit = 10;

/// What a helper left in a buffer that held only 'x' before.
struct Written {
    std::array<char, kLimit + 3> bytes;
    Written() { bytes.fill('x'); }
    std::string text() const { return bytes.data(); }
    bool endsAtTheLimit() const {
        return bytes[kLimit] == '\0' && bytes[kLimit + 1] == 'x' && bytes[kLimit + 2] == 'x';
    }
};

Written floatText(float value) {
    Written result;
    base::float2string(value, result.bytes.data(), kLimit);
    return result;
}

std::string intText(std::int32_t value) {
    Written result;
    base::int2string(value, result.bytes.data(), kLimit);
    EXPECT_TRUE(result.endsAtTheLimit());
    return result.text();
}

std::string decibelText(float value) {
    Written result;
    base::dB2string(value, result.bytes.data(), kLimit);
    EXPECT_TRUE(result.endsAtTheLimit());
    return result.text();
}

TEST(FloatText, FillsEightCharacters) {
    EXPECT_EQ(floatText(0.0f).text(), "0.000000");
    EXPECT_EQ(floatText(1.0f).text(), "1.000000");
    EXPECT_EQ(floatText(0.5f).text(), "0.500000");
    EXPECT_EQ(floatText(123.25f).text(), "123.2500");
    EXPECT_EQ(floatText(-6.5f).text(), "-6.50000");
    EXPECT_TRUE(floatText(-6.5f).endsAtTheLimit());
}

TEST(FloatText, CutsTheLastDecimalAndDoesNotRoundIt) {
    EXPECT_EQ(floatText(0.99999994f).text(), "0.999999");
    EXPECT_EQ(floatText(2.0f / 3.0f).text(), "0.666666");
    EXPECT_EQ(floatText(-2.0f / 3.0f).text(), "-0.66666");
}

TEST(FloatText, KeepsThePointWhenNoDecimalFollows) {
    EXPECT_EQ(floatText(1234567.0f).text(), "1234567.");
    EXPECT_EQ(floatText(12345678.0f).text(), "12345678.");
    EXPECT_EQ(floatText(-1234567.0f).text(), "-1234567.");
}

TEST(FloatText, LeavesTheBufferAloneBeyondEightDigits) {
    for (const float huge : {1e8f, 3e38f, std::numeric_limits<float>::infinity(), -1e7f, -3e38f}) {
        const Written result = floatText(huge);
        EXPECT_EQ(result.text(), std::string(kLimit, 'x')) << huge;
        EXPECT_TRUE(result.endsAtTheLimit()) << huge;
    }
}

TEST(FloatText, HasNoSignOnZero) {
    EXPECT_EQ(floatText(-0.0f).text(), "0.000000");
}

TEST(IntegerText, HasNoLeadingZerosSoThatZeroIsEmpty) {
    EXPECT_EQ(intText(0), "");
    EXPECT_EQ(intText(7), "7");
    EXPECT_EQ(intText(-42), "-42");
    EXPECT_EQ(intText(99999999), "99999999");
}

TEST(IntegerText, IsHugeFromAHundredMillionUp) {
    EXPECT_EQ(intText(100000000), "Huge!");
    EXPECT_EQ(intText(std::numeric_limits<std::int32_t>::max()), "Huge!");
    EXPECT_EQ(intText(-100000000), "-100000000");
}

TEST(DecibelText, IsMinusInfinityAtZeroAndBelow) {
    EXPECT_EQ(decibelText(0.0f), "-oo");
    EXPECT_EQ(decibelText(-1.0f), "-oo");
}

TEST(DecibelText, IsCutToEightCharacters) {
    EXPECT_EQ(decibelText(0.5f), "-6.02059");
    EXPECT_EQ(decibelText(1.0f), "0.000000");
    EXPECT_EQ(decibelText(2.0f), "6.020599");
}

TEST(FixedText, RoundsToNearestLikeAnyPrinter) {
    EXPECT_EQ(base::fixedText(0.0005, 3), "0.001");
    EXPECT_EQ(base::fixedText(-1.0, 3), "-1.000");
    EXPECT_EQ(base::fixedText(3.4999, 3), "3.500");
}

TEST(CopiedText, FillsTheRestWithNulsAndEndsOneBehindTheLimit) {
    Written result;
    base::copyText(result.bytes.data(), "abc", kLimit);
    EXPECT_EQ(result.text(), "abc");
    for (std::size_t i = 3; i <= kLimit; ++i)
        EXPECT_EQ(result.bytes[i], '\0') << i;
    EXPECT_TRUE(result.endsAtTheLimit());
    base::copyText(result.bytes.data(), "abcdefghijklmnop", kLimit);
    EXPECT_EQ(result.text(), "abcdefghij");
    EXPECT_TRUE(result.endsAtTheLimit());
}

} // namespace
