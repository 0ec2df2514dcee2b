// The tool's two jobs, from the options to the end.
#pragma once

#include "tools/window/options.h"

#include <cstdio>

namespace tools::window {

/// Opens the editor and stays until the person closes the window, or writes its picture. Throws ToolError,
/// host::HostError or Interrupted.
void openEditor(const Options& options);

/// Prints what is wrong with the skin to `output`, nothing if it is in order. Gives whether it is. Throws
/// ToolError.
bool checkSkinFor(const Options& options, std::FILE* output);

} // namespace tools::window
