// Memory that runs out when a test says so. A program that has failing_memory.cpp in it gets every C++
// allocation from there, also those of the libraries that it has been linked with.
#pragma once

namespace test {

/// How memory runs out: for one request, or for all from there on.
enum class Shortage { once, lasting };

/// Memory is granted `allocations` times more; the next request fails. Ends with the object. One at a time,
/// and on one thread.
class MemoryFor {
  public:
    MemoryFor(long allocations, Shortage shortage);
    ~MemoryFor();
    MemoryFor(const MemoryFor&) = delete;
    MemoryFor& operator=(const MemoryFor&) = delete;

    /// Whether a request has failed so far.
    bool hasFailed() const;
};

/// Allocations of the whole process that have not been given back.
long livingAllocations();

} // namespace test
