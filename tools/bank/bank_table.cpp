#include "tools/bank/bank_table.h"

#include "base/ascii.h"
#include "parameters/pattern_laws.h"
#include "tools/bank/cell_text.h"
#include "tools/common/text.h"

#include <algorithm>
#include <map>
#include <vector>

namespace bank {

using parameters::kNumLiveParameters;
using parameters::ParameterId;

namespace {

constexpr std::size_t kFamilyColumn = 0;
constexpr std::size_t kNameColumn = 1;
constexpr std::size_t kLoudColumn = 2;
constexpr std::size_t kFirstParameterColumn = 3;
constexpr std::size_t kNoteColumn = kFirstParameterColumn + kNumLiveParameters;
constexpr std::size_t kRhythmColumn = kNoteColumn + 1;
constexpr std::size_t kNumColumns = kRhythmColumn + 1;

/// Words that belong to makers of effects and instruments. A name that holds one would promise their sound.
constexpr std::string_view kBrandWords[] = {
    "ableton", "akai",   "alesis",  "binson",  "boss",   "copicat", "echoplex", "ensoniq",  "eventide",
    "fender",  "gibson", "hammond", "ibanez",  "korg",   "leslie",  "lexicon",  "marshall", "mellotron",
    "moog",    "mutron", "roland",  "strymon", "tascam", "univibe", "vox",      "watkins",  "yamaha",
};

std::string brandIn(std::string_view name) {
    const std::string text = tools::lowered(name);
    for (auto start = text.begin(); start != text.end();) {
        start = std::find_if(start, text.end(), base::isLetter);
        const auto end = std::find_if_not(start, text.end(), base::isLetter);
        const std::string word(start, end);
        if (std::find(std::begin(kBrandWords), std::end(kBrandWords), word) != std::end(kBrandWords))
            return word;
        start = end;
    }
    return {};
}

std::string heading(std::size_t column) {
    switch (column) {
    case kFamilyColumn:
        return "family";
    case kNameColumn:
        return "name";
    case kLoudColumn:
        return "loud";
    case kNoteColumn:
        return "note";
    case kRhythmColumn:
        return "rhythm";
    default:
        return columnHeading(static_cast<ParameterId>(column - kFirstParameterColumn));
    }
}

/// All headings that stand for a column, the one that tables are written with first.
std::vector<std::string> headings(std::size_t column) {
    std::vector<std::string> texts = {heading(column)};
    if (column >= kFirstParameterColumn && column < kNoteColumn) {
        const std::string inWindow = windowHeading(static_cast<ParameterId>(column - kFirstParameterColumn));
        if (inWindow != texts.front())
            texts.push_back(inWindow);
    }
    return texts;
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    for (;;) {
        const std::size_t end = text.find(separator);
        parts.push_back(text.substr(0, end));
        if (end == std::string_view::npos)
            return parts;
        text.remove_prefix(end + 1);
    }
}

/// Where a cell is, for the message about it.
struct Place {
    const std::string& fileName;
    std::size_t row;

    [[noreturn]] void refuse(std::size_t column, const std::string& what) const {
        throw BankError(fileName + ":" + std::to_string(row) + ":" + std::to_string(column + 1) + ": " +
                        what);
    }
};

std::string quoted(std::string_view text) {
    std::string result(1, '"');
    result += text;
    result += '"';
    return result;
}

void checkCount(const std::vector<std::string_view>& cells, const Place& place) {
    if (cells.size() != kNumColumns && cells.size() != kRhythmColumn)
        place.refuse(std::min(cells.size(), kNumColumns),
                     "found " + std::to_string(cells.size()) + " cells where a line has " +
                         std::to_string(kRhythmColumn) + " or " + std::to_string(kNumColumns));
}

void checkHeadings(const std::vector<std::string_view>& cells, const Place& place) {
    for (std::size_t column = 0; column < std::min(cells.size(), kNumColumns); ++column) {
        const std::vector<std::string> allowed = headings(column);
        if (std::ranges::none_of(allowed,
                                 [&](const auto& text) { return tools::sameName(cells[column], text); }))
            place.refuse(column, "the heading is " + quoted(cells[column]) + " and must be " +
                                     quoted(allowed.front()) +
                                     (allowed.size() > 1 ? " or " + quoted(allowed.back()) : ""));
    }
    checkCount(cells, place);
}

void parseRhythm(BankProgram& program, std::string_view cell, const Place& place) {
    if (cell.empty())
        return;
    program.rhythm = tools::noteFrom(cell);
    if (!program.rhythm)
        place.refuse(kRhythmColumn, quoted(cell) + " is not a note value such as 1/4, 1/8. or 1/8t");
    if (!isEven(program))
        place.refuse(kRhythmColumn, "a program with a rhythm needs even gaps or a single echo: " +
                                        columnHeading(parameters::kStretch) + " 0 or " +
                                        columnHeading(parameters::kTaps) + " 1");
}

BankProgram parseProgram(const std::vector<std::string_view>& cells, const Place& place) {
    checkCount(cells, place);
    BankProgram program;
    program.family = cells[kFamilyColumn];
    program.name = cells[kNameColumn];
    if (const std::string fault = nameFault(program.name); !fault.empty())
        place.refuse(kNameColumn, fault);
    program.loud = cells[kLoudColumn] == "loud";
    if (!program.loud && !cells[kLoudColumn].empty())
        place.refuse(kLoudColumn, quoted(cells[kLoudColumn]) + " must be \"loud\" or empty");
    for (std::size_t entry = 0; entry < program.values.size(); ++entry) {
        const auto id = static_cast<ParameterId>(entry);
        const std::size_t column = kFirstParameterColumn + entry;
        const auto value = cellValue(id, cells[column]);
        if (!value)
            place.refuse(column,
                         quoted(cells[column]) + " is not " + columnHeading(id) + ": " + cellRule(id));
        program.values[entry] = *value;
    }
    program.note = cells[kNoteColumn];
    if (cells.size() > kRhythmColumn)
        parseRhythm(program, cells[kRhythmColumn], place);
    return program;
}

} // namespace

bool isEven(const BankProgram& program) {
    constexpr float evenBend = 0.5f;
    return parameters::numTapsOf(program.value(parameters::kTaps)) == 1 ||
           parameters::stretchBend(program.value(parameters::kStretch)) == evenBend;
}

std::string nameFault(std::string_view name) {
    if (name.empty())
        return "a program needs a name";
    if (name.size() > kMaxNameLength)
        return quoted(name) + " has " + std::to_string(name.size()) + " characters, at most " +
               std::to_string(kMaxNameLength) + " fit";
    if (std::any_of(name.begin(), name.end(), [](char c) { return c < ' ' || c > '~' || c == '"'; }))
        return "a name is made of printable ASCII characters other than the double quote";
    if (name.front() == ' ' || name.back() == ' ')
        return quoted(name) + " has a blank at an end";
    if (const std::string brand = brandIn(name); !brand.empty())
        return quoted(name) + " holds the trademark " + quoted(brand);
    return {};
}

Bank parseTable(std::string_view text, const std::string& fileName) {
    Bank bank;
    std::map<std::string, std::size_t> rowOfName;
    std::size_t count = 0;
    bool headingsSeen = false;
    const auto lines = split(text, '\n');
    for (std::size_t line = 0; line < lines.size(); ++line) {
        std::string_view content = lines[line];
        if (content.ends_with('\r'))
            content.remove_suffix(1);
        if (content.empty() || content.front() == '#')
            continue;
        const Place place{fileName, line + 1};
        const auto cells = split(content, '\t');
        if (!headingsSeen) {
            checkHeadings(cells, place);
            headingsSeen = true;
            continue;
        }
        if (count == kNumPrograms)
            place.refuse(kFamilyColumn,
                         "a bank holds " + std::to_string(kNumPrograms) + " programs, this is one more");
        bank[count] = parseProgram(cells, place);
        const auto [other, isNew] = rowOfName.emplace(tools::lowered(bank[count].name), line + 1);
        if (!isNew)
            place.refuse(kNameColumn,
                         quoted(bank[count].name) + " is taken by row " + std::to_string(other->second));
        ++count;
    }
    if (count < kNumPrograms)
        Place{fileName, lines.size()}.refuse(kFamilyColumn, "the table ends after " + std::to_string(count) +
                                                                " programs, a bank holds " +
                                                                std::to_string(kNumPrograms));
    return bank;
}

std::string tableText(const Bank& bank) {
    std::string text = heading(0);
    for (std::size_t column = 1; column < kNumColumns; ++column)
        text += '\t' + heading(column);
    text += '\n';
    for (std::size_t number = 0; number < bank.size(); ++number) {
        const BankProgram& program = bank[number];
        if (program.name.find_first_of("\t\r\n") != std::string::npos)
            throw BankError("program " + std::to_string(number) +
                            ": the name contains a tab or a line break");
        text += program.family + '\t' + program.name + '\t' + (program.loud ? "loud" : "");
        for (std::size_t entry = 0; entry < program.values.size(); ++entry)
            text += '\t' + cellText(static_cast<ParameterId>(entry), program.values[entry]);
        text += '\t' + program.note;
        if (program.rhythm)
            text += '\t' + tools::noteText(*program.rhythm);
        text += '\n';
    }
    return text;
}

} // namespace bank
