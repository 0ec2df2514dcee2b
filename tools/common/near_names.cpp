#include "tools/common/near_names.h"

#include "base/ascii.h"
#include "tools/common/text.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

namespace tools {

namespace {

constexpr std::size_t kMostSuggestions = 3;
/// Longer texts are not compared.
constexpr std::size_t kLongestName = 64;
/// Shorter parts of names say nothing.
constexpr std::size_t kShortestPart = 3;

/// Letters and digits alone, in lower case.
std::string skeleton(std::string_view text) {
    std::string result;
    for (const char letter : lowered(text))
        if (base::isLetter(letter) || base::isDigit(letter))
            result += letter;
    return result;
}

/// The fewest letters to insert, remove, replace or swap with their neighbour to get from one to the other.
std::size_t editDistance(std::string_view a, std::string_view b) {
    std::vector<std::vector<std::size_t>> distance(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i) {
        for (std::size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                distance[i][j] = i + j;
                continue;
            }
            const std::size_t replaced = distance[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            distance[i][j] = std::min({distance[i - 1][j] + 1, distance[i][j - 1] + 1, replaced});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                distance[i][j] = std::min(distance[i][j], distance[i - 2][j - 2] + 1);
        }
    }
    return distance[a.size()][b.size()];
}

/// How far a name is from what was written, 0 for the same letters; nothing if it is too far to be meant.
std::optional<std::size_t> farness(std::string_view name, std::string_view written) {
    if (name.empty() || written.empty() || name.size() > kLongestName || written.size() > kLongestName)
        return std::nullopt;
    if (name == written)
        return 0;
    const bool isPart = written.size() >= kShortestPart && name.find(written) != std::string_view::npos;
    const bool hasPart = name.size() > kShortestPart && written.find(name) != std::string_view::npos;
    if (isPart || hasPart)
        return 1;
    const std::size_t distance = editDistance(name, written);
    const std::size_t most = std::max(name.size(), written.size()) / 3;
    return distance <= most ? std::optional(distance + 1) : std::nullopt;
}

} // namespace

std::vector<std::string> nearNames(const std::vector<std::string>& names, std::string_view name) {
    const std::string written = skeleton(name);
    std::vector<std::pair<std::size_t, std::string>> found;
    for (const std::string& candidate : names)
        if (const auto far = farness(skeleton(candidate), written))
            found.emplace_back(*far, candidate);
    std::ranges::stable_sort(found, {}, [](const auto& entry) { return entry.first; });
    std::vector<std::string> nearest;
    for (const auto& [far, candidate] : found) {
        const bool isNew = std::ranges::find(nearest, candidate) == nearest.end();
        if (far == found.front().first && isNew && nearest.size() < kMostSuggestions)
            nearest.push_back(candidate);
    }
    return nearest;
}

std::string suggestion(const std::vector<std::string>& names, std::string_view name,
                       std::string_view otherwise) {
    const std::vector<std::string> nearest = nearNames(names, name);
    if (nearest.empty())
        return "; " + std::string(otherwise);
    std::string text = "; did you mean ";
    for (std::size_t i = 0; i < nearest.size(); ++i)
        text += (i == 0 ? "" : i + 1 == nearest.size() ? " or " : ", ") + inQuotes(nearest[i]);
    return text + "?";
}

} // namespace tools
