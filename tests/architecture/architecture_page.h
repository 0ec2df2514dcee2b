#pragma once

#include "target_graph.h"

#include <string>
#include <vector>

namespace architecture {

/// A row of one of the page's tables.
struct Row {
    /// As it stands in the first cell: "dsp/" for a room, the target's name for all else.
    std::string name;
    /// The words in brackets behind the name: what it is built for alone, as "Windows" or "timing".
    std::string only;
    /// The second cell, as it is written.
    std::string second;
    /// The names in backticks in the third cell.
    Names links;
    /// The third cell, as it is written.
    std::string third;
};

/// What docs/architecture.md says of the targets.
struct Page {
    /// "Room | Holds | May include", from the ground up.
    std::vector<Row> rooms;
    /// "Program | Room | Links besides".
    std::vector<Row> programs;
    /// "Helper | Holds | Links".
    std::vector<Row> helpers;
    /// "Not a room | What".
    std::vector<Row> others;
    /// "Folder of tests | Holds".
    std::vector<Row> testFolders;
};

/// Reads the tables of a page in Markdown, which are known by the words above their first columns.
Page readPage(const std::string& text);

/// All that stands in backticks in `text`, code blocks left out.
std::vector<std::string> inBackticks(const std::string& text);

} // namespace architecture
