// All between a signal and the end of the process runs in the signal's handler: system calls on buffers that
// were prepared beforehand, and nothing else.

#include "desk/abrupt_end.h"

#include "../unfinished_paths.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace desk {

namespace {

constexpr int kExitFailure = 2;
constexpr unsigned kPatienceSeconds = 10;

struct NamedSignal {
    int number;
    const char* name;
};

constexpr NamedSignal kCrashes[] = {
    {SIGSEGV, "segmentation fault"}, {SIGBUS, "bus error"}, {SIGFPE, "arithmetic error"},
    {SIGILL, "illegal instruction"}, {SIGABRT, "abort"},    {SIGTRAP, "breakpoint"},
    {SIGSYS, "bad system call"}};
/// A person or a system asks the process to end.
constexpr int kRequests[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM};
/// Would end the process by themselves: nobody reads its output any more, or a limit is reached.
constexpr int kOtherEnds[] = {SIGPIPE, SIGXCPU, SIGXFSZ, SIGALRM};

const char* toolName = nullptr;
CallDescription describeCall = nullptr;
bool isOnTerminal = false;
/// A copy of the process that a library makes of itself ends without taking anything away.
pid_t owner = -1;
std::atomic<bool> isWatched = false, areRequestsNoted = false;
std::atomic<int> requestNoted = 0;
static_assert(std::atomic<int>::is_always_lock_free);

UnfinishedPaths<char, PATH_MAX> unfinished;

/// The thread that has run out of its stack needs another one for the handler.
alignas(16) std::array<unsigned char, std::size_t{256} << 10> handlerStack;

/// One line of text, cut where it would not fit.
class Line {
  public:
    void add(const char* text) {
        while (*text && length_ < text_.size() - 1)
            text_[length_++] = *text++;
    }
    void send() {
        text_[length_++] = '\n';
        [[maybe_unused]] const ssize_t ignored = write(STDERR_FILENO, text_.data(), length_);
    }

  private:
    std::array<char, PATH_MAX + 256> text_;
    std::size_t length_ = 0;
};

/// Removes what is in the folder; a link goes, and what it leads to stays. Again from the start until nothing
/// more goes, since a folder that changes may be read with gaps.
void emptyFolder(int folder, int depth) {
    alignas(dirent64) std::array<char, 4096> entries;
    bool hasRemoved = true;
    while (hasRemoved && lseek(folder, 0, SEEK_SET) == 0) {
        hasRemoved = false;
        ssize_t size = 0;
        while ((size = getdents64(folder, entries.data(), entries.size())) > 0)
            for (ssize_t at = 0; at < size;) {
                const auto* entry = reinterpret_cast<const dirent64*>(entries.data() + at);
                at += entry->d_reclen;
                const std::string_view name = entry->d_name;
                if (name == "." || name == "..")
                    continue;
                if (unlinkat(folder, entry->d_name, 0) == 0) {
                    hasRemoved = true;
                    continue;
                }
                const int inner =
                    depth > 0 ? openat(folder, entry->d_name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC)
                              : -1;
                if (inner < 0)
                    continue;
                emptyFolder(inner, depth - 1);
                close(inner);
                hasRemoved = unlinkat(folder, entry->d_name, AT_REMOVEDIR) == 0 || hasRemoved;
            }
    }
}

void removeFolder(const char* path) {
    constexpr int deepest = 16;
    const int folder = open(path, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folder >= 0) {
        emptyFolder(folder, deepest);
        close(folder);
    }
    rmdir(path);
}

void removeUnfinished() {
    unfinished.forEach([](const char* path, UnfinishedPath::Kind kind) {
        kind == UnfinishedPath::Kind::file ? static_cast<void>(unlink(path)) : removeFolder(path);
    });
}

/// Ends the process as if the signal had never been handled.
void endBy(int signal) {
    ::signal(signal, SIG_DFL);
    sigset_t own;
    sigemptyset(&own);
    sigaddset(&own, signal);
    raise(signal);
    sigprocmask(SIG_UNBLOCK, &own, nullptr);
}

Line beginLine() {
    Line line;
    if (isOnTerminal)
        line.add("\r\033[K"); // over the progress
    line.add(toolName);
    line.add(": ");
    return line;
}

const char* crashName(int signal) {
    for (const NamedSignal& crash : kCrashes)
        if (crash.number == signal)
            return crash.name;
    return "signal";
}

void sayCrash(int signal) {
    std::array<char, PATH_MAX + 128> call;
    const bool isInCall = describeCall(call.data(), call.size());
    Line line = beginLine();
    line.add("crash");
    line.add(isInCall ? " of " : call[0] ? " outside of the calls of " : "");
    line.add(call.data());
    line.add(": ");
    line.add(crashName(signal));
    line.send();
}

void sayThatCallHangs() {
    std::array<char, PATH_MAX + 128> call;
    if (!describeCall(call.data(), call.size()))
        return;
    Line line = beginLine();
    line.add("stopped; no answer from ");
    line.add(call.data());
    line.send();
}

extern "C" void handleCrash(int signal) {
    if (getpid() == owner) {
        sayCrash(signal);
        removeUnfinished();
    }
    endBy(signal);
}

extern "C" void handleEnd(int signal) {
    const int error = errno;
    const bool isRequest = signal != SIGPIPE && signal != SIGXCPU && signal != SIGXFSZ && signal != SIGALRM;
    const int before = requestNoted;
    if (getpid() == owner && isRequest && areRequestsNoted && before == 0) {
        requestNoted = signal;
        alarm(kPatienceSeconds);
        errno = error;
        return;
    }
    if (getpid() == owner) {
        if (signal == SIGALRM && before != 0)
            sayThatCallHangs();
        removeUnfinished();
    }
    endBy(signal == SIGALRM && before != 0 ? before : signal);
}

/// exit() runs this after what the library itself wants to have run.
void handleExit() {
    if (!isWatched || getpid() != owner)
        return;
    std::array<char, PATH_MAX + 128> call;
    const bool isInCall = describeCall(call.data(), call.size());
    Line line = beginLine();
    line.add("the process was ended by ");
    line.add(isInCall || call[0] ? call.data() : "exit()");
    line.send();
    removeUnfinished();
    _exit(kExitFailure);
}

void handle(int signal, void (*handler)(int), int flags) {
    struct sigaction action = {};
    sigaction(signal, nullptr, &action);
    if (action.sa_handler == SIG_IGN)
        return;
    action = {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
}

void prepareHandlerStack() {
    stack_t stack = {};
    stack.ss_sp = handlerStack.data();
    stack.ss_size = handlerStack.size();
    sigaltstack(&stack, nullptr);
}

} // namespace

AbruptEndWatch::AbruptEndWatch(const char* tool, CallDescription description) {
    toolName = tool;
    describeCall = description;
    isOnTerminal = isatty(STDERR_FILENO) == 1;
    owner = getpid();
    isWatched = true;
    prepareHandlerStack();
    for (const NamedSignal& crash : kCrashes)
        handle(crash.number, handleCrash, SA_ONSTACK);
    for (const int signal : kRequests)
        handle(signal, handleEnd, SA_RESTART);
    for (const int signal : kOtherEnds)
        handle(signal, handleEnd, SA_RESTART);
    std::atexit(handleExit);
    std::at_quick_exit(handleExit);
}

AbruptEndWatch::~AbruptEndWatch() {
    isWatched = false;
}

void noteEndRequests() {
    areRequestsNoted = true;
}

bool isEndRequested() {
    return requestNoted != 0;
}

UnfinishedPath::UnfinishedPath(const std::filesystem::path& path, Kind kind) {
    // The current directory may be another one at the end.
    std::error_code error;
    const std::filesystem::path whole = std::filesystem::absolute(path, error);
    place_ = unfinished.add((error ? path : whole).native(), kind);
}

UnfinishedPath::~UnfinishedPath() {
    unfinished.remove(place_);
}

bool makeNewFile(const std::filesystem::path& path) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    return file >= 0 && close(file) == 0;
}

} // namespace desk
