#include "tools/common/effect_library.h"

#include "platform/module_folder.h"
#include "tools/common/tool_error.h"

#include <map>
#include <memory>
#include <utility>

namespace tools {

namespace files = std::filesystem;

files::path libraryPath(const files::path& asked) {
    std::error_code error;
    if (!asked.empty()) {
        if (!files::exists(asked, error))
            throw ToolError(asked.string() + ": there is no such library");
        return asked;
    }
    const files::path own = platform::programFolder();
    for (const files::path& folder : {own, own / ".." / "stage"}) {
        const files::path candidate = (folder / QUILLON_LIBRARY_FILE).lexically_normal();
        if (files::exists(candidate, error))
            return candidate;
    }
    throw ToolError(std::string("there is no " QUILLON_LIBRARY_FILE " in ") + own.string() +
                    "; name the library with --library");
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
