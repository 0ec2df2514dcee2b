#include "platform/web_browser.h"

#include "own_browser.h"

namespace platform {

namespace {

BrowserHandler replacement = nullptr;
void* replacementContext = nullptr;

} // namespace

void openInBrowser(const std::string& argument) {
    if (replacement)
        replacement(replacementContext, argument.c_str());
    else
        openOwnBrowser(argument);
}

void replaceBrowser(BrowserHandler handler, void* context) {
    replacement = handler;
    replacementContext = context;
}

} // namespace platform
