#include "guide_text.h"

#include <algorithm>
#include <sstream>

namespace {

constexpr std::string_view fence = "```";

std::vector<std::string> linesOf(std::string_view text) {
    std::vector<std::string> lines;
    std::istringstream stream{std::string(text)};
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::string withoutBlanks(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(' ');
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

Row cellsOf(const std::string& line) {
    Row cells(1);
    for (std::size_t at = 1; at < line.size(); ++at) {
        const bool isEscaped = line.compare(at, 2, "\\|") == 0;
        if (line[at] == '|') {
            cells.emplace_back();
            continue;
        }
        at += isEscaped ? 1 : 0;
        cells.back() += line[at];
    }
    cells.pop_back();
    std::ranges::transform(cells, cells.begin(), withoutBlanks);
    return cells;
}

bool isRule(const std::string& line) {
    return line.starts_with("| -");
}

} // namespace

std::vector<CodeBlock> codeBlocks(std::string_view page) {
    std::vector<CodeBlock> blocks;
    bool isInside = false;
    int number = 0;
    for (const std::string& line : linesOf(page)) {
        ++number;
        if (!line.starts_with(fence)) {
            if (isInside)
                blocks.back().text += line + "\n";
            continue;
        }
        isInside = !isInside;
        if (isInside)
            blocks.push_back({line.substr(fence.size()), "", number});
    }
    return blocks;
}

std::vector<Section> sections(std::string_view page) {
    std::vector<Section> found(1);
    bool isCode = false, isBelowRule = false;
    for (const std::string& line : linesOf(page)) {
        isCode = isCode != line.starts_with(fence);
        if (!isCode && line.starts_with('#')) {
            found.emplace_back();
            found.back().heading = line.substr(line.find(' ') + 1);
            continue;
        }
        found.back().text += line + "\n";
        const bool isTable = !isCode && line.starts_with('|');
        if (isTable && isBelowRule)
            found.back().rows.push_back(cellsOf(line));
        isBelowRule = isTable && (isBelowRule || isRule(line));
    }
    return found;
}

std::string anchorOf(std::string_view heading) {
    std::string anchor;
    for (const char byte : heading) {
        const bool isCapital = byte >= 'A' && byte <= 'Z';
        const bool isKept =
            isCapital || (byte >= 'a' && byte <= 'z') || (byte >= '0' && byte <= '9') || byte == '-';
        if (isKept)
            anchor += isCapital ? static_cast<char>(byte - 'A' + 'a') : byte;
        else if (byte == ' ')
            anchor += '-';
    }
    return anchor;
}

std::vector<std::string> linksTo(std::string_view page, std::string_view prefix) {
    const std::string begin = "](" + std::string(prefix);
    std::vector<std::string> links;
    for (std::size_t at = page.find(begin); at != std::string_view::npos; at = page.find(begin, at + 1)) {
        const std::size_t from = at + begin.size();
        links.emplace_back(page.substr(from, page.find(')', from) - from));
    }
    return links;
}

std::string code(std::string_view cell) {
    const bool isQuoted = cell.size() >= 2 && cell.front() == '`' && cell.back() == '`';
    return std::string(isQuoted ? cell.substr(1, cell.size() - 2) : cell);
}
