#include "controls/help.h"

#include "platform/module_folder.h"
#include "platform/web_browser.h"

#include <cstring>

namespace controls {

void openHelp() {
    char argument[kHelpArgumentSize];
    helpFileArgument(argument);
    if (*argument)
        platform::openInBrowser(argument);
}

void helpFileArgument(char* out) {
    helpFileArgument(platform::moduleFolder(), out);
}

void helpFileArgument(const std::string& folder, char* out) {
    // Without a folder it would be sought in the current one.
    const std::string argument = "\"" + folder + "Quillon Multitap Delay Help.htm\"";
    const bool isToBeFound = !folder.empty() && argument.size() < kHelpArgumentSize;
    std::strcpy(out, isToBeFound ? argument.c_str() : "");
}

} // namespace controls
