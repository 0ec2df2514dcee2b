// Shows one message as the plug-in does and ends when it has been acknowledged: show_message TEXT CAPTION.

#include "platform/message_box.h"

int main(int count, char** arguments) {
    if (count != 3)
        return 2;
    platform::showMessage(arguments[1], arguments[2]);
    return 0;
}
