// Several programs by one text: "0-31, 47, Ping*, Slow Dawn".
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tools::render {

/// The numbers of the programs that the texts choose, each once, in their order. A text has commas between
/// numbers, ranges "3-7", names (also their first letters) and patterns of names; a name that itself has
/// commas is one, too. `names`: of all programs. Throws ToolError naming the text and the part at fault.
std::vector<std::int32_t> choosePrograms(const std::vector<std::string>& names,
                                         const std::vector<std::string>& texts);

} // namespace tools::render
