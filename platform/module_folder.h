// Where the library that holds this code lies on disk. Everything delivered beside the plug-in (factory bank,
// controller map, skins, help) is found from here.
#pragma once

#include <string>

namespace platform {

/// The folder of the module, absolute and ending in a separator; empty if the system would not say. Found
/// once, when the library is loaded, so that a host that changes its current directory later changes nothing.
/// Any thread but the audio thread.
const std::string& moduleFolder();

} // namespace platform
