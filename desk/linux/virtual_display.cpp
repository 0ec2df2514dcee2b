#include "desk/virtual_display.h"

#include "platform/linux/xcb_handles.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <stdexcept>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace desk {

namespace {

constexpr int kNotFound = 127; // as shells say it

/// Both ends of a pipe, closed when they are not needed any more.
class Pipe {
  public:
    Pipe() {
        if (pipe2(ends_, O_CLOEXEC) != 0)
            throw std::runtime_error("no virtual display can be started: there is no pipe to be had");
    }
    ~Pipe() {
        closeEnd(ends_[0]);
        closeEnd(ends_[1]);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    int input() const { return ends_[1]; }
    void closeInput() { closeEnd(ends_[1]); }

    /// One line; empty if the other side ends before it is whole.
    std::string readLine() const {
        std::string line;
        char byte = 0;
        ssize_t length = 0;
        while ((length = read(ends_[0], &byte, 1)) == 1 || (length < 0 && errno == EINTR)) {
            if (length == 1 && byte == '\n')
                return line;
            if (length == 1)
                line += byte;
        }
        return {};
    }

  private:
    static void closeEnd(int& end) {
        if (end >= 0)
            close(end);
        end = -1;
    }
    int ends_[2] = {-1, -1};
};

} // namespace

class VirtualDisplay::Server {
  public:
    Server(int width, int height) {
        Pipe report;
        start(std::to_string(width) + "x" + std::to_string(height) + "x24", report);
        report.closeInput();
        const std::string number = report.readLine();
        if (number.empty())
            throw std::runtime_error(stop() == kNotFound
                                         ? "there is no display, and no Xvfb to make one: install xvfb"
                                         : "there is no display, and Xvfb does not start");
        setenv("DISPLAY", (":" + number).c_str(), 1);
    }
    ~Server() {
        unsetenv("DISPLAY");
        stop();
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

  private:
    void start(const std::string& format, const Pipe& report) {
        const pid_t host = getpid();
        const std::string inherited = std::to_string(report.input());
        process_ = fork();
        if (process_ < 0)
            throw std::runtime_error("no virtual display can be started: no process can be had");
        if (process_ > 0)
            return;
        // From here to the end only what is safe in a copy of one thread.
        setpgid(0, 0); // a Control-C is meant for the tool, which then takes its windows away in order
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (getppid() != host)
            _exit(0);
        const int nowhere = open("/dev/null", O_RDWR);
        if (nowhere >= 0)
            for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
                dup2(nowhere, stream);
        fcntl(report.input(), F_SETFD, 0);
        execlp("Xvfb", "Xvfb", "-displayfd", inherited.c_str(), "-screen", "0", format.c_str(), "-nolisten",
               "tcp", "-noreset", static_cast<char*>(nullptr));
        _exit(kNotFound);
    }

    /// The exit code; -1 if a signal was needed. A request to end that comes just before the server begins to
    /// wait for its clients is not seen until it has waited for minutes, so it is repeated.
    int stop() {
        int status = 0;
        for (pid_t ended = 0; ended == 0 || (ended < 0 && errno == EINTR);) {
            kill(process_, SIGTERM); // lets it take its lock file away
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
            ended = waitpid(process_, &status, WNOHANG);
        }
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    pid_t process_ = -1;
};

bool hasDisplay() {
    const platform::XcbConnection connection(xcb_connect(nullptr, nullptr));
    return !xcb_connection_has_error(connection.get());
}

VirtualDisplay::VirtualDisplay(int width, int height) : server_(std::make_unique<Server>(width, height)) {}

VirtualDisplay::~VirtualDisplay() = default;

} // namespace desk
