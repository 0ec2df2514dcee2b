// Shows messages as the plug-in does, one after another, and ends when the last has been acknowledged:
// show_message TEXT CAPTION [TEXT CAPTION...]

#include "platform/message_box.h"

int main(int count, char** arguments) {
    if (count < 3 || count % 2 == 0)
        return 2;
    for (int i = 1; i < count; i += 2)
        platform::showMessage(arguments[i], arguments[i + 1]);
    return 0;
}
