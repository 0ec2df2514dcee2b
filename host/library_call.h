// Which call of which library a thread is in, for whoever has to say it when the library does not come back.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace host {

/// Marks a call for as long as the object lives; calls may lie within each other. Costs two stores, so it may
/// be on the audio path.
class LibraryCall {
  public:
    /// `library`, a path, and `name` must outlive the object. With an `opcode`, `name` stays empty.
    LibraryCall(const std::string& library, const char* name) : LibraryCall(library, name, 0) {}
    LibraryCall(const std::string& library, std::int32_t opcode) : LibraryCall(library, nullptr, opcode) {}
    ~LibraryCall() { innermost = outer_; }
    LibraryCall(const LibraryCall&) = delete;
    LibraryCall& operator=(const LibraryCall&) = delete;

    /// Writes "LIBRARY in CALL" for the innermost call of this thread, and gives true. Outside of calls,
    /// writes the library that was loaded last, or nothing, and gives false. At most `size`
    /// bytes with the NUL. Allocates nothing and locks nothing, so it may run in a signal's handler.
    static bool describe(char* text, std::size_t size);
    /// Which library describe() tells outside of calls.
    static void noteLoaded(const std::string& library);

  private:
    LibraryCall(const std::string& library, const char* name, std::int32_t opcode)
        : library_(library.c_str()), name_(name), opcode_(opcode), outer_(innermost) {
        innermost = this;
    }

    const char* library_;
    const char* name_;
    std::int32_t opcode_;
    const LibraryCall* outer_;

    static inline thread_local const LibraryCall* innermost = nullptr;
};

/// The name of an opcode, "effOpen", or null if the interface has none of this number.
const char* opcodeName(std::int32_t opcode);

} // namespace host
