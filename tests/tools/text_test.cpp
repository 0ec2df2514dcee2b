// Numbers, names and JSON, whatever bytes they are made of.

#include "tools/common/text.h"

#include <clocale>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using namespace tools;

TEST(Names, AreTheSameWhateverTheirCaseAndBlanks) {
    EXPECT_TRUE(sameName("Pre LP ", "pre lp"));
    EXPECT_TRUE(sameName("  Bs  Lgh\t1", "Bs Lgh 1"));
    EXPECT_FALSE(sameName("PreLP", "Pre LP"));
    EXPECT_TRUE(sameName("", "  "));
}

TEST(Numbers, AreReadWhole) {
    EXPECT_EQ(numberFrom(" -1.5e2 "), -150.0);
    EXPECT_EQ(numberFrom("+1"), 1.0);
    for (const char* text : {"", "1x", "x", "+-1", "--1", "inf", "nan", "1 2"})
        EXPECT_FALSE(numberFrom(text)) << text;
}

TEST(Numbers, AreReadFromTheFrontOfADisplay) {
    const auto number = leadingNumber("-24.50 %");
    ASSERT_TRUE(number);
    EXPECT_EQ(number->value, -24.5);
    EXPECT_EQ(number->decimals, 2);
    EXPECT_EQ(number->rest, "%");
    EXPECT_EQ(leadingNumber("16")->decimals, 0);
    EXPECT_EQ(leadingNumber("0.750 / 0.250")->decimals, 3);
    EXPECT_FALSE(leadingNumber("LFO On"));
}

TEST(Numbers, ReadAndPrintTheSameInEveryLocale) {
    // Whichever of these is there, it writes a comma for the decimal point.
    for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "de_DE"})
        std::setlocale(LC_ALL, name);
    EXPECT_EQ(numberFrom("0.5"), 0.5);
    EXPECT_EQ(fixedText(1234.5, 2), "1234.50");
    EXPECT_EQ(shortText(0.1f), "0.1");
    std::setlocale(LC_ALL, "C");
}

TEST(Numbers, PrintNoNegativeZero) {
    EXPECT_EQ(fixedText(-0.001, 2), "0.00");
    EXPECT_EQ(fixedText(-0.01, 2), "-0.01");
}

TEST(Counts, AreWholeAndNotNegative) {
    EXPECT_EQ(countFrom("127"), 127);
    for (const char* text : {"-1", "1.5", "", "9999999999", "0x10"})
        EXPECT_FALSE(countFrom(text)) << text;
}

TEST(PrintableText, IsOneLineOfUtf8) {
    EXPECT_EQ(printable("a\nb\tc\x7F"), "a b c ");
    EXPECT_EQ(printable("gr\xFC\xDF"), "gr\u00FC\u00DF");
    EXPECT_EQ(printable("gr\u00FC\u00DF \u266B"), "gr\u00FC\u00DF \u266B");
    EXPECT_EQ(printable("\xC0\xAF"), "\u00C0\u00AF") << "an overlong slash";
    EXPECT_EQ(printable("\xED\xA0\x80"), "\u00ED\u00A0 ") << "half a surrogate pair";
    EXPECT_EQ(printable("\xE2\x82"), "\u00E2 ") << "cut in the middle";
}

/// As the tools write it.
std::string jsonString(const std::string& bytes) {
    return nlohmann::ordered_json(utf8(bytes)).dump();
}

TEST(JsonText, IsReadBack) {
    std::string all;
    for (int byte = 1; byte < 128; ++byte)
        all += static_cast<char>(byte);
    EXPECT_EQ(nlohmann::json::parse(jsonString(all)).get<std::string>(), all);
    EXPECT_EQ(nlohmann::json::parse(jsonString("\u00FC \u266B \U0001F3B5")).get<std::string>(),
              "\u00FC \u266B \U0001F3B5");
}

TEST(JsonText, IsValidForAnyBytes) {
    for (int first = 0; first < 256; ++first) {
        for (int second = 0; second < 256; ++second) {
            const std::string bytes = {static_cast<char>(first), static_cast<char>(second), 'x'};
            EXPECT_TRUE(nlohmann::json::accept(jsonString(bytes))) << first << ' ' << second;
        }
    }
}

} // namespace
