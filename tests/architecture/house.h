#pragma once

#include "architecture_page.h"
#include "target_graph.h"

#include <string>

namespace architecture {

/// The targets of the build that this test belongs to.
const Graph& builtGraph();

/// docs/architecture.md.
const Page& writtenPage();

/// The room in a folder like "dsp/"; null if this build has none there.
const Target* roomIn(const std::string& folder);

/// A file of the sources as text; a failure of the test if there is none.
std::string sourceText(const std::string& path);

} // namespace architecture
