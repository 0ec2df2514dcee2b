#include "platform/folders.h"

#include "base/ascii.h"
#include "platform/files.h"

#include <algorithm>
#include <dirent.h>
#include <memory>

namespace platform {

namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

std::string joined(const std::string& folder, const std::string& name) {
    return folder.empty() || folder.ends_with('/') ? folder + name : folder + "/" + name;
}

/// A path is taken apart at both slashes; empty pieces mean nothing.
std::vector<std::string> pieces(const std::string& name) {
    std::vector<std::string> parts;
    std::string part;
    for (char c : name + "/") {
        if (c != '/' && c != '\\') {
            part += c;
        } else if (!part.empty()) {
            parts.push_back(part);
            part.clear();
        }
    }
    return parts;
}

/// The things in the folder that the name may mean, best first.
std::vector<std::string> candidates(const std::string& folder, const std::string& name) {
    std::vector<std::string> found;
    for (const std::string& entry : listFolder(folder))
        if (entry != name && base::equalIgnoringCase(entry, name))
            found.push_back(entry);
    std::sort(found.begin(), found.end());
    if (fileExists(joined(folder, name)))
        found.insert(found.begin(), name);
    return found;
}

using Part = std::vector<std::string>::const_iterator;

/// Tries each candidate for the first part with all that follows, so that of two look-alike folders the one
/// that holds the file is found.
std::optional<std::string> find(const std::string& folder, Part part, Part end) {
    if (part == end)
        return folder;
    for (const std::string& candidate : candidates(folder, *part))
        if (auto path = find(joined(folder, candidate), part + 1, end))
            return path;
    return std::nullopt;
}

} // namespace

const char kFolderSeparator = '/';

std::vector<std::string> listFolder(const std::string& folder) {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, CloseFolder> stream(opendir(folder.empty() ? "." : folder.c_str()));
    if (!stream)
        return names;
    while (const dirent* entry = readdir(stream.get())) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..")
            names.push_back(name);
    }
    return names;
}

std::optional<std::string> findPath(const std::string& folder, const std::string& name) {
    const std::vector<std::string> parts = pieces(name);
    if (parts.empty())
        return std::nullopt;
    // Here, a backslash may also be a letter of a file's name.
    if (fileExists(joined(folder, name)))
        return joined(folder, name);
    return find(folder, parts.begin(), parts.end());
}

} // namespace platform
