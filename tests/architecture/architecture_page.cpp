#include "architecture_page.h"

#include <regex>
#include <sstream>

namespace architecture {

namespace {

std::vector<std::string> cellsOf(const std::string& line) {
    std::vector<std::string> cells;
    std::istringstream rest(line.substr(1));
    for (std::string cell; std::getline(rest, cell, '|');) {
        const std::size_t first = cell.find_first_not_of(' ');
        const std::size_t last = cell.find_last_not_of(' ');
        cells.push_back(first == std::string::npos ? "" : cell.substr(first, last - first + 1));
    }
    cells.resize(3);
    return cells;
}

Row rowOf(const std::vector<std::string>& cells) {
    static const std::regex form("`([^`]*)`(?: \\(([^)]*)\\))?");
    std::smatch found;
    Row row;
    if (std::regex_match(cells[0], found, form)) {
        row.name = found[1];
        row.only = found[2];
    } else {
        row.name = cells[0];
    }
    row.second = cells[1];
    row.third = cells[2];
    const std::vector<std::string> links = inBackticks(row.third);
    row.links = Names(links.begin(), links.end());
    return row;
}

std::vector<Row> table(const std::string& text, const std::string& firstHeading) {
    std::vector<Row> rows;
    std::istringstream lines(text);
    bool isInside = false;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("|")) {
            isInside = false;
        } else if (cellsOf(line)[0] == firstHeading) {
            isInside = true;
            std::getline(lines, line); // the rule below the headings
        } else if (isInside) {
            rows.push_back(rowOf(cellsOf(line)));
        }
    }
    return rows;
}

} // namespace

Page readPage(const std::string& text) {
    return {table(text, "Room"), table(text, "Program"), table(text, "Helper"), table(text, "Not a room"),
            table(text, "Folder of tests")};
}

std::vector<std::string> inBackticks(const std::string& text) {
    static const std::regex blocks("```[^`]*```");
    static const std::regex quoted("`([^`]*)`");
    const std::string prose = std::regex_replace(text, blocks, "");
    std::vector<std::string> found;
    for (std::sregex_iterator next(prose.begin(), prose.end(), quoted), end; next != end; ++next)
        found.push_back((*next)[1]);
    return found;
}

} // namespace architecture
