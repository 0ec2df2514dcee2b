// The system's side of the browser. Only the platform room sees it.
#pragma once

#include <string>

namespace platform {

/// Starts the browser on a quoted path, if there is one.
void openOwnBrowser(const std::string& argument);

} // namespace platform
