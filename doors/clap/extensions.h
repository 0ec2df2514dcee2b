// What hosts may ask of an instance beside sound: ports, parameters, states.
#pragma once

#include "doors/clap/clap_delay.h"

#include <clap/plugin.h>

#include <string_view>

namespace clap_door {

/// The functions of an extension; null for one that there is not. Any thread.
const void* extensionOf(std::string_view id);

/// The instance behind a record.
ClapDelay& delayOf(const clap_plugin_t* plugin);
/// The same, for a call that belongs to one kind of thread.
ClapDelay& onMainThread(const clap_plugin_t* plugin);
ClapDelay& onAudioThread(const clap_plugin_t* plugin);

} // namespace clap_door
