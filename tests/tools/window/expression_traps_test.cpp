// Where an expression is not what it looks like. The judge is the plug-in's own evaluator.

#include "tools/skin_check/expression_traps.h"

#include "skin_language/expression.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <random>
#include <string>

namespace {

using tools::window::ExpressionTrap;
using tools::window::findExpressionTrap;

std::optional<double> valueOf(const std::string& text) {
    ExprTable table;
    double result = 0.0;
    for (const char* constant : {"a = 7", "kLeft = 40"}) {
        int position = 0;
        exprEvaluate(&table, constant, &position, &result);
    }
    int position = 0;
    if (!exprEvaluate(&table, text.c_str(), &position, &result))
        return std::nullopt;
    return result;
}

/// The trap's offset; -1 if there is none.
int trapIn(const std::string& text) {
    const auto trap = findExpressionTrap(text);
    return trap ? static_cast<int>(trap->offset) : -1;
}

std::string words(const std::string& text) {
    const auto trap = findExpressionTrap(text);
    return trap ? trap->text : "none";
}

TEST(ExpressionTraps, AreNotSeenInOrdinaryExpressions) {
    for (const char* text :
         {"12",      " 12 ",      "a",   "kLeft + 12*3", "2*(3+4)", "(2)",       "-2*3",   "10 - 4 - 3",
          "w = 100", "w = a + 2", "5.",  "3.25",         "1 $ 4",   "6 & 3 | 8", "-(1+2)", "2*(3+(4*2))",
          "((2))",   "- - 3",     "a-1", "_x1 = 5",      "(-1)",    "2*(-3)"})
        EXPECT_EQ(words(text), "none") << text;
}

TEST(ExpressionTraps, LeaveToThePluginWhatItReportsItself) {
    for (const char* text : {"1.2.3", "nobody", "a + nobody"})
        EXPECT_EQ(words(text), "none") << text;
}

TEST(ExpressionTraps, AreWhatStandsBehindAParenthesis) {
    EXPECT_EQ(trapIn("(1+2)*3"), 5);
    EXPECT_EQ(trapIn("(2)+3"), 3);
    EXPECT_EQ(trapIn("2*(3+4) + 1"), 8);
    EXPECT_EQ(trapIn("2*(3*(4+5)) - 1"), 12);
    EXPECT_NE(words("(2)+3").find("closing parenthesis"), std::string::npos);
}

TEST(ExpressionTraps, AreMinusSignsBeforeMoreThanOneOperand) {
    EXPECT_EQ(trapIn("(-1+2)"), 1);
    EXPECT_EQ(trapIn("2*(-1+2)"), 3);
    EXPECT_EQ(trapIn("((-1+2))"), 2);
    EXPECT_EQ(trapIn("3 + -4*2"), 4);
    EXPECT_EQ(trapIn("-4*2 + 3"), -1);
    EXPECT_EQ(trapIn("3 * -4 + 2"), -1);
    EXPECT_EQ(trapIn("(1-2)"), -1);
    EXPECT_EQ(trapIn("-(1+2)"), -1);
    EXPECT_EQ(valueOf("3 + -4*2"), -13.0) << "3 - 8 - 8";
}

TEST(ExpressionTraps, AreRemaindersThatAreNotRead) {
    EXPECT_EQ(trapIn("12 abc"), 3);
    EXPECT_EQ(trapIn("10px"), 2);
    EXPECT_EQ(trapIn("10 = 4"), 3);
    EXPECT_EQ(trapIn("1\n+2"), 1);
    EXPECT_EQ(trapIn("3 ) 4"), 2);
    EXPECT_EQ(words("12 abc "), "everything from \"abc\" on is ignored");
}

TEST(ExpressionTraps, AreMissingOperands) {
    EXPECT_EQ(trapIn(""), 0);
    EXPECT_EQ(trapIn("  "), 2);
    EXPECT_EQ(trapIn(".5"), 0);
    EXPECT_EQ(trapIn("3 + "), 4);
    EXPECT_EQ(trapIn("a ="), 3);
    EXPECT_EQ(trapIn("3 + * 4"), 4);
    EXPECT_EQ(trapIn("#12"), 0);
}

TEST(ExpressionTraps, AreNamesThatEndTheHost) {
    const std::string longest(59, 'k');
    const auto inside = findExpressionTrap("1 + " + longest + "k");
    ASSERT_TRUE(inside);
    EXPECT_TRUE(inside->endsTheHost);
    EXPECT_EQ(inside->offset, 4u);
    EXPECT_FALSE(findExpressionTrap("1 + " + longest));
    const auto first = findExpressionTrap(longest + "k");
    ASSERT_TRUE(first);
    EXPECT_TRUE(first->endsTheHost);
    EXPECT_FALSE(findExpressionTrap(longest));
    EXPECT_TRUE(findExpressionTrap(" " + longest)->endsTheHost) << "the place in the text counts";
}

TEST(ExpressionTrapsDeathTest, EndTheHostWhereTheyAreSaidTo) {
    const std::string longest(59, 'k');
    EXPECT_DEATH(valueOf("1 + " + longest + "k"), "");
    EXPECT_DEATH(valueOf(longest + "k"), "");
    EXPECT_DEATH(valueOf(" " + longest), "");
    EXPECT_EQ(valueOf("1 + " + longest), std::nullopt) << "unknown, and nothing worse";
    EXPECT_EQ(valueOf(longest), std::nullopt);
}

/// Arithmetic as everybody learns it, with the evaluator's priorities of the four operations.
class SchoolArithmetic {
  public:
    explicit SchoolArithmetic(std::string text) : text_(std::move(text)) {}
    double value() { return sum(); }

  private:
    char next() const { return at_ < text_.size() ? text_[at_] : '\0'; }
    double sum() {
        double result = product();
        while (next() == '+' || next() == '-') {
            const bool isPlus = text_[at_++] == '+';
            const double other = product();
            result = isPlus ? result + other : result - other;
        }
        return result;
    }
    double product() {
        double result = single();
        while (next() == '*' || next() == '/') {
            const bool isTimes = text_[at_++] == '*';
            const double other = single();
            result = isTimes ? result * other : result / other;
        }
        return result;
    }
    double single() {
        if (next() == '-') {
            ++at_;
            return -single();
        }
        if (next() == '(') {
            ++at_;
            const double result = sum();
            ++at_;
            return result;
        }
        return text_[at_++] - '0';
    }

    std::string text_;
    std::size_t at_ = 0;
};

class Chance {
  public:
    explicit Chance(unsigned seed) : engine_(seed) {}
    int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(engine_); }

    /// A well-formed expression of digits, the four operations, signs and groups.
    std::string expression(int depth = 3) {
        std::string text;
        const int operands = 1 + below(3);
        for (int i = 0; i < operands; ++i) {
            if (i > 0)
                text += "+-*/"[below(4)];
            if (below(5) == 0)
                text += '-';
            if (depth > 0 && below(3) == 0)
                text.append("(").append(expression(depth - 1)).append(")");
            else
                text += static_cast<char>('1' + below(9));
        }
        return text;
    }

    /// Pieces of expressions in any order.
    std::string pieces() {
        static const char* const all[] = {"1", "2.5", "a", "kLeft", "+", "-", "*", "/", "(",  ")",
                                          " ", "=",   "$", "&",     "|", ".", ",", "#", "(-", "px"};
        std::string text;
        for (int count = below(9); count > 0; --count)
            text += all[below(static_cast<int>(std::size(all)))];
        return text;
    }

  private:
    std::mt19937 engine_;
};

TEST(AnExpressionWithoutATrap, MeansWhatItLooksLike) {
    int plain = 0;
    for (unsigned seed = 0; seed < 20000; ++seed) {
        const std::string text = Chance(seed).expression();
        if (findExpressionTrap(text))
            continue;
        ++plain;
        const auto value = valueOf(text);
        const double expected = SchoolArithmetic(text).value();
        ASSERT_TRUE(value) << text;
        if (std::isfinite(expected)) {
            ASSERT_EQ(*value, expected) << text;
        }
    }
    EXPECT_GT(plain, 4000) << "too few to say anything";
}

TEST(AnExpressionWithATrap, DoesNotDependOnWhatIsSaidNotToBeRead) {
    int trapped = 0;
    for (unsigned seed = 0; seed < 20000; ++seed) {
        const std::string text = Chance(seed).pieces();
        const auto trap = findExpressionTrap(text);
        if (!trap || trap->text.find("ignored") == std::string::npos)
            continue;
        ++trapped;
        ASSERT_EQ(valueOf(text), valueOf(text.substr(0, trap->offset))) << text;
    }
    EXPECT_GT(trapped, 2000) << "too few to say anything";
}

} // namespace
