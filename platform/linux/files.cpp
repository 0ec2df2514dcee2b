#include "platform/files.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <span>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {
namespace {

/// An open file, closed with its scope.
class Descriptor {
  public:
    Descriptor(const std::string& path, int flags) : number_(open(path.c_str(), flags | O_CLOEXEC, 0666)) {}
    ~Descriptor() {
        if (number_ >= 0)
            ::close(number_);
    }
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&&) = delete;
    explicit operator bool() const { return number_ >= 0; }
    int number() const { return number_; }
    /// False if the system could not keep what was written.
    bool close() { return ::close(std::exchange(number_, -1)) == 0; }

  private:
    int number_;
};

using Bytes = std::span<const unsigned char>;

/// All zeros, which is no kind of file, if the system does not tell.
struct stat statusOf(const Descriptor& file) {
    struct stat status = {};
    if (!file || fstat(file.number(), &status) != 0)
        status = {};
    return status;
}

bool isRegularFile(const Descriptor& file) {
    return S_ISREG(statusOf(file).st_mode);
}

bool writeAll(const Descriptor& file, Bytes bytes) {
    while (!bytes.empty()) {
        const ssize_t put = write(file.number(), bytes.data(), bytes.size());
        if (put < 0 && errno == EINTR)
            continue;
        if (put <= 0)
            return false;
        bytes = bytes.subspan(static_cast<std::size_t>(put));
    }
    return true;
}

/// Writes from the start of the file on and cuts off what is left behind.
bool overwrite(const Descriptor& file, Bytes bytes) {
    return lseek(file.number(), 0, SEEK_SET) == 0 && writeAll(file, bytes) &&
           ftruncate(file.number(), static_cast<off_t>(bytes.size())) == 0;
}

/// Writes into the file itself. If that fails it gets back what it held, as far as it may be read.
bool writeInPlace(const Descriptor& file, const std::string& path, Bytes bytes) {
    if (!isRegularFile(file))
        return writeAll(file, bytes);
    const auto before = readWholeFile(path);
    if (overwrite(file, bytes))
        return true;
    if (before)
        overwrite(file, *before);
    return false;
}

/// Writes where there is no file. If that fails there is none again.
bool writeNewInPlace(const std::string& path, Bytes bytes) {
    Descriptor file(path, O_WRONLY | O_CREAT | O_EXCL);
    if (!file)
        return false;
    const bool isWritten = writeAll(file, bytes) && file.close();
    if (!isWritten)
        unlink(path.c_str());
    return isWritten;
}

std::string folderOf(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1);
}

/// What `path` leads to by links, whether it is there or not.
std::string behindLinks(std::string path) {
    constexpr int mostLinks = 40; // as the system allows
    std::array<char, PATH_MAX> link;
    for (int i = 0; i < mostLinks; ++i) {
        const ssize_t length = readlink(path.c_str(), link.data(), link.size());
        if (length <= 0)
            break;
        const std::string_view target(link.data(), static_cast<std::size_t>(length));
        path = (target.starts_with('/') ? "" : folderOf(path)).append(target);
    }
    return path;
}

enum class Replacement { done, refused, failed };

/// After a step that changes no file: whether that folder takes no draft, while the file itself may still be
/// written.
Replacement refusedOrFailed() {
    const bool isRefused =
        errno == EACCES || errno == EPERM || errno == EROFS || errno == EBUSY || errno == ENAMETOOLONG;
    return isRefused ? Replacement::refused : Replacement::failed;
}

/// Makes a file in `folder` under a name that nothing there has, and puts that name behind `folder`.
Descriptor makeDraft(std::string& folder) {
    const std::string start = folder + ".quillon-" + std::to_string(getpid()) + "-";
    for (int number = 0;; ++number) {
        folder = start + std::to_string(number);
        Descriptor draft(folder, O_WRONLY | O_CREAT | O_EXCL);
        if (draft || errno != EEXIST)
            return draft;
    }
}

/// Gives the new file the owner and the permissions of the old one.
bool takesAfter(const Descriptor& file, const struct stat& old) {
    const struct stat own = statusOf(file);
    const bool isOwners = S_ISREG(own.st_mode) && own.st_uid == old.st_uid && own.st_gid == old.st_gid;
    return (isOwners || fchown(file.number(), old.st_uid, old.st_gid) == 0) &&
           fchmod(file.number(), old.st_mode & 07777) == 0;
}

/// Writes a new file and puts it in the place of `path`: a rename is the one step that cannot be seen half
/// done. It is on the disk by then, so that a power cut leaves one of the two. `old` is the status of what
/// is there, or null.
Replacement replaceFile(const std::string& path, Bytes bytes, const struct stat* old) {
    std::string draft = folderOf(path);
    Descriptor file = makeDraft(draft);
    if (!file)
        return refusedOrFailed();
    Replacement result = Replacement::failed;
    if (old && !takesAfter(file, *old))
        result = Replacement::refused;
    else if (!writeAll(file, bytes) || fsync(file.number()) != 0 || !file.close())
        result = Replacement::failed;
    else if (std::rename(draft.c_str(), path.c_str()) == 0)
        return Replacement::done;
    else
        result = refusedOrFailed();
    unlink(draft.c_str());
    return result;
}

} // namespace

bool fileExists(const std::string& path) {
    return access(path.c_str(), F_OK) == 0;
}

std::optional<std::vector<unsigned char>> readWholeFile(const std::string& path, std::size_t limit, Sharing) {
    // Non-blocking, so that a pipe of that name cannot hold up the host.
    const Descriptor file(path, O_RDONLY | O_NONBLOCK);
    if (!file || !isRegularFile(file))
        return std::nullopt;
    std::vector<unsigned char> content;
    std::array<unsigned char, 65536> piece;
    while (content.size() < limit) {
        const ssize_t got = read(file.number(), piece.data(), std::min(piece.size(), limit - content.size()));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        content.insert(content.end(), piece.data(), piece.data() + got);
    }
    return content;
}

std::error_code giveName(const std::filesystem::path& draft, const std::filesystem::path& target) {
    std::error_code error;
    std::filesystem::rename(draft, target, error);
    return error;
}

bool writeWholeFile(const std::string& path, const void* data, std::size_t size) {
    const Bytes bytes(static_cast<const unsigned char*>(data), size);
    // What may not be written may not be replaced either. Non-blocking, as a pipe may have that name.
    const Descriptor old(path, O_WRONLY | O_NONBLOCK);
    if (!old && errno != ENOENT)
        return false;
    const struct stat status = statusOf(old);
    const bool isReplaceable = !old || (S_ISREG(status.st_mode) && status.st_nlink == 1);
    const std::string place = behindLinks(path);
    const Replacement result =
        isReplaceable ? replaceFile(place, bytes, old ? &status : nullptr) : Replacement::refused;
    if (result == Replacement::refused)
        return old ? writeInPlace(old, path, bytes) : writeNewInPlace(place, bytes);
    return result == Replacement::done;
}

} // namespace platform
