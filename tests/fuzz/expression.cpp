// Any bytes as the lines of a skin's arithmetic, one table for all: a line is either refused and changes
// nothing, or has a value, which does not depend on the case of its letters.
#include "skin_language/expression.h"

#include "base/ascii.h"
#include "promise.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace {

struct Outcome {
    bool understood = false;
    int position = 0;
    double value = -1.0;
};

/// NaN compares equal to itself here; its sign may come out either way.
bool sameValue(double one, double other) {
    if (one != one)
        return other != other;
    return std::bit_cast<std::uint64_t>(one) == std::bit_cast<std::uint64_t>(other);
}

std::size_t endOfHeadName(std::string_view line) {
    const std::size_t begin = line.find_first_not_of(" \t");
    if (begin == std::string_view::npos || base::isDigit(line[begin]))
        return 0;
    std::size_t end = begin;
    while (end < line.size() && base::isNameByte(line[end]))
        ++end;
    return end == begin ? 0 : end;
}

std::size_t longestName(std::string_view line) {
    std::size_t longest = 0;
    std::size_t length = 0;
    for (const char byte : line) {
        const bool belongs = length > 0 ? base::isNameByte(byte) : base::isLetter(byte) || byte == '_';
        length = belongs ? length + 1 : 0;
        longest = length > longest ? length : longest;
    }
    return longest;
}

/// Names that are too long end the process, as they should.
bool mayEndTheProcess(std::string_view line) {
    return longestName(line) >= 60 || endOfHeadName(line) >= 60;
}

std::string withOtherCase(std::string text) {
    for (char& byte : text)
        if (base::isLetter(byte))
            byte = static_cast<char>(byte ^ 0x20);
    return text;
}

Outcome evaluate(ExprTable& table, const std::string& line) {
    // A block of exactly the text's size, so that a step too far is noticed.
    const std::vector<char> text(line.c_str(), line.c_str() + line.size() + 1);
    const std::int64_t known = table.count;
    Outcome outcome;
    outcome.understood = exprEvaluate(&table, text.data(), &outcome.position, &outcome.value);
    promise(outcome.position >= 0 && outcome.position <= static_cast<int>(line.size()),
            "a position in the text");
    promise(table.count == known || (outcome.understood && table.count == known + 1),
            "one new constant at most");
    if (!outcome.understood)
        promise(outcome.position == 0 && outcome.value == -1.0, "a refused line changes nothing");
    if (table.count > known) {
        const ExprEntry& entry = table[known];
        double found = 0.0;
        promise(exprLookup(&table, entry.name, &found), "a new constant is found");
        promise(sameValue(found, outcome.value), "a new constant has the value of its line");
    }
    return outcome;
}

/// Reads on from every place of the line at every priority.
void parseEverywhere(ExprTable& table, const std::string& line) {
    for (int start = 0; start <= static_cast<int>(line.size()); ++start)
        for (const int priority : {-1, 0, 15, 16, 17, 18, 19}) {
            int position = start;
            double value = -1.0;
            const bool understood = exprParse(&table, line.c_str(), &position, &value, priority);
            promise(position >= start && position <= static_cast<int>(line.size()), "a position further on");
            promise(understood || (position == start && value == -1.0), "a refused level changes nothing");
        }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ExprTable table;
    ExprTable otherCase;
    std::string text(reinterpret_cast<const char*>(data), size);
    text.push_back('\n');
    std::size_t begin = 0;
    for (std::size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', begin)) {
        // What stands behind a NUL is out of sight.
        const std::string line = text.substr(begin, end - begin).c_str();
        begin = end + 1;
        if (mayEndTheProcess(line))
            continue;
        const Outcome outcome = evaluate(table, line);
        const Outcome other = evaluate(otherCase, withOtherCase(line));
        promise(outcome.understood == other.understood && outcome.position == other.position &&
                    sameValue(outcome.value, other.value),
                "case does not matter");
        if (line.size() < 16)
            parseEverywhere(table, line);
    }
    return 0;
}
