#include "tools/window/expression_traps.h"

#include "skin/ascii.h"
#include "tools/common/text.h"

namespace tools::window {

namespace {

/// A name that is longer, or that stands first in an expression and ends behind this place, ends the host.
constexpr std::size_t longestName = 59;
constexpr std::size_t furthestEndOfFirstName = 58;

class Reading {
  public:
    explicit Reading(std::string_view text) : text_(text) {}

    std::optional<ExpressionTrap> trap() {
        if (!assignment())
            return found_;
        while (operand() && binaryOperator()) {
        }
        return found_;
    }

  private:
    char here() const { return at_ < text_.size() ? text_[at_] : '\0'; }
    void skipBlanks() {
        while (here() == ' ' || here() == '\t')
            ++at_;
    }

    bool stop(std::string text, bool endsTheHost = false) {
        found_ = {at_, std::move(text), endsTheHost};
        return false;
    }

    /// False if it has found the trap. Steps over the name of a constant that is defined in passing.
    bool assignment() {
        skipBlanks();
        if (!isLetter(here()) && here() != '_')
            return true;
        const std::size_t begin = at_;
        while (isNameByte(here()))
            ++at_;
        const std::size_t end = at_;
        skipBlanks();
        const bool isAssignment = here() == '=';
        at_ = begin;
        if (end > furthestEndOfFirstName)
            return stop("a name at the beginning that reaches to the 59th character ends the host", true);
        if (isAssignment)
            at_ = text_.find('=', end) + 1;
        return true;
    }

    /// False where nothing more is to be read.
    bool operand() {
        for (skipBlanks(); here() == '-' || here() == '('; skipBlanks()) {
            isInGroup_ = isInGroup_ || here() == '(';
            ++at_;
        }
        const std::size_t begin = at_;
        if (isDigit(here())) {
            while (isDigit(here()) || here() == '.')
                ++at_;
            return true;
        }
        while (isNameByte(here()))
            ++at_;
        if (at_ - begin > longestName) {
            at_ = begin;
            return stop("a name of 60 characters or more ends the host", true);
        }
        if (at_ > begin)
            return true;
        if (here() == '.')
            return stop("a number begins with a digit: this counts as 0, and the rest is not read");
        return stop(here() ? "a number or a name is missing here, and counts as 0"
                           : "a number or a name is missing at the end, and counts as 0");
    }

    /// Takes an operator; false if the expression ends.
    bool binaryOperator() {
        skipBlanks();
        constexpr std::string_view operators = "$&|+-*/";
        if (here() && operators.find(here()) != std::string_view::npos) {
            ++at_;
            return true;
        }
        if (here() == ')' && isInGroup_) {
            while (here() == ')') {
                ++at_;
                skipBlanks();
            }
            if (here())
                return stop("nothing behind a closing parenthesis is read: a group works as the last operand "
                            "only");
            return false;
        }
        if (here())
            return stop("nothing from " + inQuotes(text_.substr(at_)) + " on is read");
        return false;
    }

    std::string_view text_;
    std::size_t at_ = 0;
    bool isInGroup_ = false;
    std::optional<ExpressionTrap> found_;
};

} // namespace

std::optional<ExpressionTrap> findExpressionTrap(std::string_view expression) {
    return Reading(expression).trap();
}

} // namespace tools::window
