// Which files the words of a command line mean, where many are to be rendered: files, folders and patterns.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tools::render {

struct SoundFile {
    std::filesystem::path file;  ///< absolute
    std::filesystem::path place; ///< under the output folder, with the file's own name
};

/// The files in the order of the words, each once. A folder stands for all sound files in it, sub-folders
/// included, which are kept in the place; a pattern for the sound files that match, with the sub-folders that
/// it names. Hidden files and what lies in `outputFolder` are left out there. Throws ToolError naming the
/// word that means nothing, or that names something in the output folder.
std::vector<SoundFile> findSoundFiles(const std::vector<std::string>& words,
                                      const std::filesystem::path& outputFolder);

} // namespace tools::render
