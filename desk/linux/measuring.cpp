#include "desk/measuring.h"

#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <malloc.h>
#include <sched.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace desk {

namespace {

constexpr int kLargeBlock = 1 << 20; ///< bytes

double secondsOf(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

pid_t start(const std::vector<std::string>& arguments) {
    std::vector<char*> words;
    words.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        posix_spawn_file_actions_addopen(&files, descriptor, "/dev/null", O_RDWR, 0);
    pid_t process = -1;
    const int error = posix_spawnp(&process, words[0], &files, nullptr, words.data(), environ);
    posix_spawn_file_actions_destroy(&files);
    if (error != 0)
        throw std::runtime_error(arguments[0] +
                                 " cannot be started: " + std::generic_category().message(error));
    return process;
}

} // namespace

std::string processorName() {
    std::ifstream text("/proc/cpuinfo");
    for (std::string line; std::getline(text, line);)
        if (line.starts_with("model name"))
            return line.substr(line.find(':') + 2);
    return "unknown";
}

bool stayOnThisProcessor() {
    const int here = sched_getcpu();
    if (here < 0 || here >= CPU_SETSIZE)
        return false;
    cpu_set_t allowed;
    CPU_ZERO(&allowed);
    CPU_SET(static_cast<unsigned>(here), &allowed);
    return sched_setaffinity(0, sizeof allowed, &allowed) == 0;
}

void takeLargeBlocksFresh() {
    mallopt(M_MMAP_THRESHOLD, kLargeBlock);
}

std::int64_t pageFaultsOfThisThread() {
    rusage usage{};
    getrusage(RUSAGE_THREAD, &usage);
    return usage.ru_minflt + usage.ru_majflt;
}

double processorSecondsOf(const std::vector<std::string>& arguments) {
    const pid_t process = start(arguments);
    int status = 0;
    rusage usage{};
    while (wait4(process, &status, 0, &usage) < 0)
        if (errno != EINTR)
            throw std::runtime_error(arguments[0] + " cannot be waited for");
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw std::runtime_error(arguments[0] + " failed");
    return secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime);
}

} // namespace desk
