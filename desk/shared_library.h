// Loading of other shared libraries.
#pragma once

#include <string>

namespace desk {

/// One loaded library; unloaded when the object goes.
class SharedLibrary {
  public:
    SharedLibrary() = default;
    /// Loads `path` with every symbol resolved at once; a bare file name means the current directory. Throws
    /// std::runtime_error with the loader's own words.
    explicit SharedLibrary(const std::string& path);
    ~SharedLibrary();
    SharedLibrary(SharedLibrary&& other) noexcept;
    SharedLibrary& operator=(SharedLibrary&& other) noexcept;
    SharedLibrary(const SharedLibrary&) = delete;
    SharedLibrary& operator=(const SharedLibrary&) = delete;

    /// The address of an exported symbol, or null if there is none of this name.
    void* symbol(const char* name) const;

  private:
    void* handle_ = nullptr;
};

} // namespace desk
