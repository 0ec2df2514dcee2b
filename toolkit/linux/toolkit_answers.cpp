// Frees two answers of the display that the toolkit asks for and forgets: one with every motion of the
// pointer, one or two whenever a menu or a splash screen opens. Its calls of these two functions are linked
// to ours (toolkit/CMakeLists.txt). On the window thread.
#include "platform/linux/xcb_handles.h"

// The names are the linker's own.
extern "C" {

xcb_get_motion_events_cookie_t __real_xcb_get_motion_events(xcb_connection_t* connection, xcb_window_t window,
                                                            xcb_timestamp_t start, xcb_timestamp_t stop);
xcb_query_pointer_reply_t* __real_xcb_query_pointer_reply(xcb_connection_t* connection,
                                                          xcb_query_pointer_cookie_t cookie,
                                                          xcb_generic_error_t** error);

/// The toolkit asks only so that the display sends further motions. An answer that nobody fetches would be
/// kept until the connection ends.
xcb_get_motion_events_cookie_t __wrap_xcb_get_motion_events(xcb_connection_t* connection, xcb_window_t window,
                                                            xcb_timestamp_t start, xcb_timestamp_t stop) {
    const auto cookie = __real_xcb_get_motion_events(connection, window, start, stop);
    xcb_discard_reply(connection, cookie.sequence);
    return cookie;
}

/// Gives an answer that holds until the next one. A toolkit that frees it by itself must get its own again.
xcb_query_pointer_reply_t* __wrap_xcb_query_pointer_reply(xcb_connection_t* connection,
                                                          xcb_query_pointer_cookie_t cookie,
                                                          xcb_generic_error_t** error) {
    static xcb_query_pointer_reply_t last;
    const auto reply = platform::ownedXcb(__real_xcb_query_pointer_reply(connection, cookie, error));
    if (!reply)
        return nullptr;
    last = *reply;
    return &last;
}
}
