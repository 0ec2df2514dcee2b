// Texts on a canvas that have to fit.
#include "desk/canvas.h"

#include <string>

#include <gtest/gtest.h>

namespace {

using desk::Canvas;
using desk::TextStyle;

const TextStyle style = {.size = 20.0, .colour = {0.0, 0.0, 0.0}};
const std::string ellipsis = "\u2026";

TEST(FittedText, StaysWholeWhereThereIsRoom) {
    Canvas canvas(10, 10, {1.0, 1.0, 1.0});
    const std::string words = "Gr\u00F6\u00DFe";
    EXPECT_EQ(canvas.fitted(words, style, canvas.textWidth(words, style)), words);
}

TEST(FittedText, IsCutBetweenCharactersAndEndsInAnEllipsis) {
    Canvas canvas(10, 10, {1.0, 1.0, 1.0});
    const std::string words = "\u00F6\u00DF\u20AC\u00FC \u00E9\u00FF\u00A0\u0080";
    for (int width = static_cast<int>(canvas.textWidth(words, style)) - 1; width > 0; --width) {
        std::string shorter = canvas.fitted(words, style, width);
        if (shorter.empty())
            continue;
        EXPECT_LE(canvas.textWidth(shorter, style), width);
        ASSERT_TRUE(shorter.ends_with(ellipsis)) << width;
        shorter.resize(shorter.size() - ellipsis.size());
        ASSERT_TRUE(words.starts_with(shorter)) << width;
        EXPECT_NE(words[shorter.size()] & 0xC0, 0x80) << "cut within a character at width " << width;
    }
}

TEST(FittedText, IsNothingWhereNotEvenTheEllipsisFits) {
    Canvas canvas(10, 10, {1.0, 1.0, 1.0});
    EXPECT_EQ(canvas.fitted("words", style, 1.0), "");
}

} // namespace
