#include "tools/common/effect_library.h"

#include "platform/module_folder.h"
#include "tools/common/tool_error.h"

#include <cstdlib>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace tools {

namespace files = std::filesystem;

namespace {

/// Where the plug-in may be, the best first: beside the tool, in the build that the tool comes from, where it
/// is installed together with the tool for everybody (bin/ and lib/vst/) or for one person (~/.local/bin and
/// ~/.vst), and in that person's home, wherever the tool is.
std::vector<files::path> usualFolders() {
    const files::path own = platform::programFolder();
    const files::path up = own / "..";
    const files::path forOne = files::path(".vst") / QUILLON_INSTALLED_FOLDER;
    std::vector<files::path> folders = {own, up / "stage", up / "lib" / "vst" / QUILLON_INSTALLED_FOLDER,
                                        up / ".." / forOne};
    if (const char* const home = std::getenv("HOME"); home && *home)
        folders.push_back(home / forOne);
    return folders;
}

} // namespace

files::path libraryPath(const files::path& asked) {
    std::error_code error;
    if (!asked.empty()) {
        if (!files::exists(asked, error))
            throw ToolError(asked.string() + ": there is no such library");
        return asked;
    }
    for (const files::path& folder : usualFolders()) {
        const files::path candidate = (folder / QUILLON_LIBRARY_FILE).lexically_normal();
        if (files::exists(candidate, error))
            return candidate;
    }
    throw ToolError("there is no " QUILLON_LIBRARY_FILE " in " + platform::programFolder().string() +
                    ", nor where it is usually installed; name the library with --library");
}

const host::Library& loadForGood(files::path path) {
    // Never destroyed, so that nothing is unloaded at the process's end either.
    static auto& loaded = *new std::map<files::path, std::unique_ptr<host::Library>>;
    auto& [name, library] = *loaded.try_emplace(std::move(path)).first;
    if (!library)
        library = std::make_unique<host::Library>(name.string());
    return *library;
}

} // namespace tools
