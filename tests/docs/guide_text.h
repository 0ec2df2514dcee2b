// A page of documentation as a test sees it: its headings, its tables and the code that stands in it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

/// A stretch of code between two fences.
struct CodeBlock {
    std::string language; ///< all that stands behind the opening fence
    std::string text;     ///< with its line ends
    int line = 0;         ///< of the opening fence, from 1
};

/// The cells of a row without the blanks around them. A bar that is part of a text is a bar again.
using Row = std::vector<std::string>;

/// What stands between one heading and the next, whatever their levels.
struct Section {
    std::string heading; ///< without the signs before it; empty before the first one
    std::string text;
    std::vector<Row> rows; ///< of all tables, without their heads
};

std::vector<CodeBlock> codeBlocks(std::string_view page);

std::vector<Section> sections(std::string_view page);

/// The name by which a heading can be linked to within its page.
std::string anchorOf(std::string_view heading);

/// What stands in brackets behind a "](", with `prefix` at its beginning, without it.
std::vector<std::string> linksTo(std::string_view page, std::string_view prefix);

/// A cell without the backquotes around it.
std::string code(std::string_view cell);
