#include "tools/skin_check/skin_folder.h"

#include "platform/files.h"
#include "platform/folders.h"
#include "platform/path_text.h"
#include "tools/common/command_line.h"
#include "tools/common/text.h"
#include "tools/common/tool_error.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace tools::window {

namespace files = std::filesystem;

namespace {

/// A path as it is, without the slash that may stand at its end.
files::path asFolder(const std::string& text) {
    const files::path path = settled(text);
    return path.has_filename() ? path : path.parent_path();
}

std::string namesOfSkinsIn(const files::path& folder) {
    std::vector<std::string> names;
    std::error_code error;
    for (files::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
        if (findSkinFile(entry->path()))
            names.push_back(entry->path().filename().string());
    std::sort(names.begin(), names.end());
    std::string list;
    for (const std::string& name : names)
        list += (list.empty() ? "" : ", ") + printable(name);
    return list;
}

/// In any letters that the system knows; where it tells small letters from capitals, in any letter case too.
std::optional<files::path> findIn(const files::path& folder, const std::string& name) {
    files::path exact = folder / pathFromWord(name);
    std::error_code error;
    if (files::exists(exact, error))
        return exact;
    const auto text = platform::textOfPath(folder);
    const auto found = text ? platform::findPath(*text, name) : std::nullopt;
    return found ? std::optional(platform::pathFromText(*found)) : std::nullopt;
}

} // namespace

std::optional<files::path> findSkinFile(const files::path& folder) {
    return findIn(folder, "skin.xml");
}

std::string skinText(const files::path& file) {
    const auto text = platform::textOfPath(file);
    if (!text) {
        std::ifstream stream(file, std::ios::binary);
        if (stream)
            return {std::istreambuf_iterator<char>(stream), {}};
    } else if (const auto bytes = platform::readWholeFile(*text)) {
        return {bytes->begin(), bytes->end()};
    }
    throw ToolError(file.string() + " cannot be read");
}

files::path skinFile(const files::path& folder) {
    if (const auto file = findSkinFile(folder))
        return *file;
    std::error_code error;
    throw ToolError(folder.string() + (files::is_directory(folder, error) ? " holds no skin.xml"
                                                                          : ": there is no such folder"));
}

files::path skinFolderFor(const std::string& nameOrFolder, const files::path& library) {
    const bool isPath = nameOrFolder.find('/') != std::string::npos || nameOrFolder == "." ||
                        nameOrFolder == ".." || pathFromWord(nameOrFolder).is_absolute();
    if (!isPath) {
        const files::path home = library.parent_path();
        if (const auto file = findIn(home, nameOrFolder + "/skin.xml"))
            return file->parent_path();
        if (!findSkinFile(asFolder(nameOrFolder))) {
            const std::string names = namesOfSkinsIn(home);
            throw ToolError(
                "there is no skin " + inQuotes(nameOrFolder) + ", neither beside the library nor here; " +
                (names.empty() ? "give a folder that contains a skin.xml" : "there are " + names));
        }
    }
    const files::path folder = asFolder(nameOrFolder);
    skinFile(folder);
    return folder;
}

} // namespace tools::window
