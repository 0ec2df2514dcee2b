#include "doors/clap/window_functions.h"

#include "doors/clap/plugin_record.h"
#include "toolkit/toolkit_window.h"

#include <string_view>

namespace clap_door {

namespace {

/// Whose windows hosts are to offer.
const char* windowApi() {
    return toolkit::windowSystem() == toolkit::WindowSystem::win32 ? CLAP_WINDOW_API_WIN32
                                                                   : CLAP_WINDOW_API_X11;
}

bool isWindowApi(const char* api) {
    return api && std::string_view(api) == windowApi();
}

/// The result of `call` with the window, which is held meanwhile, as a host may end the instance in the
/// middle of it. False if it throws, as when memory runs out.
template <class Call>
bool withWindow(const clap_plugin_t* plugin, const Call& call) noexcept try {
    return call(*heldWindow(plugin));
} catch (...) {
    return false;
}

bool isApiSupported(const clap_plugin_t* plugin, const char* api, bool isFloating) noexcept {
    onMainThread(plugin);
    return !isFloating && isWindowApi(api);
}

bool getPreferredApi(const clap_plugin_t* plugin, const char** api, bool* isFloating) noexcept {
    onMainThread(plugin);
    if (!api || !isFloating)
        return false;
    *api = windowApi();
    *isFloating = false;
    return true;
}

bool create(const clap_plugin_t* plugin, const char* api, bool isFloating) noexcept {
    return isApiSupported(plugin, api, isFloating) &&
           withWindow(plugin, [](ClapWindow& window) { return window.create(); });
}

void destroy(const clap_plugin_t* plugin) noexcept {
    withWindow(plugin, [](ClapWindow& window) {
        window.destroy();
        return true;
    });
}

/// A skin has the size of its pictures.
bool setScale(const clap_plugin_t* plugin, double) noexcept {
    onMainThread(plugin);
    return false;
}

/// False if the window has not been created.
bool sizeOf(const clap_plugin_t* plugin, std::uint32_t& width, std::uint32_t& height) noexcept {
    return withWindow(plugin, [&](const ClapWindow& window) {
        if (!window.isCreated())
            return false;
        const editor::WindowSize size = window.size();
        width = static_cast<std::uint32_t>(size.width);
        height = static_cast<std::uint32_t>(size.height);
        return true;
    });
}

bool getSize(const clap_plugin_t* plugin, std::uint32_t* width, std::uint32_t* height) noexcept {
    return width && height && sizeOf(plugin, *width, *height);
}

bool canResize(const clap_plugin_t* plugin) noexcept {
    onMainThread(plugin);
    return false;
}

bool getResizeHints(const clap_plugin_t* plugin, clap_gui_resize_hints_t*) noexcept {
    onMainThread(plugin);
    return false;
}

/// There is only one size.
bool adjustSize(const clap_plugin_t* plugin, std::uint32_t* width, std::uint32_t* height) noexcept {
    return getSize(plugin, width, height);
}

/// True for the size that the window has.
bool setSize(const clap_plugin_t* plugin, std::uint32_t width, std::uint32_t height) noexcept {
    std::uint32_t ownWidth = 0, ownHeight = 0;
    return sizeOf(plugin, ownWidth, ownHeight) && width == ownWidth && height == ownHeight;
}

bool setParent(const clap_plugin_t* plugin, const clap_window_t* parent) noexcept {
    return parent && isWindowApi(parent->api) && parent->ptr &&
           withWindow(plugin, [&](ClapWindow& window) { return window.setParent(parent->ptr); });
}

/// For windows of their own on the screen, which there are none of.
bool setTransient(const clap_plugin_t* plugin, const clap_window_t*) noexcept {
    onMainThread(plugin);
    return false;
}
void suggestTitle(const clap_plugin_t* plugin, const char*) noexcept {
    onMainThread(plugin);
}

bool show(const clap_plugin_t* plugin) noexcept {
    return withWindow(plugin, [](ClapWindow& window) { return window.setVisible(true); });
}

bool hide(const clap_plugin_t* plugin) noexcept {
    return withWindow(plugin, [](ClapWindow& window) { return window.setVisible(false); });
}

void onTimer(const clap_plugin_t* plugin, clap_id timer) noexcept {
    withWindow(plugin, [&](ClapWindow& window) {
        window.onTimer(timer);
        return true;
    });
}

} // namespace

const clap_plugin_gui_t kWindowFunctions = {
    isApiSupported, getPreferredApi, create,         destroy,    setScale,
    getSize,        canResize,       getResizeHints, adjustSize, setSize,
    setParent,      setTransient,    suggestTitle,   show,       hide};

const clap_plugin_timer_support_t kTimerFunctions = {onTimer};

} // namespace clap_door
