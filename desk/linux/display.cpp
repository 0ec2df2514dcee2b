#include "desk/display.h"

#include <cstdlib>

namespace desk {

void leaveDisplay() {
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
}

} // namespace desk
