// The host as an instance knows it: what it offers, and what may be asked of it.
#pragma once

#include <clap/ext/gui.h>
#include <clap/ext/params.h>
#include <clap/ext/thread-check.h>
#include <clap/ext/timer-support.h>
#include <clap/host.h>

#include <cstdint>
#include <optional>

namespace clap_door {

/// The extension "clap.log" as it is published, which the headers that this is built with do not have yet.
struct LogExtension {
    void(CLAP_ABI* log)(const clap_host_t* host, std::int32_t severity, const char* message);
};

class Host {
  public:
    /// `host` outlives the instance, or leave() is called; it may offer nothing.
    explicit Host(const clap_host_t& host) : host_(&host) {}

    /// Asks what the host offers. Not before the host lets an instance call it.
    void findExtensions();
    /// The host has ended the instance, and is neither asked nor told anything from now on.
    void leave();

    /// Writes "subject: text" to the host's log or, where it has none, to standard error. Any thread but the
    /// audio thread.
    void warn(const char* subject, const char* text) const;
    /// Has the host read all values and the programs' names again, if it can. The main thread.
    void rescanValues() const;
    bool rescansValues() const;
    /// Has the host fetch changes soon, also while it does not play. Any thread but the audio thread.
    void requestFlush() const;
    /// Has the host call on its main thread soon; some never do. Any thread.
    void requestCallback() const;

    /// Starts a timer and gives its id; nothing if the host has none. The main thread.
    std::optional<clap_id> startTimer(std::uint32_t milliseconds) const;
    void stopTimer(clap_id timer) const;

    bool resizesWindows() const { return gui_ && gui_->request_resize; }
    /// In pixels. False if the host refuses.
    bool requestResize(std::uint32_t width, std::uint32_t height) const;

    /// True if the host does not tell its threads apart.
    bool isMainThread() const;
    bool isAudioThread() const;

  private:
    template <class Extension>
    const Extension* extension(const char* id) const;

    const clap_host_t* host_; ///< null once it has ended the instance
    const LogExtension* log_ = nullptr;
    const clap_host_params_t* params_ = nullptr;
    const clap_host_thread_check_t* threads_ = nullptr;
    const clap_host_gui_t* gui_ = nullptr;
    const clap_host_timer_support_t* timers_ = nullptr;
};

} // namespace clap_door
