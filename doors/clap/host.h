// The host as an instance knows it: what it offers, and what may be asked of it.
#pragma once

#include <clap/ext/params.h>
#include <clap/ext/thread-check.h>
#include <clap/host.h>

#include <cstdint>

namespace clap_door {

/// The extension "clap.log" as it is published, which the headers that this is built with do not have yet.
struct LogExtension {
    void(CLAP_ABI* log)(const clap_host_t* host, std::int32_t severity, const char* message);
};

class Host {
  public:
    /// `host` outlives the instance; it may offer nothing.
    explicit Host(const clap_host_t& host) : host_(host) {}

    /// Asks what the host offers. Not before the host lets an instance call it.
    void findExtensions();

    /// Writes "subject: text" to the host's log or, where it has none, to standard error. Any thread but the
    /// audio thread.
    void warn(const char* subject, const char* text) const;
    /// Has the host read all values and the programs' names again. The main thread.
    void rescanValues() const;

    /// True if the host does not tell its threads apart.
    bool isMainThread() const;
    bool isAudioThread() const;

  private:
    template <class Extension>
    const Extension* extension(const char* id) const;

    const clap_host_t& host_;
    const LogExtension* log_ = nullptr;
    const clap_host_params_t* params_ = nullptr;
    const clap_host_thread_check_t* threads_ = nullptr;
};

} // namespace clap_door
