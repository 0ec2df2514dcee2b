// What the editor's window costs: its idle calls while every parameter moves, beside those at rest.
#pragma once

#include "bench/result.h"

#include <string>

namespace bench {

inline constexpr char kWindowSituation[] = "two idle calls of the window after all parameters have changed";

/// Opens the editor of the library of this path on the display of this process and times it there, by the
/// wall's clock: what a host waits for counts, and the display's work is a part of it. Throws
/// std::runtime_error if it does not open.
Result timeWindow(const std::string& library);

} // namespace bench
