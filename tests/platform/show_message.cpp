// Shows messages as the plug-in does, one after another, and ends when the last has been acknowledged:
// show_message [owner=WINDOW] TEXT CAPTION [TEXT CAPTION...]

#include "platform/message_box.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

int main(int count, char** arguments) {
    constexpr std::string_view ownerOption = "owner=";
    platform::MessageLook look;
    int first = 1;
    if (count > 1 && std::string_view(arguments[1]).starts_with(ownerOption)) {
        const char* const number = arguments[1] + ownerOption.size();
        look.owner = reinterpret_cast<void*>(static_cast<std::uintptr_t>(std::strtoul(number, nullptr, 10)));
        first = 2;
    }
    if (count - first < 2 || (count - first) % 2 != 0)
        return 2;
    for (int i = first; i < count; i += 2)
        platform::showMessage(arguments[i], arguments[i + 1], look);
    return 0;
}
