// The record of functions that a host holds of an instance. Each function finds the instance, checks in
// builds with assertions that the host calls it on the thread that it belongs to, and passes the call on.
#pragma once

#include "doors/clap/clap_delay.h"
#include "doors/clap/clap_window.h"

#include <clap/plugin.h>

#include <memory>

namespace clap_door {

/// What every instance says of itself.
extern const clap_plugin_descriptor_t kDescriptor;

/// A new instance for `host`, as a host gets it: its record, with whose destroy() it goes. Throws
/// std::bad_alloc.
const clap_plugin_t* makePlugin(const clap_host_t& host);

/// The instance behind a record.
ClapDelay& delayOf(const clap_plugin_t* plugin);
/// The same, for a call that belongs to one kind of thread.
ClapDelay& onMainThread(const clap_plugin_t* plugin);
ClapDelay& onAudioThread(const clap_plugin_t* plugin);
/// The window of an instance, for a call on the main thread. While it is held the instance is, also where the
/// host ends it.
std::shared_ptr<ClapWindow> heldWindow(const clap_plugin_t* plugin);

} // namespace clap_door
