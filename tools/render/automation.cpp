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

/// Time, parameter, value. Between blanks the name may be of several words, since the first and the last word
/// are the others.
std::vector<std::string> threeParts(const Pieces& pieces) {
    constexpr const char* expected = "a line is: time, parameter, value";
    if (pieces.cells.size() > 1) {
        if (pieces.cells.size() != 3 || std::any_of(pieces.cells.begin(), pieces.cells.end(),
                                                    [](const std::string& cell) { return cell.empty(); }))
            throw ToolError(expected);
        return pieces.cells;
    }
    const auto& words = pieces.words;
    if (words.size() < 3)
        throw ToolError(expected);
    std::string name = words[1];
    for (std::size_t i = 2; i + 1 < words.size(); ++i)
        name += ' ' + words[i];
    return {words.front(), name, words.back()};
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

bool isHeading(const std::vector<std::string>& parts) {
    return sameName(parts[0], "time") && sameName(parts[1], "parameter") && sameName(parts[2], "value");
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
            const auto parts = threeParts(pieces);
            if (lines.empty() && isHeading(parts))
                continue;
            lines.push_back({number, timeFrom(parts[0]), {parts[1], wantedValue(parts[2], bpm)}});
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
