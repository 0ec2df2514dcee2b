#include "skin_language/expression.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstddef>
#include <initializer_list>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr double untouched = -12345.0;

/// All parts one behind the other.
std::string joined(std::initializer_list<std::string_view> parts) {
    std::string all;
    for (const std::string_view part : parts)
        all += part;
    return all;
}

/// The C string in a block of exactly its size, so that the address sanitizer notices a step too far.
std::vector<char> exactly(const std::string& text) {
    return {text.c_str(), text.c_str() + text.size() + 1};
}

/// A table of constants and what was read against it.
class Expression : public testing::Test {
  protected:
    bool evaluate(const std::string& text, int start = 0) {
        position = start;
        value = untouched;
        return exprEvaluate(&table, exactly(text).data(), &position, &value);
    }

    /// NaN, and a test failure, if the text is refused.
    double valueOf(const std::string& text) {
        const bool understood = evaluate(text);
        EXPECT_TRUE(understood) << text;
        return understood ? value : std::numeric_limits<double>::quiet_NaN();
    }

    bool parse(const std::string& text, int start, int minPriority) {
        position = start;
        value = untouched;
        return exprParse(&table, exactly(text).data(), &position, &value, minPriority);
    }

    /// Where reading stopped.
    int endOf(const std::string& text) {
        EXPECT_TRUE(evaluate(text)) << text;
        return position;
    }

    ExprTable table;
    int position = 0;
    double value = untouched;
};

using ExpressionNumber = Expression;
using ExpressionOperator = Expression;
using ExpressionPriority = Expression;
using ExpressionMinus = Expression;
using ExpressionGroup = Expression;
using ExpressionOperand = Expression;
using ExpressionBlanks = Expression;
using ExpressionConstant = Expression;
using ExpressionAssignment = Expression;
using ExpressionPosition = Expression;
using ExpressionParse = Expression;
using ExpressionLookup = Expression;
using ExpressionTable = Expression;
using ExpressionNameDeathTest = Expression;
using ExpressionGuard = Expression;
using ExpressionLocale = Expression;

// Numbers

TEST_F(ExpressionNumber, IsReadInDecimal) {
    EXPECT_EQ(valueOf("0"), 0.0);
    EXPECT_EQ(valueOf("7"), 7.0);
    EXPECT_EQ(valueOf("007"), 7.0);
    EXPECT_EQ(valueOf("1234567890"), 1234567890.0);
}

TEST_F(ExpressionNumber, MayHaveDigitsBehindAPoint) {
    EXPECT_EQ(valueOf("0.5"), 0.5);
    EXPECT_EQ(valueOf("12.25"), 1225.0 * (1.0 * 0.1 * 0.1));
}

TEST_F(ExpressionNumber, ScalesItsDigitsOnceAtTheEnd) {
    EXPECT_EQ(valueOf("3.9"), 39.0 * 0.1);
    EXPECT_EQ(valueOf("0.001"), 1.0 * 0.1 * 0.1 * 0.1);
}

TEST_F(ExpressionNumber, MayEndInAPoint) {
    EXPECT_EQ(valueOf("5."), 5.0);
}

TEST_F(ExpressionNumber, WithASecondPointFails) {
    EXPECT_FALSE(evaluate("1.2.3"));
    EXPECT_FALSE(evaluate("1.."));
    EXPECT_FALSE(evaluate("2 + 1.2.3"));
}

TEST_F(ExpressionNumber, HasNoExponentAndNoHexadecimalForm) {
    EXPECT_EQ(valueOf("1e3"), 1.0);
    EXPECT_EQ(valueOf("0x10"), 0.0);
}

TEST_F(ExpressionNumber, TooLargeForADoubleIsInfinite) {
    EXPECT_EQ(valueOf(std::string(400, '9')), INFINITY);
}

// Operators

TEST_F(ExpressionOperator, DollarShiftsLeft) {
    EXPECT_EQ(valueOf("1 $ 4"), 16.0);
    EXPECT_EQ(valueOf("5 $ 0"), 5.0);
    EXPECT_EQ(valueOf("-1 $ 4"), -16.0);
}

TEST_F(ExpressionOperator, DollarTakesItsRightSideModulo32) {
    EXPECT_EQ(valueOf("1 $ 33"), 2.0);
    EXPECT_EQ(valueOf("1 $ 32"), 1.0);
    EXPECT_EQ(valueOf("1 $ -1"), -2147483648.0);
}

TEST_F(ExpressionOperator, DollarKeeps32Bits) {
    EXPECT_EQ(valueOf("1 $ 31"), -2147483648.0);
    EXPECT_EQ(valueOf("3 $ 31"), -2147483648.0);
    EXPECT_EQ(valueOf("2 $ 31"), 0.0);
}

TEST_F(ExpressionOperator, AmpersandIsBitwiseAnd) {
    EXPECT_EQ(valueOf("12 & 10"), 8.0);
    EXPECT_EQ(valueOf("-1 & 255"), 255.0);
}

TEST_F(ExpressionOperator, BarIsBitwiseOr) {
    EXPECT_EQ(valueOf("12 | 10"), 14.0);
    EXPECT_EQ(valueOf("-256 | 1"), -255.0);
}

TEST_F(ExpressionOperator, TruncatesBothSidesTowardZeroBeforeBitOperations) {
    EXPECT_EQ(valueOf("3.9 & 1"), 1.0);
    EXPECT_EQ(valueOf("7 & 3.9"), 3.0);
    EXPECT_EQ(valueOf("-3.9 | 0"), -3.0);
    EXPECT_EQ(valueOf("0 | -0.9"), 0.0);
    EXPECT_EQ(valueOf("1.9 $ 3.9"), 8.0);
}

TEST_F(ExpressionOperator, TruncatesWhatDoesNotFitToTheLowestInteger) {
    EXPECT_EQ(valueOf("2147483647 | 0"), 2147483647.0);
    EXPECT_EQ(valueOf("2147483647.5 | 0"), 2147483647.0);
    EXPECT_EQ(valueOf("2147483648 | 0"), -2147483648.0);
    EXPECT_EQ(valueOf("-2147483648.5 | 0"), -2147483648.0);
    EXPECT_EQ(valueOf("-99999999999 | 0"), -2147483648.0);
    EXPECT_EQ(valueOf("1 / 0 | 0"), -2147483648.0);
    EXPECT_EQ(valueOf("0 / 0 | 0"), -2147483648.0);
    EXPECT_EQ(valueOf("0 | 1 / 0"), -2147483648.0);
}

TEST_F(ExpressionOperator, PlusAndMinusAddAndSubtract) {
    EXPECT_EQ(valueOf("1.5 + 2.25"), 15 * 0.1 + 225 * (0.1 * 0.1));
    EXPECT_EQ(valueOf("1 - 2.5"), -1.5);
}

TEST_F(ExpressionOperator, AsteriskAndSlashMultiplyAndDivide) {
    EXPECT_EQ(valueOf("3 * 2.5"), 7.5);
    EXPECT_EQ(valueOf("1 / 4"), 0.25);
}

TEST_F(ExpressionOperator, SlashIsNoIntegerDivision) {
    EXPECT_EQ(valueOf("7 / 2"), 3.5);
}

TEST_F(ExpressionOperator, SlashByZeroFollowsTheFloatingPointRules) {
    EXPECT_EQ(valueOf("1 / 0"), INFINITY);
    EXPECT_EQ(valueOf("-1 / 0"), -INFINITY);
    EXPECT_TRUE(std::isnan(valueOf("0 / 0")));
}

TEST_F(ExpressionOperator, KnowsNoOthers) {
    for (const char* text :
         {"9 % 2", "9 ^ 2", "9 < 2", "9 ~ 2", "9 ! 2", "9 , 2", "9 ; 2", "9 = 2", "9 ) + 2"})
        EXPECT_EQ(valueOf(text), 9.0) << text;
}

// Priorities

TEST_F(ExpressionPriority, OfMultiplicationIsAboveAddition) {
    EXPECT_EQ(valueOf("1+2*3-4"), 3.0);
    EXPECT_EQ(valueOf("10 + 12*3"), 46.0);
    EXPECT_EQ(valueOf("2*3+4*5"), 26.0);
}

TEST_F(ExpressionPriority, OfAdditionIsAboveBar) {
    EXPECT_EQ(valueOf("1 + 2 | 4"), 7.0);
}

TEST_F(ExpressionPriority, OfBarIsAboveAmpersand) {
    EXPECT_EQ(valueOf("6 & 3 | 8"), 2.0);
}

TEST_F(ExpressionPriority, OfAmpersandIsAboveDollar) {
    EXPECT_EQ(valueOf("1 $ 6 & 3"), 4.0);
}

TEST_F(ExpressionPriority, GoesThroughAllLevelsOfOneExpression) {
    // 1 $ (6 & (8 | (1 + (2 * 3))))
    EXPECT_EQ(valueOf("1 $ 6 & 8 | 1 + 2 * 3"), 64.0);
    // ((((2 * 3) + 1) | 8) & 6) $ 1
    EXPECT_EQ(valueOf("2 * 3 + 1 | 8 & 6 $ 1"), 12.0);
}

TEST_F(ExpressionPriority, AssociatesEqualsToTheLeft) {
    EXPECT_EQ(valueOf("10 - 4 - 3"), 3.0);
    EXPECT_EQ(valueOf("10 - 4 + 3"), 9.0);
    EXPECT_EQ(valueOf("100 / 10 / 5"), 2.0);
    EXPECT_EQ(valueOf("100 / 10 * 5"), 50.0);
    EXPECT_EQ(valueOf("1 $ 2 $ 3"), 32.0);
}

// Unary minus

TEST_F(ExpressionMinus, TakesASingleOperand) {
    EXPECT_EQ(valueOf("-2*3"), -6.0);
    EXPECT_EQ(valueOf("-2+3"), 1.0);
    EXPECT_EQ(valueOf("-8|1"), -7.0);
}

TEST_F(ExpressionMinus, MayStandBehindAnOperator) {
    EXPECT_EQ(valueOf("2*-3"), -6.0);
    EXPECT_EQ(valueOf("2--3"), 5.0);
    EXPECT_EQ(valueOf("1+-2*3-4"), -9.0);
}

TEST_F(ExpressionMinus, MayBeDoubled) {
    EXPECT_EQ(valueOf("--5"), 5.0);
}

TEST_F(ExpressionMinus, FlipsTheSignOfZero) {
    EXPECT_TRUE(std::signbit(valueOf("-0")));
}

TEST_F(ExpressionMinus, NegatesAConstant) {
    ASSERT_TRUE(evaluate("k = 4"));
    EXPECT_EQ(valueOf("-k"), -4.0);
    EXPECT_EQ(valueOf("- k + 1"), -3.0);
}

TEST_F(ExpressionMinus, NegatesAGroup) {
    EXPECT_EQ(valueOf("-(1+2)"), -3.0);
}

TEST_F(ExpressionMinus, OfARightSideThatIsNotReportedIsReadAgain) {
    // The right side, -2 * 3, runs into the end of the text. The outer level goes on before it, with "- 2 *
    // 3".
    EXPECT_EQ(valueOf("1 + -2 * 3"), -11.0);
}

TEST_F(ExpressionMinus, WithoutAnOperandIsZero) {
    EXPECT_EQ(valueOf("-"), 0.0);
}

// Groups

TEST_F(ExpressionGroup, AtTheHeadEndsTheExpression) {
    EXPECT_EQ(valueOf("(1+2)*3"), 3.0);
}

TEST_F(ExpressionGroup, OfASingleOperandEndsTheExpressionToo) {
    EXPECT_EQ(valueOf("(2)+3"), 2.0);
}

TEST_F(ExpressionGroup, WorksAsTheLastOperand) {
    EXPECT_EQ(valueOf("2*(3+4)"), 14.0);
}

TEST_F(ExpressionGroup, HidesWhatStandsBehindIt) {
    EXPECT_EQ(valueOf("2*(3+4)+1"), 14.0);
}

TEST_F(ExpressionGroup, ThatStartsWithMinusIsReadTwice) {
    EXPECT_EQ(valueOf("(-1+2)*3"), 2.0);
}

TEST_F(ExpressionGroup, MayHoldAGroupAsItsLastOperand) {
    EXPECT_EQ(valueOf("2*(3+(4*(5-1)))"), 38.0);
}

TEST_F(ExpressionGroup, NeedsNoClosingParenthesis) {
    EXPECT_EQ(valueOf("2*(3+4"), 14.0);
}

TEST_F(ExpressionGroup, AcceptsEveryOperatorInside) {
    EXPECT_EQ(valueOf("3-(1$4)"), -13.0);
    EXPECT_EQ(valueOf("2*(6&3)"), 4.0);
    EXPECT_EQ(valueOf("2*(6|3)"), 14.0);
}

TEST_F(ExpressionGroup, FailsWithAFailureInside) {
    EXPECT_FALSE(evaluate("2*(3+unknown)"));
    EXPECT_FALSE(evaluate("(1.2.3)"));
}

TEST_F(ExpressionGroup, MayBeEmpty) {
    EXPECT_EQ(valueOf("()"), 0.0);
}

// Operands that are missing

TEST_F(ExpressionOperand, ThatIsMissingIsZero) {
    for (const char* text : {"", " ", "\t", ".5", ")", "=", "\n", "#"}) {
        EXPECT_TRUE(evaluate(text)) << text;
        EXPECT_EQ(value, 0.0) << text;
    }
}

TEST_F(ExpressionOperand, ThatIsMissingBehindAnOperatorIsZero) {
    EXPECT_EQ(valueOf("3 + "), 3.0);
    EXPECT_EQ(valueOf("3 * "), 0.0);
    EXPECT_EQ(valueOf("3 * .5"), 0.0);
}

TEST_F(ExpressionOperand, ThatIsMissingBeforeAnOperatorIsZero) {
    EXPECT_EQ(valueOf("+ 3"), 3.0);
    EXPECT_EQ(valueOf("* 3"), 0.0);
}

TEST_F(ExpressionOperand, MayBeFollowedByAnything) {
    EXPECT_EQ(valueOf("12 abc"), 12.0);
    EXPECT_EQ(valueOf("12 1.2.3"), 12.0);
    EXPECT_EQ(valueOf("12 (3)"), 12.0);
    EXPECT_EQ(valueOf("12px"), 12.0);
}

TEST_F(ExpressionOperand, ThatFailsFailsTheWholeExpression) {
    EXPECT_FALSE(evaluate("1 + 2 * unknown"));
    EXPECT_FALSE(evaluate("unknown + 1"));
    EXPECT_FALSE(evaluate("-unknown"));
    EXPECT_EQ(value, untouched);
    EXPECT_EQ(position, 0);
}

// Blanks

TEST_F(ExpressionBlanks, MayStandAnywhereBetweenTokens) {
    EXPECT_EQ(valueOf(" \t1\t+ 2 *\t( 3 - 1 ) "), 5.0);
    EXPECT_EQ(valueOf("\t k \t=\t 7 "), 7.0);
    EXPECT_EQ(valueOf("  - \t k"), -7.0);
}

TEST_F(ExpressionBlanks, MayNotStandInsideANumberOrAName) {
    EXPECT_EQ(valueOf("1 2"), 1.0);
    EXPECT_FALSE(evaluate("k L"));
}

TEST_F(ExpressionBlanks, AreSpaceAndTabOnly) {
    EXPECT_EQ(valueOf("1\n+ 2"), 1.0);
    EXPECT_EQ(valueOf("1 +\n2"), 1.0);
    EXPECT_EQ(valueOf("1\r+ 2"), 1.0);
    EXPECT_EQ(valueOf("\n1"), 0.0);
}

// Constants

TEST_F(ExpressionConstant, ThatIsUnknownFails) {
    EXPECT_FALSE(evaluate("kA"));
}

TEST_F(ExpressionConstant, IsFoundInAnyCase) {
    ASSERT_TRUE(evaluate("kA = 5"));
    EXPECT_EQ(valueOf("KA + 1"), 6.0);
    EXPECT_EQ(valueOf("ka"), 5.0);
}

TEST_F(ExpressionConstant, MayBeginWithAnUnderscoreAndHoldDigits) {
    ASSERT_TRUE(evaluate("_k_2x = 3"));
    EXPECT_EQ(valueOf("_K_2X * 2"), 6.0);
}

TEST_F(ExpressionConstant, IsNotBuiltIn) {
    for (const char* text : {"pi", "e", "true", "sin(1)", "abs", "x", "w"})
        EXPECT_FALSE(evaluate(text)) << text;
}

TEST_F(ExpressionConstant, IsToldFromAnotherOfTheSameHash) {
    // One step further in the first letter is made up for by two in the second.
    // first.
    ASSERT_TRUE(evaluate("ab = 1"));
    ASSERT_TRUE(evaluate("cf = 2"));
    ASSERT_EQ(table.count, 2);
    ASSERT_EQ(table[0].hash, table[1].hash);
    EXPECT_EQ(valueOf("ab"), 1.0);
    EXPECT_EQ(valueOf("cf"), 2.0);
}

TEST_F(ExpressionConstant, MayHaveANameOf59Bytes) {
    const std::string name(59, 'n');
    ASSERT_TRUE(evaluate(joined({name, "=3"})));
    EXPECT_EQ(std::string(table[0].name), name);
    EXPECT_EQ(valueOf(joined({"1+", name})), 4.0);
}

TEST_F(ExpressionConstant, EndsAtAByteBeyondAscii) {
    ASSERT_TRUE(evaluate("k = 3"));
    EXPECT_EQ(valueOf("k\xe4"), 3.0);
    EXPECT_EQ(valueOf("\xe4k"), 0.0);
}

// Assignments

TEST_F(ExpressionAssignment, DefinesAndYieldsTheValue) {
    EXPECT_EQ(valueOf("w = 100"), 100.0);
    ASSERT_EQ(table.count, 1);
    EXPECT_STREQ(table[0].name, "w");
    EXPECT_EQ(table[0].value, 100.0);
    EXPECT_EQ(valueOf("w"), 100.0);
}

TEST_F(ExpressionAssignment, GivesAnExistingConstantTheNewValue) {
    ASSERT_TRUE(evaluate("a = 1"));
    ASSERT_TRUE(evaluate("a = 2"));
    ASSERT_EQ(table.count, 1);
    EXPECT_EQ(table[0].value, 2.0);
}

TEST_F(ExpressionAssignment, KeepsTheNameAsFirstSpelled) {
    ASSERT_TRUE(evaluate("kLeft = 1"));
    ASSERT_TRUE(evaluate("KLEFT = 2"));
    ASSERT_EQ(table.count, 1);
    EXPECT_STREQ(table[0].name, "kLeft");
    EXPECT_EQ(table[0].value, 2.0);
}

TEST_F(ExpressionAssignment, OfAnUnknownNameDefinesNothing) {
    EXPECT_FALSE(evaluate("a = b"));
    EXPECT_EQ(table.count, 0);
    EXPECT_EQ(value, untouched);
    EXPECT_EQ(position, 0);
}

TEST_F(ExpressionAssignment, ThatFailsKeepsTheOldValue) {
    ASSERT_TRUE(evaluate("a = 1"));
    EXPECT_FALSE(evaluate("a = 1.2.3"));
    EXPECT_EQ(valueOf("a"), 1.0);
}

TEST_F(ExpressionAssignment, MayUseTheConstantItself) {
    ASSERT_TRUE(evaluate("a = 1"));
    EXPECT_EQ(valueOf("a = a + 1"), 2.0);
    EXPECT_EQ(valueOf("a = A * 10"), 20.0);
}

TEST_F(ExpressionAssignment, ServesLaterExpressions) {
    EXPECT_EQ(valueOf("a=10"), 10.0);
    EXPECT_EQ(valueOf("a+5"), 15.0);
}

TEST_F(ExpressionAssignment, OfNothingIsZero) {
    EXPECT_EQ(valueOf("a ="), 0.0);
}

TEST_F(ExpressionAssignment, StandsOnlyAtTheHead) {
    EXPECT_FALSE(evaluate("1 + a = 5"));
    EXPECT_FALSE(evaluate("a = b = 5"));
    EXPECT_FALSE(evaluate("(a = 5)"));
    EXPECT_EQ(table.count, 0);
}

TEST_F(ExpressionAssignment, NeedsANameAtTheHead) {
    EXPECT_EQ(valueOf("1 = 5"), 1.0);
    EXPECT_EQ(valueOf("(1) = 5"), 1.0);
    EXPECT_FALSE(evaluate("-a = 5"));
    EXPECT_EQ(table.count, 0);
}

// The position that the caller gets back

TEST_F(ExpressionPosition, IsWrittenBackAtTheFirstLookBehindTheOperand) {
    EXPECT_EQ(endOf("12 abc"), 3);
    EXPECT_EQ(endOf("12"), 2);
    EXPECT_EQ(endOf("(2)+3"), 2);
    EXPECT_EQ(endOf(""), 0);
    EXPECT_EQ(endOf("  "), 2);
}

TEST_F(ExpressionPosition, IsWrittenBackAtAnOperatorOfTooLowPriority) {
    ASSERT_TRUE(parse("2 + 3", 0, 19));
    EXPECT_EQ(position, 2);
    EXPECT_EQ(value, 2.0);
    ASSERT_TRUE(parse("2 * 3 + 4", 0, 18));
    EXPECT_EQ(position, 6);
    EXPECT_EQ(value, 6.0);
}

TEST_F(ExpressionPosition, IsNotWrittenBackBehindAnAppliedOperator) {
    EXPECT_EQ(endOf("1 + 2"), 0);
    EXPECT_EQ(endOf("1 + 2 abc"), 0);
    EXPECT_EQ(endOf("2*(3+4)"), 0);
}

TEST_F(ExpressionPosition, BehindAGroupIsThatOfItsFirstByteWhenTheGroupKeptItsEnd) {
    EXPECT_EQ(endOf("(1+2)*3"), 1);
}

TEST_F(ExpressionPosition, StartsWhereTheCallerSays) {
    EXPECT_TRUE(evaluate("1 + 20 ", 4));
    EXPECT_EQ(value, 20.0);
    EXPECT_EQ(position, 7);
    EXPECT_TRUE(evaluate("99 + 1", 1));
    EXPECT_EQ(value, 10.0);
    EXPECT_EQ(position, 1);
}

TEST_F(ExpressionPosition, OfAnAssignmentIsBehindTheRightSide) {
    EXPECT_EQ(endOf("w = 100"), 7);
    EXPECT_EQ(endOf("w = 100 abc"), 8);
}

TEST_F(ExpressionPosition, OfAnAssignmentStaysBehindTheSignWhenTheRightSideKeptItsEnd) {
    EXPECT_EQ(endOf("w = 1 + 2"), 3);
    EXPECT_EQ(table[0].value, 3.0);
}

// One level

TEST_F(ExpressionParse, AppliesOperatorsOfStrictlyHigherPriorityOnly) {
    const struct {
        const char* text;
        int priority;
    } operators[] = {{"8$2", 15}, {"8&2", 16}, {"8|2", 17}, {"8+2", 18},
                     {"8-2", 18}, {"8*2", 19}, {"8/2", 19}};
    for (const auto& [text, priority] : operators) {
        ASSERT_TRUE(parse(text, 0, priority)) << text;
        EXPECT_EQ(value, 8.0) << text;
        EXPECT_EQ(position, 1) << text;
        ASSERT_TRUE(parse(text, 0, priority - 1)) << text;
        EXPECT_NE(value, 8.0) << text;
        EXPECT_EQ(position, 0) << text;
    }
}

TEST_F(ExpressionParse, KnowsNoAssignment) {
    ASSERT_TRUE(evaluate("a = 1"));
    ASSERT_TRUE(parse("a = 2", 0, 0));
    EXPECT_EQ(value, 1.0);
    EXPECT_EQ(position, 2);
    EXPECT_EQ(table[0].value, 1.0);
}

TEST_F(ExpressionParse, LeavesPositionAndResultAloneWhenItFails) {
    EXPECT_FALSE(parse("1 + unknown", 0, 0));
    EXPECT_EQ(position, 0);
    EXPECT_EQ(value, untouched);
}

// The table

TEST_F(ExpressionLookup, FindsAConstantInAnyCase) {
    ASSERT_TRUE(evaluate("kLeft = 12.5"));
    double found = untouched;
    EXPECT_TRUE(exprLookup(&table, "KLEFT", &found));
    EXPECT_EQ(found, 12.5);
}

TEST_F(ExpressionLookup, FailsForAnUnknownName) {
    ASSERT_TRUE(evaluate("kLeft = 1"));
    double found = untouched;
    for (const char* name : {"kLef", "kLeftt", "kRight", "", "kLeft "})
        EXPECT_FALSE(exprLookup(&table, name, &found)) << name;
    EXPECT_FALSE(exprLookup(&table, std::string(500, 'n').c_str(), &found));
    EXPECT_EQ(found, untouched);
}

TEST_F(ExpressionLookup, TakesTheFirstOfTwoEntriesOfOneName) {
    ASSERT_TRUE(evaluate("a = 1"));
    ExprEntry second = table[0];
    second.value = 2.0;
    ASSERT_TRUE(table.append(second));
    EXPECT_EQ(valueOf("a"), 1.0);
}

TEST_F(ExpressionLookup, ComparesTheHashFirst) {
    ASSERT_TRUE(evaluate("a = 1"));
    ++table[0].hash;
    EXPECT_FALSE(evaluate("a"));
}

TEST_F(ExpressionTable, KeepsTheFieldsOfAnEntryInOrder) {
    EXPECT_EQ(offsetof(ExprEntry, hash), 0u);
    EXPECT_EQ(offsetof(ExprEntry, name), 1u);
    EXPECT_EQ(offsetof(ExprEntry, value), 64u);
    EXPECT_EQ(sizeof(ExprEntry), 72u);
    EXPECT_EQ(sizeof(ExprEntry::hash), 1u);
    EXPECT_EQ(sizeof(ExprEntry::name), 60u);
}

TEST_F(ExpressionTable, HashesANameByteByByte) {
    // 0x20 -> 0x40 ^ 0x61 = 0x21 -> 0x42 ^ 0x62 = 0x20 -> 0x40 ^ 0x63 = 0x23 -> 0x46 ^ 0x7f = 0x39.
    for (const char* text : {"a = 0", "ab = 0", "abc = 0", "abc_ = 0"})
        ASSERT_TRUE(evaluate(text));
    EXPECT_EQ(table[0].hash, 0x21);
    EXPECT_EQ(table[1].hash, 0x20);
    EXPECT_EQ(table[2].hash, 0x23);
    EXPECT_EQ(table[3].hash, 0x39);
}

TEST_F(ExpressionTable, BringsBitSixOfAHashRoundToBitZero) {
    // 0x20 -> 0x40 ^ 0x7f = 0x3f -> 0x7e ^ 0x30 = 0x4e, which has bit 6 -> 0x9d ^ 0x30 = 0xad
    // -> 0x5a ^ 0x30 = 0x6a.
    for (const char* text : {"_ = 0", "_0 = 0", "_00 = 0", "_000 = 0"})
        ASSERT_TRUE(evaluate(text));
    EXPECT_EQ(table[0].hash, 0x3f);
    EXPECT_EQ(table[1].hash, 0x4e);
    EXPECT_EQ(table[2].hash, 0xad);
    EXPECT_EQ(table[3].hash, 0x6a);
}

TEST_F(ExpressionTable, KeepsTheOrderOfFirstDefinition) {
    for (const char* text : {"z = 1", "m = 2", "a = 3", "m = 4"})
        ASSERT_TRUE(evaluate(text));
    ASSERT_EQ(table.count, 3);
    EXPECT_STREQ(table[0].name, "z");
    EXPECT_STREQ(table[1].name, "m");
    EXPECT_STREQ(table[2].name, "a");
}

TEST_F(ExpressionTable, GrowsBySixteenBeyondThirtyTwoConstants) {
    EXPECT_EQ(table.capacity, 32);
    for (int i = 0; i < 100; ++i)
        ASSERT_TRUE(evaluate(joined({"k", std::to_string(i), " = ", std::to_string(i)})));
    EXPECT_EQ(table.count, 100);
    EXPECT_EQ(table.capacity, 112);
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(valueOf(joined({"K", std::to_string(i)})), i);
}

// Names that are too long

TEST_F(ExpressionNameDeathTest, Of60BytesInAnExpressionEndsTheProcess) {
    EXPECT_DEATH(evaluate(joined({"1+", std::string(60, 'n')})), "");
    EXPECT_DEATH(parse(std::string(60, 'n'), 0, 0), "");
    EXPECT_FALSE(evaluate(joined({"1+", std::string(59, 'n')})));
}

TEST_F(ExpressionNameDeathTest, AtTheHeadThatEndsAtPosition59EndsTheProcess) {
    EXPECT_DEATH(evaluate(joined({std::string(60, 'n'), "=1"})), "");
    EXPECT_DEATH(evaluate(std::string(60, 'n')), "");
    EXPECT_FALSE(evaluate(std::string(59, 'n')));
}

TEST_F(ExpressionNameDeathTest, AtTheHeadIsMeasuredWithTheBlanksBeforeIt) {
    EXPECT_DEATH(evaluate(joined({std::string(59, ' '), "k=1"})), "");
    EXPECT_DEATH(evaluate(joined({std::string(56, ' '), "name=1"})), "");
    EXPECT_TRUE(evaluate(joined({std::string(58, ' '), "k=1"})));
    EXPECT_TRUE(evaluate(joined({std::string(55, ' '), "name=1"})));
}

TEST_F(ExpressionNameDeathTest, AtTheHeadIsMeasuredFromTheStartOfTheText) {
    ASSERT_TRUE(evaluate("k = 1"));
    const std::string text = joined({std::string(60, '1'), "+k"});
    EXPECT_DEATH(evaluate(text, 61), "");
    EXPECT_TRUE(parse(text, 61, 0));
}

TEST_F(ExpressionNameDeathTest, BehindTheHeadIsMeasuredByItsLengthAlone) {
    ASSERT_TRUE(evaluate("k = 1"));
    EXPECT_EQ(valueOf(joined({"1+", std::string(100, ' '), "k"})), 2.0);
    EXPECT_EQ(valueOf(joined({std::string(100, ' '), "2+k"})), 3.0);
}

// Texts made to do harm

TEST_F(ExpressionGuard, EvaluatesGroupsAsDeepAsAnySkinCouldWriteThem) {
    EXPECT_EQ(valueOf(joined({std::string(255, '('), "1"})), 1.0);
    EXPECT_EQ(valueOf(joined({std::string(254, '-'), "1"})), 1.0);
}

TEST_F(ExpressionGuard, RefusesBottomlessNestingWithoutUsingUpTheStack) {
    EXPECT_FALSE(evaluate(std::string(1000000, '(')));
    EXPECT_FALSE(evaluate(std::string(1000000, '-')));
}

TEST_F(ExpressionGuard, RefusesWhatWouldBeReadAgainAndAgainForEver) {
    std::string text;
    for (int i = 0; i < 60; ++i)
        text += "(-";
    EXPECT_FALSE(evaluate(joined({text, "1+1"})));
}

TEST_F(ExpressionGuard, EvaluatesLongSums) {
    std::string text = "1";
    for (int i = 0; i < 20000; ++i)
        text += "+1";
    EXPECT_EQ(valueOf(text), 20001.0);
}

// Locales

TEST_F(ExpressionLocale, DoesNotChangeThePointOrTheLetters) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    for (const char* locale : {"C", "C.UTF-8", "", "de_DE.ISO-8859-1", "de_DE.UTF-8", "tr_TR.UTF-8"}) {
        if (!std::setlocale(LC_ALL, locale))
            continue;
        EXPECT_EQ(valueOf("1.5 + 1"), 2.5) << locale;
        EXPECT_EQ(valueOf("1,5 + 1"), 1.0) << locale;
        EXPECT_EQ(valueOf("\xe4 + 1"), 0.0) << locale;
        EXPECT_EQ(valueOf("ID = 4"), 4.0) << locale;
        EXPECT_EQ(valueOf("id"), 4.0) << locale;
    }
    std::setlocale(LC_ALL, before.c_str());
}

} // namespace
