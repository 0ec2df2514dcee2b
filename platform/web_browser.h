// Showing a page of help in the person's web browser.
#pragma once

#include <string>

namespace platform {

/// Opens a file in the browser and does not wait for it. `argument` is the file's path in double quotes, as a
/// command line takes it. Nothing is reported: where there is no browser, nothing happens. Never on the audio
/// thread.
void openInBrowser(const std::string& argument);

using BrowserHandler = void (*)(void* context, const char* argument);

/// Sends every following argument to `handler` in place of the browser, so that a test can read it; null
/// brings the browser back. Process-wide; set it before other threads run.
void replaceBrowser(BrowserHandler handler, void* context);

} // namespace platform
