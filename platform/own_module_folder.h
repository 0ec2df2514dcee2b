// The system's side of the module's folder. Only the platform room sees it.
#pragma once

#include <string>

namespace platform {

/// The folder of the module that holds this code; empty if the system would not say.
std::string findModuleFolder();

} // namespace platform
