#include "editor/help.h"

#include "platform/module_folder.h"
#include "platform/web_browser.h"

#include <cstring>

namespace editor {

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
    const std::string argument = "\"" + folder + "Quillon Multitap Delay Help.htm\"";
    const bool fits = argument.size() < kHelpArgumentSize;
    std::strcpy(out, fits ? argument.c_str() : "");
}

} // namespace editor
