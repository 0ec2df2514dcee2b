// Text in buffers of a fixed size. Buffers of a host's are in number_text_test.cpp.
#include "base/fixed_text.h"

#include <cstring>
#include <string>

#include <gtest/gtest.h>

namespace {

/// All bytes of a buffer that held something else before.
template <std::size_t size>
std::string bytesOf(const char (&buffer)[size]) {
    return {buffer, size};
}

TEST(FixedText, IsCutWhereTheBufferEndsAndFilledUpWithNuls) {
    char buffer[6];
    std::memset(buffer, 'x', sizeof buffer);
    base::copyText(buffer, "ab");
    EXPECT_EQ(bytesOf(buffer), std::string("ab\0\0\0\0", 6));
    base::copyText(buffer, "abcde");
    EXPECT_EQ(bytesOf(buffer), std::string("abcde\0", 6));
    base::copyText(buffer, "abcdef");
    EXPECT_EQ(bytesOf(buffer), std::string("abcde\0", 6));
}

TEST(FixedText, IsCopiedWholeOrNotAtAll) {
    char buffer[4];
    EXPECT_TRUE(base::copyWholeText(buffer, "abc"));
    EXPECT_EQ(bytesOf(buffer), std::string("abc\0", 4));
    EXPECT_FALSE(base::copyWholeText(buffer, "abcd"));
    EXPECT_EQ(bytesOf(buffer), std::string(4, '\0'));
}

} // namespace
