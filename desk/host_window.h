// A plain window of a host's own, in which a plug-in opens its editor: with a title, of the size that the
// editor asks for, and with nothing in it but that. What is to be seen in it can be read back as a picture.
#pragma once

#include "desk/picture.h"

#include <memory>
#include <optional>
#include <string>

namespace desk {

/// On one thread. When the display goes away the window counts as closed, and nothing worse happens.
class HostWindow {
  public:
    /// Makes the window, in pixels, not to be seen yet. Throws std::runtime_error with one line for a person
    /// if there is no display to make it on.
    HostWindow(const std::string& title, int width, int height);
    ~HostWindow();
    HostWindow(const HostWindow&) = delete;
    HostWindow& operator=(const HostWindow&) = delete;

    /// What a plug-in takes as the parent of its editor.
    void* handle() const;
    /// Returns when it is on the screen, or when a window manager has let it wait for too long.
    void show();
    /// Returns when the display has done so, as far as the window manager allows.
    void resize(int width, int height);
    int width() const;
    int height() const;

    /// Waits until something happens to the window, `milliseconds` at the most, and takes note of all that
    /// has.
    void serve(int milliseconds);
    /// Whether the person has asked for the window to be closed, since it was made.
    bool isClosed() const;

    /// All that is to be seen in the window, the windows of plug-ins in it included. Nothing unless the
    /// window is shown and wholly on the screen; on Windows nothing either if all of it is black, as an
    /// editor is whose drawing does not get to the screen. What covers it is seen too.
    std::optional<Picture> picture() const;

  private:
    class System;
    std::unique_ptr<System> system_;
};

} // namespace desk
