#include "desk/measuring.h"

#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <sched.h>
#include <stdexcept>
#include <sys/mman.h>
#include <thread>
#include <unistd.h>

namespace {

/// Small pages that nobody has touched yet.
class FreshPages {
  public:
    explicit FreshPages(std::size_t count)
        : size_(count * pageSize()),
          memory_(mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {
        madvise(memory_, size_, MADV_NOHUGEPAGE);
    }
    ~FreshPages() { munmap(memory_, size_); }
    FreshPages(const FreshPages&) = delete;
    FreshPages& operator=(const FreshPages&) = delete;

    void touch() {
        for (std::size_t at = 0; at < size_; at += pageSize())
            static_cast<volatile char*>(memory_)[at] = 1;
    }

  private:
    static std::size_t pageSize() { return static_cast<std::size_t>(sysconf(_SC_PAGESIZE)); }
    std::size_t size_;
    void* memory_;
};

constexpr std::size_t kPages = 64;

TEST(ProcessorSeconds, AreThoseOfTheProgramThatWasRun) {
    const double idle = desk::processorSecondsOf({"true"});
    const double busy =
        desk::processorSecondsOf({"sh", "-c", "i=0; while [ $i -lt 300000 ]; do i=$((i+1)); done"});
    EXPECT_GE(idle, 0.0);
    EXPECT_GT(busy, idle);
}

TEST(ProcessorSeconds, AreRefusedForAProgramThatFails) {
    EXPECT_THROW(desk::processorSecondsOf({"false"}), std::runtime_error);
}

TEST(ProcessorSeconds, AreRefusedForAProgramThatIsNotThere) {
    try {
        desk::processorSecondsOf({"no-such-program-anywhere"});
        FAIL() << "no error";
    } catch (const std::runtime_error& error) {
        EXPECT_TRUE(std::string(error.what()).starts_with("no-such-program-anywhere "));
    }
}

TEST(Staying, LeavesTheThreadOneProcessor) {
    if (!desk::stayOnThisProcessor())
        GTEST_SKIP() << "the system does not allow it";
    cpu_set_t allowed;
    ASSERT_EQ(sched_getaffinity(0, sizeof allowed, &allowed), 0);
    EXPECT_EQ(CPU_COUNT(&allowed), 1);
    EXPECT_TRUE(CPU_ISSET(static_cast<unsigned>(sched_getcpu()), &allowed));
}

TEST(PageFaults, AreOneForEachFreshPageAndNoneForAPageThatIsThere) {
    FreshPages pages(kPages);
    const std::int64_t before = desk::pageFaultsOfThisThread();
    pages.touch();
    const std::int64_t between = desk::pageFaultsOfThisThread();
    pages.touch();
    EXPECT_GE(between - before, static_cast<std::int64_t>(kPages));
    EXPECT_LT(desk::pageFaultsOfThisThread() - between, static_cast<std::int64_t>(kPages));
}

TEST(PageFaults, AreThoseOfOneThread) {
    FreshPages pages(kPages);
    std::int64_t faultsOfOther = 0;
    const std::int64_t before = desk::pageFaultsOfThisThread();
    std::thread([&] {
        const std::int64_t beforeTouch = desk::pageFaultsOfThisThread();
        pages.touch();
        faultsOfOther = desk::pageFaultsOfThisThread() - beforeTouch;
    }).join();
    EXPECT_GE(faultsOfOther, static_cast<std::int64_t>(kPages));
    EXPECT_LT(desk::pageFaultsOfThisThread() - before, static_cast<std::int64_t>(kPages));
}

TEST(ProcessorName, IsOneLine) {
    const std::string name = desk::processorName();
    EXPECT_FALSE(name.empty());
    EXPECT_EQ(name.find('\n'), std::string::npos);
    EXPECT_EQ(name.find('\t'), std::string::npos);
}

} // namespace
