#include "tools/bank/parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace bank {

void forEachInParallel(std::size_t count, const std::function<void(std::size_t)>& work) {
    std::atomic<std::size_t> next{0};
    std::exception_ptr failure;
    std::mutex failureGuard;
    const auto workOn = [&] {
        for (std::size_t i = next++; i < count; i = next++) {
            try {
                work(i);
            } catch (...) {
                next = count;
                const std::lock_guard lock(failureGuard);
                if (!failure)
                    failure = std::current_exception();
            }
        }
    };
    {
        std::vector<std::jthread> others;
        const std::size_t cores = std::max(1u, std::thread::hardware_concurrency());
        for (std::size_t i = 1; i < std::min(cores, count); ++i)
            others.emplace_back(workOn);
        workOn();
    }
    if (failure)
        std::rethrow_exception(failure);
}

} // namespace bank
