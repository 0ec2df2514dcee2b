// Reading and writing whole small files. Never on the audio thread.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace platform {

/// Whether something of this name exists, readable or not. A relative path counts from the current directory.
bool fileExists(const std::string& path);

/// Who else may have a file open while it is read. A system that keeps nobody out takes no notice.
enum class Sharing { everybody, nobody };

/// The content of a file; nothing if it cannot be opened. A file that cannot be read to its end gives what
/// was read. `limit` bytes at most.
std::optional<std::vector<unsigned char>> readWholeFile(const std::string& path,
                                                        std::size_t limit = static_cast<std::size_t>(-1),
                                                        Sharing sharing = Sharing::everybody);

/// Makes the file hold exactly these bytes, whatever it held before. False if that failed; then the file is
/// as it was, and where there was none there is none. A new file takes the old one's place in one step. Where
/// the folder does not allow that, and for a file with several names, the bytes go into the file itself.
bool writeWholeFile(const std::string& path, const void* data, std::size_t size);

/// Gives the file `draft` the name `target`, over an older file in one step if there is one. Where the system
/// can, that one's rights and attributes stay. On failure nothing has changed.
std::error_code giveName(const std::filesystem::path& draft, const std::filesystem::path& target);

} // namespace platform
