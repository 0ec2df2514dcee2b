#pragma once

#include "architecture_page.h"
#include "target_graph.h"

#include <string>
#include <vector>

namespace architecture {

/// Where the page and the build differ, and where the build breaks a rule of the page, a sentence for each.
/// The build is one of everything for Linux: a row "for Windows" has no target there.
std::vector<std::string> differences(const Page& page, const Graph& graph);

/// A library that others link and that does not belong to the tests.
bool isRoom(const Target& target);

/// "dsp/" for what lies in dsp.
std::string roomFolder(const Target& target);

} // namespace architecture
