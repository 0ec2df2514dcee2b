// The ways for a process to end without its destructors: a signal, a crash, exit() in the middle of a
// library's call. A tool says then in one line what happened, and takes its unfinished files away.
#pragma once

#include <cstddef>
#include <filesystem>

namespace desk {

/// Writes which call of which library this thread is in, "LIBRARY in CALL", as text of at most `size` bytes
/// with its NUL. False outside of calls; then the text is the library's name alone, or empty if none is
/// loaded. Runs in the middle of a crash: no allocation, no lock.
using CallDescription = bool (*)(char* text, std::size_t size);

/// While the object of a tool's main() lives, the process does not end unnoticed. What a request to end
/// (hang-up, interrupt, quit, terminate; on Windows Control-C, Break, the closed console) that was ignored
/// from the start on, as under nohup, stays ignored. The status is that of the signal or exception, or 2 for
/// exit(). _exit() and an end by force cannot be noticed. One object per process.
class AbruptEndWatch {
  public:
    /// `tool`, a literal, begins the line on standard error.
    AbruptEndWatch(const char* tool, CallDescription describeCall);
    ~AbruptEndWatch();
    AbruptEndWatch(const AbruptEndWatch&) = delete;
    AbruptEndWatch& operator=(const AbruptEndWatch&) = delete;
};

/// From here on a request to end is only noted, for isEndRequested(). A second one, or a process that does
/// not come to its end within ten seconds, ends it abruptly.
void noteEndRequests();

/// Whether one has come. Any thread.
bool isEndRequested();

/// A file, or a folder with all that is in it, that an abrupt end takes away while this object lives. There
/// is room for eight at a time; further ones are not taken away.
class UnfinishedPath {
  public:
    enum class Kind : int { none, file, folder };
    UnfinishedPath(const std::filesystem::path& path, Kind kind);
    ~UnfinishedPath();
    UnfinishedPath(const UnfinishedPath&) = delete;
    UnfinishedPath& operator=(const UnfinishedPath&) = delete;

  private:
    std::size_t place_;
};

/// Makes an empty file. False, with the reason in errno, if that fails or there is one of this name.
bool makeNewFile(const std::filesystem::path& path);

} // namespace desk
