// Which of a folder's entries an earlier process has left there. Only the desk room and its tests see it.
#pragma once

#include <windows.h>

namespace desk {

/// Whether this is a private folder of a process that is over. Never a link, whatever its name: what it leads
/// to is somebody else's.
bool isLeftOver(const WIN32_FIND_DATAW& entry);

} // namespace desk
