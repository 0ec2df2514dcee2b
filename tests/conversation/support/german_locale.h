// A host that was started in German, where numbers are written with a comma.
#pragma once

#include <string>

namespace conversation {

/// Makes such a locale available to this process, with `folder` to work in. False where none can be had.
bool makeGermanLocale(const std::string& folder);

/// Puts this process into it, so that printf writes a comma, and streams too where this system's have
/// locales. Throws where it was not made.
void becomeGerman();

} // namespace conversation
