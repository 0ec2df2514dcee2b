#include "ansi_path.h"

namespace platform {

std::size_t folderLength(std::string_view path, UINT codePage) {
    std::size_t length = 0;
    for (std::size_t i = 0; i < path.size(); ++i) {
        if (IsDBCSLeadByteEx(codePage, static_cast<BYTE>(path[i])))
            ++i;
        else if (path[i] == '\\' || path[i] == '/' || path[i] == ':')
            length = i + 1;
    }
    return length;
}

bool endsInSeparator(std::string_view path, UINT codePage) {
    return !path.empty() && folderLength(path, codePage) == path.size();
}

} // namespace platform
