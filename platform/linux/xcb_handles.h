// Owners for what XCB hands out.
#pragma once

#include <cstdlib>
#include <memory>
#include <string_view>
#include <xcb/xcb.h>

namespace platform {

struct FreeXcb {
    void operator()(void* block) const { std::free(block); }
};
struct DisconnectXcb {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};

using XcbConnection = std::unique_ptr<xcb_connection_t, DisconnectXcb>;
using XcbEvent = std::unique_ptr<xcb_generic_event_t, FreeXcb>;

template <typename Reply>
std::unique_ptr<Reply, FreeXcb> ownedXcb(Reply* reply) {
    return std::unique_ptr<Reply, FreeXcb>(reply);
}

/// The name's number on this display, made if it is new there; XCB_ATOM_NONE if the display is gone.
inline xcb_atom_t xcbAtom(xcb_connection_t* connection, std::string_view name) {
    const auto reply = ownedXcb(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data()),
        nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

} // namespace platform
