// Allocates an instance in large pages: taps read all over its delay memory, which costs less with these.
#pragma once

#include <cstddef>

namespace effect {

/// Base of the outermost class of an instance: its memory consists of large pages if the system grants them.
struct LargeObject {
    static void* operator new(std::size_t size);
    static void operator delete(void* memory);
};

} // namespace effect
