// Which module of the process this code lies in. For platform/, toolkit/ and desk/.
#pragma once

#include <windows.h>

namespace platform {

/// The library that holds this code, as the loader gave it to DllMain; the program itself where this code is
/// part of no library.
HMODULE moduleHandle();

} // namespace platform
