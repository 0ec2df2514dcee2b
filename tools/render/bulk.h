// The tool's third job: many files, from the options to the summary.
#pragma once

#include "tools/render/options.h"

#include <cstdio>

namespace tools::render {

/// Renders everything that `options.bulk` asks for, prints the summary to `output`, and failures to standard
/// error. False if a file failed. Throws ToolError if nothing can be begun, and Interrupted.
bool renderInBulk(const Options& options, std::FILE* output);

} // namespace tools::render
