// Paths in the code page of the system. In some of them (932, 936, 950) the second byte of a letter may be
// that of a backslash, so a path is walked letter by letter. Only the platform room and its tests see it.
#pragma once

#include <string_view>
#include <windows.h>

namespace platform {

/// How many bytes of `path` stand before the last name in it: the folder, and the slash or the colon of a
/// drive behind it. 0 for a bare name.
std::size_t folderLength(std::string_view path, UINT codePage = CP_ACP);

/// Whether a name may be put right behind this path.
bool endsInSeparator(std::string_view path, UINT codePage = CP_ACP);

} // namespace platform
