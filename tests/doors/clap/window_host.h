// A CLAP host with a window: an instance of a module, its window in one of the host's, and timers that are
// served whenever a test serves the window.
#pragma once

#include "clap_module.h"

#include <string>

#include <gtest/gtest.h>

// Xlib defines words that the headers above use, so it comes last.
#include "support/shown_editor.h"

#include "hosted_window.h"

namespace clap_test {

/// One instance and its window.
class WindowHost final : public test::HostedWindow {
  public:
    /// Makes the instance and a container at (`x`, `y`) of the screen; no window is made yet.
    WindowHost(test::VirtualScreen& screen, const Module& module, unsigned offers = Host::kEverything,
               int x = 40, int y = 30)
        : HostedWindow(screen, x, y), host(offers), instance(module.entry(), host) {}
    /// Ends the instance, window and all.
    ~WindowHost() override { instance.end(); }

    const clap_plugin_gui_t& window() const { return instance.window(); }
    const clap_plugin_t* plugin() const { return instance.plugin(); }

    // The calls of a host that has a window for it.
    bool create() { return window().create(plugin(), CLAP_WINDOW_API_X11, false); }
    bool setParent() { return setParent(container()); }
    bool setParent(Window parent) {
        clap_window_t hosts = {};
        hosts.api = CLAP_WINDOW_API_X11;
        hosts.x11 = parent;
        return window().set_parent(plugin(), &hosts);
    }
    bool show() { return window().show(plugin()); }
    bool hide() { return window().hide(plugin()); }
    void destroy() { window().destroy(plugin()); }
    Host::Size size() const {
        Host::Size size = {};
        return window().get_size(plugin(), &size.width, &size.height) ? size : Host::Size{0, 0};
    }
    /// All that leads to a window on the screen, in the usual order.
    bool open() { return create() && size().width > 0 && setParent() && show(); }

    void serve() override {
        if (plugin())
            instance.serveTimers();
    }
    /// Lets a number of rounds pass, and what they draw.
    void settle() {
        int rounds = 0;
        serveUntil([&] { return ++rounds == 20; });
    }

    /// What the host is told in a block or, without `isBlock`, in a flush.
    ToldEvents fetch(bool isBlock = false) {
        ToldEvents told;
        Events none;
        if (!isBlock) {
            instance.flush(none, &told);
            return told;
        }
        float left[64] = {}, right[64] = {};
        float* const channels[] = {left, right};
        instance.process(channels, channels, 64, &none, &told);
        return told;
    }

    Host host;
    Instance instance;
};

} // namespace clap_test
