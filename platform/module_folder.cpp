#include "platform/module_folder.h"

#include "own_module_folder.h"

#include <utility>

namespace platform {

namespace {

std::string& folder() {
    static std::string found = findModuleFolder();
    return found;
}

} // namespace

const std::string& moduleFolder() {
    return folder();
}

void replaceModuleFolder(std::string newFolder) {
    folder() = newFolder.empty() ? findModuleFolder() : std::move(newFolder);
}

} // namespace platform
