// What hosts may ask of an instance's window: the functions of the extensions for windows and timers.
#pragma once

#include <clap/ext/gui.h>
#include <clap/ext/timer-support.h>

namespace clap_door {

extern const clap_plugin_gui_t kWindowFunctions;
extern const clap_plugin_timer_support_t kTimerFunctions;

} // namespace clap_door
