#include "desk/shared_library.h"

#include <dlfcn.h>
#include <stdexcept>
#include <utility>

namespace desk {

SharedLibrary::SharedLibrary(const std::string& path)
    // A bare name would make the loader search the system's own folders.
    : handle_(
          dlopen((path.find('/') == std::string::npos ? "./" + path : path).c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (!handle_) {
        const char* reason = dlerror();
        throw std::runtime_error(reason ? reason : path + " cannot be loaded");
    }
}

SharedLibrary::~SharedLibrary() {
    if (handle_)
        dlclose(handle_);
}

SharedLibrary::SharedLibrary(SharedLibrary&& other) noexcept
    : handle_(std::exchange(other.handle_, nullptr)) {}

SharedLibrary& SharedLibrary::operator=(SharedLibrary&& other) noexcept {
    if (this != &other) {
        if (handle_)
            dlclose(handle_);
        handle_ = std::exchange(other.handle_, nullptr);
    }
    return *this;
}

void* SharedLibrary::symbol(const char* name) const {
    return handle_ ? dlsym(handle_, name) : nullptr;
}

} // namespace desk
