#include "platform/display.h"

#include <cstdlib>

namespace platform {

void leaveDisplay() {
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
}

} // namespace platform
