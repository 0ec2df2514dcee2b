#include "tools/render/automation.h"

#include "tools/common/input_file.h"
#include "tools/common/text.h"
#include "tools/common/tool_error.h"

#include <algorithm>
#include <cmath>

namespace tools::render {

namespace {

constexpr std::uintmax_t kLongestFile = 64u << 20;
constexpr std::string_view kBlanks = " \t\r\f\v";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool isBlank(char letter) {
    return kBlanks.find(letter) != std::string_view::npos;
}

/// A line cut into its pieces. Quotes hold blanks, commas and # together and are taken away.
struct Pieces {
    std::vector<std::string> words; ///< as blanks cut it
    std::vector<std::string> cells; ///< as commas cut it; one if there is none
};

class LineCutter {
  public:
    Pieces cut(std::string_view line) {
        for (std::size_t i = 0; i < line.size(); ++i) {
            const char letter = line[i];
            if (letter == '"')
                flipQuotes();
            else if (letter == '#' && startsComment(line, i))
                break;
            else
                take(letter);
        }
        if (inQuotes_)
            throw ToolError("a quotation mark is not closed");
        endWord();
        endCell();
        return pieces_;
    }

  private:
    /// A # is a comment at the line's beginning and behind the value. Between them it belongs to a name:
    /// "Taps #".
    bool startsComment(std::string_view line, std::size_t i) const {
        const bool startsWord = i == 0 || isBlank(line[i - 1]) || line[i - 1] == ',';
        return !inQuotes_ && startsWord && (pieces_.words.empty() || pieces_.words.size() >= 3);
    }
    void flipQuotes() {
        inQuotes_ = !inQuotes_;
        hasWord_ = true;
    }
    void take(char letter) {
        if (!inQuotes_ && letter == ',')
            endCell();
        else
            cell_ += letter;
        if (!inQuotes_ && (letter == ',' || isBlank(letter))) {
            endWord();
        } else {
            word_ += letter;
            hasWord_ = true;
        }
    }
    void endWord() {
        if (hasWord_)
            pieces_.words.push_back(word_);
        word_.clear();
        hasWord_ = false;
    }
    void endCell() {
        pieces_.cells.emplace_back(trimmed(cell_));
        cell_.clear();
    }

    Pieces pieces_;
    std::string word_, cell_;
    bool inQuotes_ = false;
    bool hasWord_ = false;
};

struct Parts {
    std::string time, parameter, value;
    std::string target, duration; ///< of a ramp; else empty
};

constexpr const char* kLineForm = "a line is: time, parameter, value";
constexpr const char* kRampForm = "a ramp is: time, parameter, value -> value over duration";
constexpr std::string_view kArrow = "->";
constexpr std::string_view kOver = "over";

/// "value -> value over duration" in one cell; any other text is a value.
void readCell(const std::string& cell, Parts& parts) {
    const std::size_t arrow = cell.find(" -> ");
    if (cell.starts_with("-> "))
        throw ToolError(kRampForm);
    if (arrow == std::string::npos) {
        parts.value = cell;
        return;
    }
    const std::size_t over = cell.rfind(" over ");
    if (over == std::string::npos || over < arrow + 4)
        throw ToolError(kRampForm);
    parts.value = trimmed(cell.substr(0, arrow));
    parts.target = trimmed(cell.substr(arrow + 4, over - arrow - 4));
    parts.duration = trimmed(cell.substr(over + 6));
    if (parts.value.empty() || parts.target.empty() || parts.duration.empty())
        throw ToolError(kRampForm);
}

/// Words 1 up to but not `end`.
std::string nameIn(const std::vector<std::string>& words, std::size_t end) {
    std::string name = words[1];
    for (std::size_t i = 2; i < end; ++i)
        name += ' ' + words[i];
    return name;
}

/// Between blanks the name may be of several words, since what is around it has a fixed number of words.
Parts partsOf(const Pieces& pieces) {
    Parts parts;
    if (pieces.cells.size() > 1) {
        if (pieces.cells.size() != 3 || std::any_of(pieces.cells.begin(), pieces.cells.end(),
                                                    [](const std::string& cell) { return cell.empty(); }))
            throw ToolError(kLineForm);
        parts.time = pieces.cells[0];
        parts.parameter = pieces.cells[1];
        readCell(pieces.cells[2], parts);
        return parts;
    }
    const auto& words = pieces.words;
    const std::size_t count = words.size();
    if (count < 3)
        throw ToolError(kLineForm);
    parts.time = words.front();
    if (std::find(words.begin(), words.end(), kArrow) == words.end()) {
        parts.parameter = nameIn(words, count - 1);
        parts.value = words.back();
        return parts;
    }
    if (count < 7 || words[count - 4] != kArrow || words[count - 2] != kOver)
        throw ToolError(kRampForm);
    parts.parameter = nameIn(words, count - 5);
    parts.value = words[count - 5];
    parts.target = words[count - 3];
    parts.duration = words[count - 1];
    return parts;
}

AutomationTime timeFrom(std::string_view text) {
    const auto number = leadingNumber(text);
    constexpr double furthest = 1e9;
    if (!number || number->value < 0.0 || number->value > furthest)
        throw ToolError(inQuotes(text) + " is not a time");
    if (number->rest.empty() || number->rest == "s")
        return {number->value, false};
    if (number->rest == "ms")
        return {number->value / 1000.0, false};
    if (number->rest == "smp" || number->rest == "samples") {
        if (number->value != std::floor(number->value))
            throw ToolError(inQuotes(text) + " is not a whole number of samples");
        return {number->value, true};
    }
    throw ToolError(inQuotes(text) + " is not a time: write seconds, or add ms or smp");
}

bool isHeading(const Parts& parts) {
    return sameName(parts.time, "time") && sameName(parts.parameter, "parameter") &&
           sameName(parts.value, "value");
}

AutomationLine lineFrom(int number, const Parts& parts, std::optional<double> bpm) {
    AutomationLine line{
        number, timeFrom(parts.time), {parts.parameter, wantedValue(parts.value, bpm)}, std::nullopt};
    if (!parts.duration.empty()) {
        line.ramp = {wantedValue(parts.target, bpm), timeFrom(parts.duration)};
        if (line.ramp->duration.amount <= 0.0)
            throw ToolError("a ramp needs a duration above 0");
    }
    return line;
}

} // namespace

std::int64_t AutomationTime::frameAt(double sampleRate) const {
    return std::llround(isInSamples ? amount : amount * sampleRate);
}

std::vector<AutomationLine> parseAutomation(std::string_view text, std::optional<double> bpm) {
    std::vector<AutomationLine> lines;
    if (text.starts_with(kByteOrderMark))
        text.remove_prefix(kByteOrderMark.size());
    for (int number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        try {
            const Pieces pieces = LineCutter().cut(line);
            if (pieces.words.empty() && pieces.cells.size() == 1)
                continue;
            const Parts parts = partsOf(pieces);
            if (lines.empty() && isHeading(parts))
                continue;
            lines.push_back(lineFrom(number, parts, bpm));
        } catch (const ToolError& error) {
            throw ToolError("line " + std::to_string(number) + ": " + error.what());
        }
    }
    return lines;
}

std::vector<AutomationLine> readAutomation(const std::filesystem::path& path, std::optional<double> bpm) {
    const std::string text = readText(path, kLongestFile);
    try {
        return parseAutomation(text, bpm);
    } catch (const ToolError& error) {
        throw ToolError(path.string() + ", " + error.what());
    }
}

} // namespace tools::render
