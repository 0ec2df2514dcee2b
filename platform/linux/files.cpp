#include "platform/files.h"

#include <algorithm>
#include <array>
#include <cerrno>

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
            close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    explicit operator bool() const { return number_ >= 0; }
    int number() const { return number_; }

  private:
    int number_;
};

bool isRegularFile(const Descriptor& file) {
    struct stat status;
    return fstat(file.number(), &status) == 0 && S_ISREG(status.st_mode);
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

bool writeWholeFile(const std::string& path, const void* data, std::size_t size) {
    const Descriptor file(path, O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK);
    if (!file)
        return false;
    const auto* bytes = static_cast<const unsigned char*>(data);
    std::size_t done = 0;
    while (done < size) {
        const ssize_t put = write(file.number(), bytes + done, size - done);
        if (put < 0 && errno == EINTR)
            continue;
        if (put <= 0)
            return false;
        done += static_cast<std::size_t>(put);
    }
    return true;
}

} // namespace platform
