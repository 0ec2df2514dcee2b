// The interface turns values into text and not back. To set a parameter to what a person reads in the window,
// the normalised range is searched by asking for displays: a coarse scan first, then halving where the wanted
// number lies between two neighbours.
#pragma once

#include "host/plugin.h"
#include "tools/common/wanted_value.h"

#include <cstdint>

namespace tools {

/// The normalised value that shows what is wanted. A normalised value comes back as it is.
///
/// A number counts as shown if the display comes as near as half of its own last digit. If several values
/// show the same, the one in use now is kept; else an end of the range if it is among them; else the middle
/// one. The parameter is moved about on the way and put back in the end: ask an instance that nobody listens
/// to. Throws ToolError if no value shows it.
float valueShowing(host::Plugin& plugin, std::int32_t id, const WantedValue& wanted);

} // namespace tools
