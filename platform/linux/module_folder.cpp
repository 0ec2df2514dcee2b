#include "platform/module_folder.h"
#include "../own_module_folder.h"

#include <cstdlib>
#include <dlfcn.h>
#include <link.h>
#include <string>
#include <system_error>

namespace platform {

std::string findModuleFolder() {
    Dl_info info = {};
    link_map* module = nullptr;
    if (!dladdr1(reinterpret_cast<void*>(&findModuleFolder), &info, reinterpret_cast<void**>(&module),
                 RTLD_DL_LINKMAP))
        return {};
    // The program itself has no name in the loader's list: what stands for it there is whatever the shell
    // typed.
    const bool isProgram = !module || !module->l_name || !*module->l_name;
    char* path = realpath(isProgram ? "/proc/self/exe" : module->l_name, nullptr);
    if (!path)
        return {};
    std::string folder = path;
    std::free(path);
    folder.erase(folder.rfind('/') + 1);
    return folder;
}

std::filesystem::path programPath() {
    std::error_code error;
    const std::filesystem::path link = "/proc/self/exe";
    const std::filesystem::path named = std::filesystem::read_symlink(link, error);
    // A program that has been replaced since can still be started by the link.
    return !error && std::filesystem::equivalent(named, link, error) ? named : link;
}

std::filesystem::path programFolder() {
    return moduleFolder();
}

namespace {

/// The loader may know the library by a relative name only, which means something just now, while it is
/// loaded.
[[maybe_unused]] const std::string& foundAtLoad = moduleFolder();

} // namespace

} // namespace platform
