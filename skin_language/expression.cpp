#include "skin_language/expression.h"

#include "base/ascii.h"

#include <cstdlib>
#include <limits>
#include <string_view>

namespace {

constexpr std::size_t kLongestName = sizeof(ExprEntry::name) - 1;

// What a hostile text is refused at. The values of a skin have fewer than 256 bytes, which is fewer levels
// and operands than these. Operands have a limit of their own since a level whose end is not reported is read
// again by the level around it, which can double the work with every two bytes.
constexpr int kDeepestLevel = 1000;
constexpr int kMostOperands = 100000;

constexpr int kNoOperator = 0;
constexpr int kUnaryMinusPriority = 19;
constexpr int kGroupPriority = -1;

constexpr int priorityOf(char byte) {
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
        return 19;
    default:
        return kNoOperator;
    }
}

/// Toward zero; the lowest integer for whatever does not fit, as processors convert.
std::int32_t truncated(double value) {
    if (value > -2147483648.0 && value < 2147483648.0)
        return static_cast<std::int32_t>(value);
    return std::numeric_limits<std::int32_t>::min();
}

double shiftedLeft(double left, double right) {
    const auto bits = static_cast<std::uint32_t>(truncated(left));
    const auto places = static_cast<std::uint32_t>(truncated(right)) % 32;
    return static_cast<std::int32_t>(bits << places);
}

double applied(char operation, double left, double right) {
    switch (operation) {
    case '$':
        return shiftedLeft(left, right);
    case '&':
        return truncated(left) & truncated(right);
    case '|':
        return truncated(left) | truncated(right);
    case '+':
        return left + right;
    case '-':
        return left - right;
    case '*':
        return left * right;
    default:
        return left / right;
    }
}

const char* skipBlanks(const char* at) {
    while (*at == ' ' || *at == '\t')
        ++at;
    return at;
}

bool beginsName(char byte) {
    return base::isLetter(byte) || byte == '_';
}

/// The same for names that differ only in case.
std::uint8_t hashOf(std::string_view name) {
    unsigned hash = 0x20;
    for (const char byte : name) {
        const unsigned rotated = ((hash << 1) | ((hash >> 6) & 1)) & 0xff;
        hash = rotated ^ (static_cast<unsigned char>(byte) | 0x20u);
    }
    return static_cast<std::uint8_t>(hash);
}

/// Null if there is no such constant.
ExprEntry* findConstant(ExprTable& table, std::string_view name) {
    const std::uint8_t hash = hashOf(name);
    for (ExprEntry& entry : table)
        if (entry.hash == hash && base::equalIgnoringCase(entry.name, name))
            return &entry;
    return nullptr;
}

/// False if memory is out. The name must fit an entry.
bool define(ExprTable& table, std::string_view name, double value) {
    if (ExprEntry* known = findConstant(table, name)) {
        known->value = value;
        return true;
    }
    ExprEntry entry;
    entry.hash = hashOf(name);
    name.copy(entry.name, kLongestName);
    entry.value = value;
    return table.append(entry);
}

/// Evaluates as it reads, with no tokens and no syntax tree. The operations give false where the text is at
/// fault; the whole evaluation ends then.
class Evaluation {
  public:
    explicit Evaluation(ExprTable& constants) : constants_(constants) {}

    /// One level: an operand and the operators behind it that bind tighter than `minPriority`. `*position` is
    /// left alone by a level that applied an operator and ran into something else than an operator.
    bool readLevel(const char** position, double* result, int minPriority);

  private:
    bool readOperand(const char** at, double* value);
    bool readNumber(const char** at, double* value);
    bool readConstant(const char** at, double* value);

    ExprTable& constants_;
    int levels_ = 0;
    int operands_ = 0;
};

bool Evaluation::readLevel(const char** position, double* result, int minPriority) {
    if (levels_ == kDeepestLevel || operands_ == kMostOperands)
        return false;
    ++levels_;
    ++operands_;
    const char* at = skipBlanks(*position);
    double value = 0.0;
    if (!readOperand(&at, &value))
        return false;
    bool operatorApplied = false;
    for (;;) {
        at = skipBlanks(at);
        const int priority = priorityOf(*at);
        if (priority == kNoOperator || priority <= minPriority) {
            if (priority != kNoOperator || !operatorApplied)
                *position = at;
            break;
        }
        const char operation = *at;
        ++at;
        double right = 0.0;
        if (!readLevel(&at, &right, priority))
            return false;
        value = applied(operation, value, right);
        operatorApplied = true;
    }
    --levels_;
    *result = value;
    return true;
}

/// Whatever begins no operand is left in place, and the value with it.
bool Evaluation::readOperand(const char** at, double* value) {
    if (**at == '-') {
        ++*at;
        if (!readLevel(at, value, kUnaryMinusPriority))
            return false;
        *value = -*value;
        return true;
    }
    if (**at == '(') {
        // The closing parenthesis stays where it is: no operator, it ends this level as well.
        ++*at;
        return readLevel(at, value, kGroupPriority);
    }
    if (base::isDigit(**at))
        return readNumber(at, value);
    if (beginsName(**at))
        return readConstant(at, value);
    return true;
}

bool Evaluation::readNumber(const char** at, double* value) {
    double digits = 0.0;
    double scale = 1.0;
    bool pointSeen = false;
    for (; base::isDigit(**at) || **at == '.'; ++*at) {
        if (**at == '.') {
            if (pointSeen)
                return false;
            pointSeen = true;
            continue;
        }
        if (pointSeen)
            scale *= 0.1;
        digits = digits * 10.0 + (**at - '0');
    }
    *value = digits * scale;
    return true;
}

bool Evaluation::readConstant(const char** at, double* value) {
    const std::string_view name = base::nameAt(*at);
    if (name.size() > kLongestName)
        std::abort();
    const ExprEntry* entry = findConstant(constants_, name);
    if (!entry)
        return false;
    *value = entry->value;
    *at += name.size();
    return true;
}

} // namespace

bool exprEvaluate(ExprTable* table, const char* text, int* position, double* result) {
    const char* at = skipBlanks(text + *position);
    if (!beginsName(*at))
        return exprParse(table, text, position, result, 0);
    const std::string_view name = base::nameAt(at);
    at += name.size();
    // The room for a name at the head is counted from the start of the text, blanks before it included.
    if (static_cast<std::size_t>(at - text) > kLongestName)
        std::abort();
    at = skipBlanks(at);
    if (*at != '=')
        return exprParse(table, text, position, result, 0);

    int behind = static_cast<int>(at + 1 - text);
    double value = 0.0;
    if (!exprParse(table, text, &behind, &value, 0) || !define(*table, name, value))
        return false;
    *position = behind;
    *result = value;
    return true;
}

bool exprParse(ExprTable* table, const char* text, int* position, double* result, int minPriority) {
    const char* at = text + *position;
    if (!Evaluation(*table).readLevel(&at, result, minPriority))
        return false;
    *position = static_cast<int>(at - text);
    return true;
}

bool exprLookup(ExprTable* table, const char* name, double* value) {
    const ExprEntry* entry = findConstant(*table, name);
    if (!entry)
        return false;
    *value = entry->value;
    return true;
}
