// A plug-in's editor in a window of its own, as a host shows it: sized as the editor asks, called idle
// regularly, closed in order.
//
//     host::EditorWindow window("Quillon Multitap Delay");
//     window.open(plugin);
//     while (!window.isClosed())
//         window.serve(20);
//
// All on one thread, the window thread of the plug-in.
#pragma once

#include "desk/host_window.h"
#include "host/plugin.h"

#include <optional>
#include <string>

namespace host {

/// In pixels.
struct EditorSize {
    int width = 0;
    int height = 0;
};

/// What effEditGetRect says; nothing if the plug-in has no editor or gives it no size.
std::optional<EditorSize> editorSize(Plugin& plugin);

class EditorWindow {
  public:
    /// Makes the window, hidden until an editor is in it. Throws HostError without a display.
    explicit EditorWindow(const std::string& title);
    /// Closes the editor.
    ~EditorWindow();
    EditorWindow(const EditorWindow&) = delete;
    EditorWindow& operator=(const EditorWindow&) = delete;

    /// Opens the editor of `plugin`, which must live until close(), in place of one that is open. Shows the
    /// window, also where the editor fails. Throws HostError if there is no editor or it does not open.
    void open(Plugin& plugin);
    /// Closes the editor. The window stays.
    void close();
    bool isOpen() const { return plugin_ != nullptr; }

    /// Calls the editor's idle, then waits for the window up to `milliseconds`. Below 50 ms the editor feels
    /// responsive.
    void serve(int milliseconds);
    /// Whether the person has closed the window.
    bool isClosed() const { return window_.isClosed(); }

    /// What is on the screen now; nothing if that cannot be read.
    std::optional<desk::Picture> picture() const { return window_.picture(); }
    /// The picture once it stops changing: after several idle calls without a change. Gives the last one if
    /// it goes on changing for `patienceMilliseconds`, and nothing if none can be read or the person closes
    /// the window.
    std::optional<desk::Picture> settledPicture(int patienceMilliseconds);

  private:
    void answerSizeRequests();
    void fitTo(Plugin& plugin);

    desk::HostWindow window_;
    Plugin* plugin_ = nullptr; ///< of the editor that is open
    decltype(HostBehaviour::answer) answerBefore_;
};

} // namespace host
