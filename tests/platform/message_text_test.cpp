// How the message box breaks its text, measured with letters that are all one unit wide.

#include "message_text.h"

#include <gtest/gtest.h>

namespace {

using platform::breakLines;
using platform::validUtf8;
using Lines = std::vector<std::string>;

double countCharacters(const std::string& text) {
    double count = 0;
    for (const char c : text)
        count += (c & 0xC0) != 0x80;
    return count;
}

Lines broken(std::string_view text, double width) {
    return breakLines(text, width, countCharacters);
}

TEST(MessageText, BreaksBetweenWords) {
    EXPECT_EQ(broken("one two three", 7), (Lines{"one two", "three"}));
    EXPECT_EQ(broken("one two three", 6), (Lines{"one", "two", "three"}));
    EXPECT_EQ(broken("one two three", 13), (Lines{"one two three"}));
}

TEST(MessageText, BreaksAtLineFeedsAndKeepsEmptyLines) {
    EXPECT_EQ(broken("one\n\ntwo\n", 20), (Lines{"one", "", "two", ""}));
    EXPECT_EQ(broken("", 20), (Lines{""}));
}

TEST(MessageText, BreaksAWordThatIsTooWideInside) {
    EXPECT_EQ(broken("abcdefgh", 3), (Lines{"abc", "def", "gh"}));
    EXPECT_EQ(broken("a bcdefgh i", 3), (Lines{"a", "bcd", "efg", "h i"}));
}

TEST(MessageText, NeverBreaksACharacter) {
    EXPECT_EQ(broken("\u00e9\u00e9\u00e9", 2), (Lines{"\u00e9\u00e9", "\u00e9"}));
    EXPECT_EQ(broken("\u20ac\u20ac", 0), (Lines{"\u20ac", "\u20ac"})) << "one a line, be it ever so narrow";
}

TEST(MessageText, KeepsSeveralBlanks) {
    EXPECT_EQ(broken("a  b", 10), (Lines{"a  b"}));
    EXPECT_EQ(broken("  a", 10), (Lines{"  a"}));
}

TEST(MessageText, TakesControlCharactersForBlanks) {
    EXPECT_EQ(broken("a\tb\r\nc", 10), (Lines{"a b ", "c"}));
}

TEST(MessageText, LeavesValidUtf8Alone) {
    const std::string text = "plain \u00e9 \u20ac \U0001F3B5 \U0010FFFF \uD7FF \uE000";
    EXPECT_EQ(validUtf8(text), text);
}

TEST(MessageText, ReadsOtherBytesAsLatin) {
    EXPECT_EQ(validUtf8("\xC4rger"), "\u00c4rger");
    EXPECT_EQ(validUtf8("\xFF"), "\u00ff");
    EXPECT_EQ(validUtf8("end \xE2\x82"), "end \u00e2\u0082") << "a character that breaks off";
    EXPECT_EQ(validUtf8("\xC0\x80"), "\u00c0\u0080") << "longer than need be";
    EXPECT_EQ(validUtf8("\xE0\x9F\xBF"), "\u00e0\u009f\u00bf");
    EXPECT_EQ(validUtf8("\xED\xA0\x80"), "\u00ed\u00a0\u0080") << "half of a pair";
    EXPECT_EQ(validUtf8("\xF0\x8F\xBF\xBF"), "\u00f0\u008f\u00bf\u00bf");
    EXPECT_EQ(validUtf8("\xF4\x90\x80\x80"), "\u00f4\u0090\u0080\u0080") << "beyond the last character";
}

} // namespace
