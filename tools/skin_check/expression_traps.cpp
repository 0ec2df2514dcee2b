#include "tools/skin_check/expression_traps.h"

#include "base/ascii.h"
#include "tools/common/text.h"

namespace tools::window {

namespace {

/// A longer name crashes the host. For a name that stands first, blanks before it count.
constexpr std::size_t kLongestName = 59;

/// The priority above which there is none: a sign binds so.
constexpr int kTightest = 19;

/// How tightly an operator binds; nothing if the byte is none.
std::optional<int> priorityOf(char byte) {
    switch (byte) {
    case '$':
        return 15;
    case '&':
        return 16;
    case '|':
        return 17;
    case '+':
    case '-':
        return 18;
    case '*':
    case '/':
        return kTightest;
    default:
        return std::nullopt;
    }
}

/// Goes the evaluator's way through an expression, level by level. The first byte behind an operand that is
/// no operator ends all of them.
class TrapFinder {
  public:
    explicit TrapFinder(std::string_view text) : text_(text) {}

    std::optional<ExpressionTrap> trap() {
        assignment();
        if (!found_)
            level(0, true);
        return found_;
    }

  private:
    char here() const { return at_ < text_.size() ? text_[at_] : '\0'; }
    void skipBlanks() {
        while (here() == ' ' || here() == '\t')
            ++at_;
    }

    /// Ends the reading; the first trap counts.
    void stop(std::size_t offset, std::string text, bool endsTheHost = false) {
        hasEnded_ = true;
        if (!found_)
            found_ = {offset, std::move(text), endsTheHost};
    }

    /// Steps over the name of a constant that is defined in passing.
    void assignment() {
        skipBlanks();
        const std::size_t begin = at_;
        if (base::isDigit(here()))
            return;
        skipName();
        if (at_ > begin && at_ > kLongestName)
            return stop(begin,
                        "a name at the beginning that reaches beyond the 59th character crashes the host",
                        true);
        skipBlanks();
        at_ = at_ > begin && here() == '=' ? at_ + 1 : begin;
    }

    void skipName() {
        while (base::isNameByte(here()))
            ++at_;
    }

    /// Operators that bind tighter than `leastPriority`, and their operands.
    void level(int leastPriority, bool isOutermost = false) {
        skipBlanks();
        const std::size_t begin = at_;
        operand();
        bool hasOperator = false;
        while (!hasEnded_) {
            skipBlanks();
            const auto priority = priorityOf(here());
            if (!priority) {
                end();
            } else if (*priority > leastPriority) {
                hasOperator = true;
                ++at_;
                level(*priority);
            } else {
                return;
            }
        }
        // The level around this one then begins where this one began, and takes the sign for an operator.
        if (hasOperator && !isOutermost && text_[begin] == '-')
            stop(begin, "everything after this minus sign is counted twice; use a minus sign only "
                        "before a single number");
    }

    void operand() {
        const std::size_t begin = at_;
        if (here() == '-') {
            ++at_;
            level(kTightest);
        } else if (here() == '(') {
            ++at_;
            isInGroup_ = true;
            level(-1);
        } else if (base::isDigit(here())) {
            while (base::isDigit(here()) || here() == '.')
                ++at_;
        } else if (skipName(); at_ - begin > kLongestName) {
            stop(begin, "a name of 60 characters or more crashes the host", true);
        } else if (at_ == begin) {
            stop(begin, here() == '.'
                            ? "a number must begin with a digit: this counts as 0, and the rest is ignored"
                        : here() ? "a number or a name is missing here, and counts as 0"
                                 : "a number or a name is missing at the end, and counts as 0");
        }
    }

    /// Behind the last operand.
    void end() {
        hasEnded_ = true;
        const bool closesGroup = isInGroup_ && here() == ')';
        while (closesGroup && here() == ')') {
            ++at_;
            skipBlanks();
        }
        if (closesGroup && here())
            stop(at_, "text after a closing parenthesis is ignored: parentheses work only at the end");
        else if (here())
            stop(at_, "everything from " + inQuotes(trimmed(text_.substr(at_))) + " on is ignored");
    }

    std::string_view text_;
    std::size_t at_ = 0;
    bool isInGroup_ = false;
    bool hasEnded_ = false;
    std::optional<ExpressionTrap> found_;
};

} // namespace

std::optional<ExpressionTrap> findExpressionTrap(std::string_view expression) {
    return TrapFinder(expression).trap();
}

} // namespace tools::window
