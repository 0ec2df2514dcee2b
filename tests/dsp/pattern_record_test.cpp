// What the record of the tap tables says after rewrites that come one after the other, or at once.

#include "dsp/pattern_record.h"

#include <gtest/gtest.h>

namespace {

using dsp::PatternRecord;

constexpr PatternRecord::Key kLong = {1, 2, 3, 4, 5, 6};
constexpr PatternRecord::Key kShort = {1, 2, 3, 4, 5, 7};

TEST(PatternRecord, HoldsNothingAtFirst) {
    const PatternRecord record;
    EXPECT_FALSE(record.holds({}));
}

TEST(PatternRecord, HoldsWhatWasComputedLast) {
    PatternRecord record;
    record.endComputed(record.begin(), kLong);
    EXPECT_TRUE(record.holds(kLong));
    EXPECT_FALSE(record.holds(kShort));
    record.endComputed(record.begin(), kShort);
    EXPECT_TRUE(record.holds(kShort));
    EXPECT_FALSE(record.holds(kLong));
}

TEST(PatternRecord, HoldsNothingWhileATableIsRewritten) {
    PatternRecord record;
    record.endComputed(record.begin(), kLong);
    const auto rewrite = record.begin();
    EXPECT_FALSE(record.holds(kLong));
    record.endComputed(rewrite, kLong);
    EXPECT_TRUE(record.holds(kLong));
}

TEST(PatternRecord, HoldsNothingAfterTheTimesWereTakenAway) {
    PatternRecord record;
    record.endComputed(record.begin(), kLong);
    const auto rewrite = record.begin();
    record.endOther(rewrite);
    EXPECT_FALSE(record.holds(kLong));
}

TEST(PatternRecord, HoldsNothingAfterTwoRewritesAtOnceWhicheverEndsFirst) {
    for (const bool firstEndsFirst : {true, false}) {
        PatternRecord record;
        const auto first = record.begin();
        const auto second = record.begin();
        record.endComputed(firstEndsFirst ? first : second, firstEndsFirst ? kLong : kShort);
        EXPECT_FALSE(record.holds(kLong) || record.holds(kShort));
        record.endComputed(firstEndsFirst ? second : first, firstEndsFirst ? kShort : kLong);
        EXPECT_FALSE(record.holds(kLong) || record.holds(kShort));
        record.endComputed(record.begin(), kLong);
        EXPECT_TRUE(record.holds(kLong));
    }
}

TEST(PatternRecord, FindsTheTablesWholeAfterOneRewrite) {
    PatternRecord record;
    EXPECT_EQ(record.endComputed(record.begin(), kLong), PatternRecord::Outcome::whole);
    EXPECT_EQ(record.endOther(record.begin()), PatternRecord::Outcome::whole);
}

TEST(PatternRecord, TellsTheLastOfTwoRewritesAtOnceOfTheMixture) {
    for (const bool firstEndsFirst : {true, false}) {
        PatternRecord record;
        const auto first = record.begin();
        const auto second = record.begin();
        EXPECT_EQ(record.endComputed(firstEndsFirst ? first : second, kLong),
                  PatternRecord::Outcome::unfinished);
        EXPECT_EQ(record.endComputed(firstEndsFirst ? second : first, kShort), PatternRecord::Outcome::mixed);
    }
}

TEST(PatternRecord, TellsOneThatBeganDuringAnotherOfTheMixtureAlsoWhenTheOtherHasEnded) {
    PatternRecord record;
    const auto first = record.begin();
    const auto second = record.begin();
    record.endOther(first);
    const auto third = record.begin();
    EXPECT_EQ(record.endComputed(second, kLong), PatternRecord::Outcome::unfinished);
    EXPECT_EQ(record.endComputed(third, kShort), PatternRecord::Outcome::mixed);
}

TEST(PatternRecord, KeepsItsGenerationForAsLongAsNobodyRewritesTheTables) {
    PatternRecord record;
    EXPECT_EQ(record.generation(), record.generation());
    EXPECT_NE(record.generation(), PatternRecord::kNone);
    const std::uint32_t before = record.generation();
    record.endComputed(record.begin(), kLong);
    EXPECT_NE(record.generation(), before);
    EXPECT_EQ(record.generation(), record.generation());
}

TEST(PatternRecord, TakesAnotherGenerationAlsoForTheSameTables) {
    PatternRecord record;
    record.endComputed(record.begin(), kLong);
    const std::uint32_t before = record.generation();
    record.endComputed(record.begin(), kLong);
    EXPECT_NE(record.generation(), before);
    const std::uint32_t computed = record.generation();
    const auto rewrite = record.begin();
    record.endOther(rewrite);
    EXPECT_NE(record.generation(), computed);
}

TEST(PatternRecord, HasNoGenerationWhileAnybodyRewritesTheTables) {
    PatternRecord record;
    const auto first = record.begin();
    EXPECT_EQ(record.generation(), PatternRecord::kNone);
    const auto second = record.begin();
    record.endComputed(first, kLong);
    EXPECT_EQ(record.generation(), PatternRecord::kNone);
    record.endComputed(second, kShort);
    EXPECT_NE(record.generation(), PatternRecord::kNone);
}

} // namespace
