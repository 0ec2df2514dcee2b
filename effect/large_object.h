// Where an instance lies: taps read all over its delay memory, which fewer and larger pages make cheaper.
#pragma once

#include <cstddef>

namespace effect {

/// For the outermost class of an instance: its memory comes in large pages, where the system grants them.
struct LargeObject {
    static void* operator new(std::size_t size);
    static void operator delete(void* memory);
};

} // namespace effect
