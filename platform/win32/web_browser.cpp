// The browser is the program that the registry names for the web's own protocol. Only the quoted path counts
// there; what the registry wants it to be called with is for web addresses.

#include "../own_browser.h"

#include <cstring>
#include <windows.h>

namespace platform {

namespace {

/// Bytes of a command or a path, the NUL behind it included.
constexpr DWORD kTextLimit = 260;

/// The program that a command begins with: what stands between its first two quotes. Empty for a command
/// without quotes, where nobody can say for certain where a path with blanks ends.
std::string quotedProgram(const char* command) {
    const char* const quote = std::strchr(command, '"');
    if (!quote)
        return {};
    return {quote + 1, std::strcspn(quote + 1, "\"")};
}

} // namespace

void openOwnBrowser(const std::string& argument) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_CLASSES_ROOT, "http\\shell\\open\\command", 0, KEY_QUERY_VALUE, &key) !=
        ERROR_SUCCESS)
        return;
    char command[kTextLimit + 1] = {};
    DWORD size = kTextLimit;
    const LSTATUS status =
        RegQueryValueExA(key, nullptr, nullptr, nullptr, reinterpret_cast<BYTE*>(command), &size);
    const std::string program = status == ERROR_SUCCESS ? quotedProgram(command) : std::string();
    if (!program.empty())
        ShellExecuteA(nullptr, "open", program.c_str(), argument.c_str(), "", SW_SHOWNORMAL);
    RegCloseKey(key);
}

} // namespace platform
