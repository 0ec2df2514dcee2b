// What hosts may ask of an instance beside sound: ports, parameters, states, its window.
#pragma once

#include <string_view>

namespace clap_door {

/// The functions of an extension; null for one that there is not. Any thread.
const void* extensionOf(std::string_view id);

} // namespace clap_door
