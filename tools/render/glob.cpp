#include "tools/render/glob.h"

#include "base/ascii.h"

#include <cstddef>
#include <optional>

namespace tools::render {

namespace {

/// A set such as [a-z], from its bracket on.
struct Set {
    bool hasLetter = false;
    std::size_t length = 0; ///< with both brackets
};

std::optional<Set> readSet(std::string_view pattern, char letter) {
    std::size_t at = 1;
    const bool isNegated = at < pattern.size() && (pattern[at] == '!' || pattern[at] == '^');
    at += isNegated ? 1 : 0;
    bool isIn = false;
    for (const std::size_t first = at; at < pattern.size(); ++at) {
        if (pattern[at] == ']' && at > first)
            return Set{isIn != isNegated, at + 1};
        const char low = base::toLowerCase(pattern[at]);
        char high = low;
        if (at + 2 < pattern.size() && pattern[at + 1] == '-' && pattern[at + 2] != ']') {
            high = base::toLowerCase(pattern[at + 2]);
            at += 2;
        }
        isIn = isIn || (letter >= low && letter <= high);
    }
    return std::nullopt;
}

/// How much of the pattern its first character takes to match the letter; 0 if it does not match.
std::size_t matchLetter(std::string_view pattern, char letter) {
    letter = base::toLowerCase(letter);
    if (pattern[0] == '[')
        if (const auto set = readSet(pattern, letter))
            return set->hasLetter ? set->length : 0;
    return pattern[0] == '?' || base::toLowerCase(pattern[0]) == letter ? 1 : 0;
}

} // namespace

bool isPattern(std::string_view text) {
    return text.find_first_of("*?[") != std::string_view::npos;
}

bool matchesPattern(std::string_view name, std::string_view pattern) {
    // Where to go on if what follows the last star does not match: with one letter more for the star.
    std::optional<std::string_view> behindStar, starred;
    for (;;) {
        if (!pattern.empty() && pattern[0] == '*') {
            pattern.remove_prefix(1);
            behindStar = pattern;
            starred = name;
            continue;
        }
        if (name.empty() && pattern.empty())
            return true;
        const std::size_t taken = name.empty() || pattern.empty() ? 0 : matchLetter(pattern, name[0]);
        if (taken > 0) {
            name.remove_prefix(1);
            pattern.remove_prefix(taken);
            continue;
        }
        if (!behindStar || starred->empty())
            return false;
        starred->remove_prefix(1);
        name = *starred;
        pattern = *behindStar;
    }
}

} // namespace tools::render
