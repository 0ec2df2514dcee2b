// The tool's two jobs, from the options to the report.
#pragma once

#include "tools/render/options.h"

#include <cstdio>

namespace tools::render {

/// Prints the effect's programs and parameters to `output`. Throws ToolError or host::HostError.
void listEffect(const Options& options, std::FILE* output);

/// Renders the input to the output file, draws the picture and prints the report to `output`. Either all of
/// that is there in the end or none of the files. Throws ToolError, host::HostError or Interrupted.
void renderToFile(const Options& options, std::FILE* output);

} // namespace tools::render
