#include "desk/host_settings.h"

#include <cstdlib>

namespace desk {

void keepSettingsIn(const std::string& folder) {
    setenv("XDG_CONFIG_HOME", folder.c_str(), 1);
}

} // namespace desk
