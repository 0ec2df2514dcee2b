#include "support/german_locale.h"

#include <cstdlib>
#include <locale>

namespace conversation {

bool makeGermanLocale(const std::string& folder) {
    const std::string command = "localedef -i de_DE -f UTF-8 '" + folder + "/de_DE.UTF-8' >/dev/null 2>&1";
    if (std::system(command.c_str()) != 0)
        return false;
    setenv("LOCPATH", folder.c_str(), 1);
    return true;
}

void becomeGerman() {
    std::locale::global(std::locale("de_DE.UTF-8"));
}

} // namespace conversation
