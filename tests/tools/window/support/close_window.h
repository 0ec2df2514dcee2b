// What a window manager does when a person clicks on the cross of a window.
#pragma once

#include "virtual_screen.h"

inline void askToClose(test::VirtualScreen& screen, Window window) {
    XClientMessageEvent request = {};
    request.type = ClientMessage;
    request.window = window;
    request.message_type = XInternAtom(screen.display(), "WM_PROTOCOLS", False);
    request.format = 32;
    request.data.l[0] = static_cast<long>(XInternAtom(screen.display(), "WM_DELETE_WINDOW", False));
    XSendEvent(screen.display(), window, False, NoEventMask, reinterpret_cast<XEvent*>(&request));
    XSync(screen.display(), False);
}
