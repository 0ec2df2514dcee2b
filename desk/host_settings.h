// Settings of a process's own, for a program that must not touch those of the person.
#pragma once

#include <string>

namespace desk {

/// From here on this process, and each library that it loads, keeps its settings in `folder`, an absolute
/// path. Call it before any library is loaded and any thread runs.
void keepSettingsIn(const std::string& folder);

} // namespace desk
