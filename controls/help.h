// The help page, a web page beside the plug-in's library, in the person's web browser.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>

namespace controls {

/// Room for the path of the help page in double quotes, with its NUL: as long as a path may be on this
/// system.
constexpr std::size_t kHelpArgumentSize = FILENAME_MAX;

/// Opens the help page. Where there is no browser, no page or a path that is too long, nothing happens. Not
/// on the audio thread.
void openHelp();

/// Writes the quoted path of the help page, at most kHelpArgumentSize bytes; an empty text if the path is too
/// long. Any thread but the audio thread.
void helpFileArgument(char* out);

/// The same for a page in `folder`, which ends in a separator.
void helpFileArgument(const std::string& folder, char* out);

} // namespace controls
