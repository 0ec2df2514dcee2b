// Numbers and texts in Turtle, and the words of the ports.
#include "doors/lv2_bundle/control_ports.h"
#include "doors/lv2_bundle/turtle.h"

#include "parameters/parameter_table.h"

#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace {

using lv2_bundle::decimalText;

TEST(DecimalText, HasAPointAndNoExponent) {
    EXPECT_EQ(decimalText(0.0f), "0.0");
    EXPECT_EQ(decimalText(1.0f), "1.0");
    EXPECT_EQ(decimalText(0.5f), "0.5");
    EXPECT_EQ(decimalText(0.4f), "0.400000006");
    EXPECT_EQ(decimalText(1e-5f), "0.00000999999975");
    EXPECT_EQ(decimalText(-0.25f), "-0.25");
    EXPECT_EQ(decimalText(-0.0f), "-0.0");
    EXPECT_EQ(decimalText(100.0f), "100.0");
    EXPECT_EQ(decimalText(20590.5f), "20590.5");
    EXPECT_EQ(decimalText(16777216.0f), "16777216.0");
    EXPECT_EQ(decimalText(1e10f), "10000000000.0");
}

TEST(DecimalText, GivesTheSameBitsBack) {
    std::mt19937 random(1);
    for (int i = 0; i < 100000; ++i) {
        const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        if (!(value - value == 0.0f))
            continue; // no number
        const std::string text = decimalText(value);
        EXPECT_EQ(std::bit_cast<std::uint32_t>(std::strtof(text.c_str(), nullptr)),
                  std::bit_cast<std::uint32_t>(value))
            << text;
        EXPECT_EQ(text.find_first_not_of("-0123456789."), std::string::npos) << text;
    }
}

TEST(DecimalText, IsWhatTheCLibraryWritesWithNineDigits) {
    std::mt19937 random(2);
    for (int i = 0; i < 10000; ++i) {
        const float value = static_cast<float>(random() >> 8) * 0x1p-24f;
        char text[40];
        std::snprintf(text, sizeof text, "%.9g", static_cast<double>(value));
        const std::string expected = text;
        if (expected.find('e') == std::string::npos && expected.find('.') != std::string::npos) {
            EXPECT_EQ(decimalText(value), expected);
        }
    }
}

TEST(Quoted, KeepsWhatWouldEndTheText) {
    EXPECT_EQ(lv2_bundle::quoted("Fade / Swell"), "\"Fade / Swell\"");
    EXPECT_EQ(lv2_bundle::quoted("a \"b\" \\c"), "\"a \\\"b\\\" \\\\c\"");
}

TEST(SymbolOf, HasLowerLettersDigitsAndSingleLines) {
    EXPECT_EQ(lv2_bundle::symbolOf("Fade / Swell"), "fade_swell");
    EXPECT_EQ(lv2_bundle::symbolOf("Base length"), "base_length");
    EXPECT_EQ(lv2_bundle::symbolOf("  2 Taps"), "2_taps");
}

TEST(ShortNameOf, LeavesTheBlankAtItsEndOut) {
    EXPECT_EQ(lv2_bundle::shortNameOf(parameters::kPreLowPass), "Pre LP");
    EXPECT_EQ(lv2_bundle::shortNameOf(parameters::kTaps), "Taps #");
}

} // namespace
