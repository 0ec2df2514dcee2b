#include "platform/large_pages.h"

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/mman.h>
#include <utility>
#include <vector>

namespace {

using platform::kLargePage;
using Range = std::pair<std::uintptr_t, std::uintptr_t>;

/// Three large pages of memory, and what is needed to begin at a place of one's choice.
class Memory {
  public:
    Memory() : begin_(mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {}
    ~Memory() { munmap(begin_, size); }
    /// The first boundary of large pages in it.
    char* boundary() const {
        const auto begin = reinterpret_cast<std::uintptr_t>(begin_);
        return reinterpret_cast<char*>((begin + kLargePage - 1) / kLargePage * kLargePage);
    }
    /// The parts of it that the system was asked to back by large pages.
    std::vector<Range> preferred() const {
        std::vector<Range> ranges;
        std::ifstream maps("/proc/self/smaps");
        Range current;
        for (std::string line; std::getline(maps, line);) {
            unsigned long first = 0, last = 0;
            if (std::sscanf(line.c_str(), "%lx-%lx ", &first, &last) == 2)
                current = {first, last};
            const auto ours = reinterpret_cast<std::uintptr_t>(begin_);
            if (line.starts_with("VmFlags:") && line.find(" hg") != std::string::npos &&
                current.first >= ours && current.second <= ours + size)
                ranges.push_back(current);
        }
        return ranges;
    }

  private:
    static constexpr std::size_t size = 4 * kLargePage;
    void* begin_;
};

Range range(const char* begin, std::size_t size) {
    const auto first = reinterpret_cast<std::uintptr_t>(begin);
    return {first, first + size};
}

class LargePages : public testing::Test {
  protected:
    void SetUp() override {
        if (!std::filesystem::exists("/sys/kernel/mm/transparent_hugepage"))
            GTEST_SKIP() << "this system has no large pages to ask for";
    }
    Memory memory;
};

TEST_F(LargePages, AreAskedForWhereMemoryFillsThem) {
    platform::preferLargePages(memory.boundary(), 2 * kLargePage);
    EXPECT_EQ(memory.preferred(), std::vector{range(memory.boundary(), 2 * kLargePage)});
}

TEST_F(LargePages, AreNotAskedForWhereTheyReachBeyondTheMemory) {
    platform::preferLargePages(memory.boundary() + 64, 3 * kLargePage - 128);
    EXPECT_EQ(memory.preferred(), std::vector{range(memory.boundary() + kLargePage, kLargePage)});
}

TEST_F(LargePages, AreNotAskedForMemoryThatIsTooSmall) {
    platform::preferLargePages(memory.boundary() + 64, kLargePage);
    EXPECT_EQ(memory.preferred(), std::vector<Range>{});
}

TEST_F(LargePages, LeaveWhatTheMemoryHolds) {
    char* const bytes = memory.boundary();
    bytes[0] = 'a';
    bytes[kLargePage] = 'b';
    platform::preferLargePages(bytes, 2 * kLargePage);
    EXPECT_EQ(bytes[0], 'a');
    EXPECT_EQ(bytes[kLargePage], 'b');
    EXPECT_EQ(bytes[1], 0);
}

} // namespace
