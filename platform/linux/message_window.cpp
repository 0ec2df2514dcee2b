#include "../message_window.h"

namespace platform {

bool showMessageWindow(const char*, const char*) {
    return false;
}

} // namespace platform
