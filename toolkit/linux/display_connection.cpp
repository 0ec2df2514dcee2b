#include "display_connection.h"

#include "platform/linux/xcb_handles.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <xcb/xcb.h>

namespace toolkit {

using platform::ownedXcb;

namespace {

/// A container this much larger than what it holds has something else to show.
constexpr int kWidestFrame = 80;

} // namespace

// A connection that fails is an object like any other, on which every request fails.
DisplayConnection::DisplayConnection() : connection_(xcb_connect(nullptr, nullptr)) {}

DisplayConnection::~DisplayConnection() = default;

bool DisplayConnection::hasWindow(std::uint32_t window) const {
    xcb_connection_t* c = connection_.get();
    return ownedXcb(xcb_get_window_attributes_reply(c, xcb_get_window_attributes(c, window), nullptr)) !=
           nullptr;
}

bool DisplayConnection::hasKeyboardExtension() const {
    xcb_connection_t* c = connection_.get();
    constexpr std::string_view name = "XKEYBOARD";
    const auto reply =
        ownedXcb(xcb_query_extension_reply(c, xcb_query_extension(c, name.size(), name.data()), nullptr));
    return reply && reply->present;
}

void DisplayConnection::destroyWindow(std::uint32_t window) const {
    xcb_connection_t* c = connection_.get();
    // Checked, to be sure that the server has done it before anybody goes on.
    std::free(xcb_request_check(c, xcb_destroy_window_checked(c, window)));
}

bool DisplayConnection::setVisible(std::uint32_t window, bool isVisible) const {
    xcb_connection_t* c = connection_.get();
    const auto request = isVisible ? xcb_map_window_checked(c, window) : xcb_unmap_window_checked(c, window);
    return platform::ownedXcb(xcb_request_check(c, request)) == nullptr;
}

DisplayConnection::Size DisplayConnection::sizeOf(std::uint32_t window) const {
    xcb_connection_t* c = connection_.get();
    const auto reply = ownedXcb(xcb_get_geometry_reply(c, xcb_get_geometry(c, window), nullptr));
    return reply ? Size{reply->width, reply->height} : Size{};
}

void DisplayConnection::resize(std::uint32_t window, Size size) const {
    xcb_connection_t* c = connection_.get();
    const std::uint32_t values[] = {static_cast<std::uint32_t>(std::max(size.width, 1)),
                                    static_cast<std::uint32_t>(std::max(size.height, 1))};
    const auto request =
        xcb_configure_window_checked(c, window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, values);
    std::free(xcb_request_check(c, request));
}

std::uint32_t DisplayConnection::containerOf(std::uint32_t window) const {
    xcb_connection_t* c = connection_.get();
    const auto reply = ownedXcb(xcb_query_tree_reply(c, xcb_query_tree(c, window), nullptr));
    return reply && reply->parent != reply->root ? reply->parent : 0;
}

bool DisplayConnection::isManaged(std::uint32_t window) const {
    xcb_connection_t* c = connection_.get();
    constexpr std::string_view name = "WM_STATE";
    const auto atom =
        ownedXcb(xcb_intern_atom_reply(c, xcb_intern_atom(c, 1, name.size(), name.data()), nullptr));
    if (!atom || atom->atom == XCB_ATOM_NONE)
        return false;
    const auto property = ownedXcb(xcb_get_property_reply(
        c, xcb_get_property(c, 0, window, atom->atom, XCB_GET_PROPERTY_TYPE_ANY, 0, 0), nullptr));
    return property && property->type != XCB_ATOM_NONE;
}

void DisplayConnection::resizeWithContainers(std::uint32_t window, int width, int height) const {
    Size extra;
    for (std::uint32_t current = window; current;) {
        const Size before = sizeOf(current);
        const std::uint32_t container = isManaged(current) ? 0 : containerOf(current);
        resize(current, {width + extra.width, height + extra.height});
        const Size around = sizeOf(container);
        extra.width = std::max(extra.width + around.width - before.width, 0);
        extra.height = std::max(extra.height + around.height - before.height, 0);
        if (extra.width > kWidestFrame || extra.height > kWidestFrame)
            return;
        current = container;
    }
}

void DisplayConnection::setSizeHints(std::uint32_t window, int width, int height) const {
    struct SizeHints {                         // as the window managers' convention lays them out
        std::uint32_t flags = 1 << 5 | 1 << 8; // greatest and base size
        std::uint32_t before[6] = {};
        std::int32_t greatestWidth, greatestHeight;
        std::uint32_t between[6] = {};
        std::int32_t baseWidth, baseHeight;
        std::uint32_t gravity = 0;
    };
    static_assert(sizeof(SizeHints) == 18 * 4);
    const SizeHints hints = {
        .greatestWidth = width, .greatestHeight = height, .baseWidth = width, .baseHeight = height};
    xcb_connection_t* c = connection_.get();
    const auto request =
        xcb_change_property_checked(c, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NORMAL_HINTS,
                                    XCB_ATOM_WM_SIZE_HINTS, 32, sizeof hints / 4, &hints);
    // Checked: the host reads them as soon as we return.
    std::free(xcb_request_check(c, request));
}

} // namespace toolkit
