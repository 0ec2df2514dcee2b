#include "interleaving.h"

#include <atomic>
#include <csignal>
#include <thread>
#include <ucontext.h>
#include <x86intrin.h>

namespace realtime {
namespace {

constexpr unsigned long long kSingleStep = 0x100; ///< in the processor's flags

enum State : int { kRunning, kStopped, kReleased, kDone };

/// What a thread under single steps and the one that directs it tell each other.
struct Steps {
    std::int64_t limit;
    std::int64_t taken = 0;
    std::atomic<int> state = kRunning;
};

thread_local Steps* ownSteps = nullptr;

/// After each instruction of a thread under single steps.
void onStep(int, siginfo_t*, void* context) {
    Steps& steps = *ownSteps;
    if (++steps.taken < steps.limit)
        return;
    static_cast<ucontext_t*>(context)->uc_mcontext.gregs[REG_EFL] &= ~static_cast<long long>(kSingleStep);
    steps.state = kStopped;
    steps.state.notify_all();
    steps.state.wait(kStopped);
}

void listenToSteps() {
    struct sigaction action = {};
    action.sa_sigaction = onStep;
    action.sa_flags = SA_SIGINFO;
    sigaction(SIGTRAP, &action, nullptr);
}

void runInSteps(Steps& steps, const std::function<void()>& work) {
    ownSteps = &steps;
    if (steps.limit < kToTheEnd)
        __writeeflags(__readeflags() | kSingleStep);
    work();
    __writeeflags(__readeflags() & ~kSingleStep);
    steps.state = kDone;
    steps.state.notify_all();
}

void release(Steps& steps) {
    int stopped = kStopped;
    if (steps.state.compare_exchange_strong(stopped, kReleased))
        steps.state.notify_all();
}

} // namespace

void interleave(const std::function<void()>& first, std::int64_t firstSteps,
                const std::function<void()>& second, std::int64_t secondSteps) {
    listenToSteps();
    Steps ofFirst{firstSteps}, ofSecond{secondSteps};
    std::thread firstThread([&] { runInSteps(ofFirst, first); });
    ofFirst.state.wait(kRunning);
    std::thread secondThread([&] { runInSteps(ofSecond, second); });
    ofSecond.state.wait(kRunning);
    release(ofFirst);
    firstThread.join();
    release(ofSecond);
    secondThread.join();
}

std::int64_t countInstructions(const std::function<void()>& work) {
    listenToSteps();
    Steps steps{kToTheEnd - 1};
    std::thread([&] { runInSteps(steps, work); }).join();
    return steps.taken;
}

} // namespace realtime
