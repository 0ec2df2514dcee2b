#include "tools/render/sound_files.h"

#include "tools/common/command_line.h"
#include "tools/common/text.h"
#include "tools/common/tool_error.h"
#include "tools/render/glob.h"

#include <algorithm>
#include <set>
#include <span>
#include <string_view>

namespace tools::render {

namespace {

namespace files = std::filesystem;

constexpr std::string_view kSoundEndings[] = {".wav", ".wave", ".bwf",  ".rf64", ".w64", ".flac",
                                              ".aif", ".aiff", ".aifc", ".ogg",  ".oga", ".opus",
                                              ".mp3", ".caf",  ".au",   ".snd"};

bool isSoundFile(const files::directory_entry& entry) {
    const std::string ending = lowered(entry.path().extension().string());
    return std::ranges::find(kSoundEndings, ending) != std::end(kSoundEndings) && entry.is_regular_file();
}

bool isHidden(const files::path& name) {
    return name.native().starts_with('.');
}

/// The entries of a folder, by name.
std::vector<files::directory_entry> entriesOf(const files::path& folder) {
    std::vector<files::directory_entry> entries(files::directory_iterator(folder), {});
    std::ranges::sort(entries, {}, [](const auto& entry) { return entry.path(); });
    return entries;
}

class Search {
  public:
    explicit Search(const files::path& outputFolder) : outputFolder_(outputFolder) {}

    void add(const std::string& word) {
        if (word == "-")
            throw ToolError(
                "\"-\", standard input, is one sound without a name; give files, folders or patterns");
        const files::path path = settled(word);
        hasSeenSound_ = false;
        if (files::is_directory(path)) {
            checkPlace(path);
            walk(path, path);
            if (!hasSeenSound_)
                throw ToolError(path.string() + " holds no sound files");
        } else if (files::exists(path)) {
            checkPlace(path);
            take(path, path.filename());
        } else if (isPattern(word)) {
            expand(path);
            if (!hasSeenSound_)
                throw ToolError(inQuotes(word) + " matches no sound file");
        } else {
            throw ToolError(path.string() + ": there is no such file or folder");
        }
    }

    std::vector<SoundFile> takeAll() { return std::move(found_); }

  private:
    bool isOutputFolder(const files::path& path) const {
        std::error_code error;
        return path == outputFolder_ || files::equivalent(path, outputFolder_, error);
    }

    void checkPlace(const files::path& path) const {
        for (files::path folder = path;; folder = folder.parent_path()) {
            if (isOutputFolder(folder))
                throw ToolError(path.string() + (folder == path ? " is" : " lies in") +
                                " the output folder; choose another folder for the output");
            if (folder == folder.parent_path())
                break;
        }
    }

    void take(const files::path& file, const files::path& place) {
        hasSeenSound_ = true;
        if (seen_.insert(file).second)
            found_.push_back({file, place});
    }

    /// Sound files anywhere in the folder. Links to folders are not followed, so that there is an end.
    void walk(const files::path& folder, const files::path& root) {
        if (isOutputFolder(folder))
            return;
        for (const files::directory_entry& entry : entriesOf(folder)) {
            if (isHidden(entry.path().filename()))
                continue;
            if (entry.is_directory() && !entry.is_symlink())
                walk(entry.path(), root);
            else if (isSoundFile(entry))
                take(entry.path(), entry.path().lexically_relative(root));
        }
    }

    void expand(const files::path& pattern) {
        std::vector<std::string> parts;
        for (const files::path& part : pattern.relative_path())
            if (!part.empty())
                parts.push_back(part.string());
        files::path folder = pattern.root_path();
        std::span<const std::string> rest = parts;
        while (rest.size() > 1 && (!isPattern(rest[0]) || files::exists(folder / pathFromWord(rest[0])))) {
            folder /= pathFromWord(rest[0]);
            rest = rest.subspan(1);
        }
        match(folder, rest, folder);
    }

    void match(const files::path& folder, std::span<const std::string> parts, const files::path& root) {
        if (!files::is_directory(folder) || isOutputFolder(folder))
            return;
        const std::string& part = parts[0];
        const bool isLast = parts.size() == 1;
        if (part == "**" && !isLast) {
            match(folder, parts.subspan(1), root);
            for (const files::directory_entry& entry : entriesOf(folder))
                if (entry.is_directory() && !entry.is_symlink() && !isHidden(entry.path().filename()))
                    match(entry.path(), parts, root);
            return;
        }
        for (const files::directory_entry& entry : entriesOf(folder)) {
            const files::path name = entry.path().filename();
            if ((isHidden(name) && part[0] != '.') || !matchesPattern(name.string(), part))
                continue;
            if (!isLast)
                match(entry.path(), parts.subspan(1), root);
            else if (entry.is_directory())
                walk(entry.path(), root);
            else if (isSoundFile(entry))
                take(entry.path(), entry.path().lexically_relative(root));
        }
    }

    files::path outputFolder_;
    std::vector<SoundFile> found_;
    std::set<files::path> seen_;
    bool hasSeenSound_ = false;
};

} // namespace

std::vector<SoundFile> findSoundFiles(const std::vector<std::string>& words,
                                      const files::path& outputFolder) {
    try {
        Search search(outputFolder);
        for (const std::string& word : words)
            search.add(word);
        return search.takeAll();
    } catch (const files::filesystem_error& error) {
        throw ToolError(error.path1().string() + " cannot be read: " + error.code().message());
    }
}

} // namespace tools::render
