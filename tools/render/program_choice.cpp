#include "tools/render/program_choice.h"

#include "tools/common/effect_names.h"
#include "tools/common/text.h"
#include "tools/common/tool_error.h"
#include "tools/render/glob.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace tools::render {

namespace {

struct Range {
    int first = 0;
    int last = 0;
};

std::optional<Range> rangeFrom(std::string_view text) {
    const std::size_t dash = text.find('-');
    if (dash == std::string_view::npos)
        return std::nullopt;
    const auto first = countFrom(text.substr(0, dash));
    const auto last = countFrom(text.substr(dash + 1));
    return first && last ? std::optional(Range{*first, *last}) : std::nullopt;
}

class Choice {
  public:
    explicit Choice(const std::vector<std::string>& names) : names_(names) {}

    void add(std::string_view text) {
        if (addExactly(text))
            return;
        for (std::size_t begin = 0; begin <= text.size();) {
            const std::size_t comma = std::min(text.find(',', begin), text.size());
            addPart(trimmed(text.substr(begin, comma - begin)));
            begin = comma + 1;
        }
    }

    std::vector<std::int32_t> takeAll() { return std::move(chosen_); }

  private:
    void take(std::int32_t number) {
        if (std::ranges::find(chosen_, number) == chosen_.end())
            chosen_.push_back(number);
    }

    /// Programs of exactly this name; false if there is none.
    bool addExactly(std::string_view name) {
        bool isName = false;
        for (std::size_t i = 0; i < names_.size(); ++i)
            if (sameName(names_[i], name)) {
                take(static_cast<std::int32_t>(i));
                isName = true;
            }
        return isName;
    }

    void addPart(std::string_view part) {
        if (part.empty())
            throw ToolError("there is nothing between two commas, or nothing at all");
        if (const auto range = rangeFrom(part))
            addRange(*range);
        else if (!isPattern(part))
            take(findProgram(names_, part));
        else if (!addExactly(part))
            addMatching(part);
    }

    void addRange(const Range& range) {
        if (range.last < range.first)
            throw ToolError(std::to_string(range.first) + "-" + std::to_string(range.last) +
                            " runs backwards; write " + std::to_string(range.last) + "-" +
                            std::to_string(range.first));
        const std::int32_t last = findProgram(names_, std::to_string(range.last));
        for (std::int32_t number = range.first; number <= last; ++number)
            take(number);
    }

    void addMatching(std::string_view pattern) {
        bool hasMatched = false;
        for (std::size_t i = 0; i < names_.size(); ++i)
            if (matchesPattern(trimmed(names_[i]), pattern)) {
                take(static_cast<std::int32_t>(i));
                hasMatched = true;
            }
        if (!hasMatched)
            throw ToolError("no program matches " + inQuotes(pattern) + "; quillon-render --list shows them");
    }

    const std::vector<std::string>& names_;
    std::vector<std::int32_t> chosen_;
};

} // namespace

std::vector<std::int32_t> choosePrograms(const std::vector<std::string>& names,
                                         const std::vector<std::string>& texts) {
    Choice choice(names);
    for (const std::string& text : texts) {
        try {
            choice.add(text);
        } catch (const ToolError& error) {
            throw ToolError("--programs " + inQuotes(text) + ": " + error.what());
        }
    }
    return choice.takeAll();
}

} // namespace tools::render
