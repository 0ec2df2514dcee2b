// The words of the skin language. That the builder goes by them is held in tests/tools/window.
#include "skin/skin_table.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace skin;
using Constants = std::vector<std::string_view>;

TEST(SkinTable, FindsKindsAndTagsInAnyLetterCase) {
    ASSERT_NE(kindNamed("KNOB"), nullptr);
    EXPECT_STREQ(kindNamed("KNOB")->name, "knob");
    EXPECT_EQ(kindNamed("KNOB")->kind, ObjectKind::knob);
    EXPECT_EQ(kindNamed("constants")->kind, ObjectKind::constants);
    EXPECT_EQ(kindNamed("knobb"), nullptr);
    EXPECT_EQ(kindNamed(""), nullptr);
    const KindRule& knob = *kindNamed("knob");
    ASSERT_NE(tagNamed(knob, "StackBmp"), nullptr);
    EXPECT_STREQ(tagNamed(knob, "StackBmp")->name, "stackbmp");
    EXPECT_EQ(tagNamed(knob, "link"), nullptr);
}

TEST(SkinTable, HasEachKindAndEachTagOfAKindOnce) {
    for (const KindRule& kind : skinKinds()) {
        EXPECT_EQ(kindNamed(kind.name), &kind) << kind.name;
        for (const TagRule& tag : kind.tags)
            EXPECT_EQ(tagNamed(kind, tag.name), &tag) << kind.name << " " << tag.name;
    }
}

TEST(SkinTable, TakesYAndOneForYes) {
    for (const char* yes : {"y", "Yes", "1", "10"})
        EXPECT_TRUE(isYes(yes)) << yes;
    for (const char* no : {"", "n", "0", "true", " y"})
        EXPECT_FALSE(isYes(no)) << no;
}

TEST(Constants, EndWithTheLineOrAtAComma) {
    EXPECT_EQ(constantsIn("a = 5, b, c"), (Constants{"a = 5", "b", "c"}));
    EXPECT_EQ(constantsIn("a\r\nb\n\n\t c"), (Constants{"a", "b", "c"}));
    EXPECT_EQ(constantsIn("a = 1 ,\t, b "), (Constants{"a = 1 ", "b "}));
    EXPECT_EQ(constantsIn(",a"), (Constants{"a"}));
    EXPECT_EQ(constantsIn(""), Constants());
    EXPECT_EQ(constantsIn("\n, \t"), Constants());
}

} // namespace
