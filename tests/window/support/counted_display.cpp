#include "counted_display.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

namespace test {

namespace {

/// Numbers that no server takes by itself.
constexpr int kFirstNumber = 2000, kLastNumber = 2999;

std::string pathOf(const std::string& display) {
    return "/tmp/.X11-unix/X" + display.substr(1);
}

/// The one that programs try first, without a file: the path behind a zero byte.
socklen_t setAbstractAddress(sockaddr_un& address, const std::string& path) {
    address = {};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path + 1, path.data(), path.size());
    return static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + path.size());
}

int newSocket() {
    return socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
}

} // namespace

CountedDisplay::CountedDisplay(const std::string& server) : server_(server) {
    listener_ = newSocket();
    for (int number = kFirstNumber; number <= kLastNumber && name_.empty(); ++number) {
        const std::string name = ":" + std::to_string(number);
        sockaddr_un address;
        const socklen_t length = setAbstractAddress(address, pathOf(name));
        if (bind(listener_, reinterpret_cast<const sockaddr*>(&address), length) == 0)
            name_ = name;
    }
    if (name_.empty() || listen(listener_, 16) != 0 || pipe(wake_) != 0)
        throw std::runtime_error("the counted display cannot listen");
    thread_ = std::thread([this] { forward(); });
}

CountedDisplay::~CountedDisplay() {
    close(wake_[1]);
    thread_.join();
    close(wake_[0]);
    close(listener_);
    for (const auto& [end, other] : otherEnd_)
        close(end);
}

void CountedDisplay::forward() {
    for (;;) {
        std::vector<pollfd> waiting = {{wake_[0], POLLIN, 0}, {listener_, POLLIN, 0}};
        for (const auto& [end, other] : otherEnd_)
            waiting.push_back({end, POLLIN, 0});
        if (poll(waiting.data(), waiting.size(), -1) < 0)
            continue;
        if (waiting[0].revents)
            return;
        if (waiting[1].revents)
            accept();
        for (std::size_t i = 2; i < waiting.size(); ++i) {
            const int end = waiting[i].fd;
            if (waiting[i].revents && otherEnd_.contains(end) && !pass(end, otherEnd_[end]))
                disconnect(end);
        }
    }
}

void CountedDisplay::accept() {
    const int program = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    const int server = newSocket();
    sockaddr_un address;
    const socklen_t length = setAbstractAddress(address, pathOf(server_));
    if (connect(server, reinterpret_cast<const sockaddr*>(&address), length) != 0) {
        close(program);
        close(server);
        return;
    }
    otherEnd_[program] = server;
    otherEnd_[server] = program;
    isProgram_[program] = true;
    isProgram_[server] = false;
}

/// What has arrived at one end goes to the other. False if one of them has gone.
bool CountedDisplay::pass(int from, int to) {
    static thread_local std::array<char, 1 << 16> buffer;
    const ssize_t count = read(from, buffer.data(), buffer.size());
    if (count <= 0)
        return false;
    // Before it is passed on, so that no answer is faster than the count.
    if (isProgram_[from])
        sent_ += static_cast<std::uint64_t>(count);
    for (ssize_t done = 0; done < count;) {
        const ssize_t now =
            send(to, buffer.data() + done, static_cast<std::size_t>(count - done), MSG_NOSIGNAL);
        if (now <= 0)
            return false;
        done += now;
    }
    return true;
}

void CountedDisplay::disconnect(int end) {
    const int other = otherEnd_[end];
    for (const int gone : {end, other}) {
        otherEnd_.erase(gone);
        isProgram_.erase(gone);
        close(gone);
    }
}

} // namespace test
