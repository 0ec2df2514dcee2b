#include "tools/window/skin_folder.h"

#include "platform/folders.h"
#include "tools/common/command_line.h"
#include "tools/common/text.h"
#include "tools/common/tool_error.h"

#include <algorithm>

namespace tools::window {

namespace files = std::filesystem;

namespace {

/// A path as it is, without the slash that may stand at its end.
files::path asFolder(const std::string& text) {
    const files::path path = settled(text);
    return path.has_filename() ? path : path.parent_path();
}

std::string namesOfSkinsIn(const files::path& folder) {
    std::vector<std::string> names = platform::listFolder(folder.string());
    std::erase_if(names, [&](const std::string& name) { return !findSkinFile(folder / name); });
    std::sort(names.begin(), names.end());
    std::string list;
    for (const std::string& name : names)
        list += (list.empty() ? "" : ", ") + printable(name);
    return list;
}

} // namespace

std::optional<files::path> findSkinFile(const files::path& folder) {
    const auto file = platform::findPath(folder.string(), "skin.xml");
    return file ? std::optional<files::path>(*file) : std::nullopt;
}

files::path skinFile(const files::path& folder) {
    if (const auto file = findSkinFile(folder))
        return *file;
    std::error_code error;
    throw ToolError(folder.string() + (files::is_directory(folder, error) ? " holds no skin.xml"
                                                                          : ": there is no such folder"));
}

files::path skinFolderFor(const std::string& nameOrFolder, const files::path& library) {
    const bool isPath =
        nameOrFolder.find('/') != std::string::npos || nameOrFolder == "." || nameOrFolder == "..";
    if (!isPath) {
        const files::path home = library.parent_path();
        const auto file = platform::findPath(home.string(), nameOrFolder + "/skin.xml");
        if (file)
            return files::path(*file).parent_path();
        if (!findSkinFile(asFolder(nameOrFolder))) {
            const std::string names = namesOfSkinsIn(home);
            throw ToolError("there is no skin " + inQuotes(nameOrFolder) +
                            ", neither beside the library nor here; " +
                            (names.empty() ? "name a folder that holds a skin.xml" : "there are " + names));
        }
    }
    const files::path folder = asFolder(nameOrFolder);
    skinFile(folder);
    return folder;
}

} // namespace tools::window
