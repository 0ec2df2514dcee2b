// The module as the build delivers it, in the hands of a host.
#pragma once

#include "clap_host.h"

#include "desk/shared_library.h"

#include <stdexcept>
#include <string>

namespace clap_test {

inline constexpr char kModule[] = QUILLON_CLAP "/QuillonMultitapDelay.clap";

/// A loaded module between init() and deinit().
class Module {
  public:
    explicit Module(const std::string& path = kModule)
        : library_(path), entry_(static_cast<const clap_plugin_entry_t*>(library_.symbol("clap_entry"))) {
        if (!entry_ || !entry_->init(path.c_str()))
            throw std::runtime_error(path + " is no usable module");
    }
    ~Module() { entry_->deinit(); }
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    const clap_plugin_entry_t& entry() const { return *entry_; }

  private:
    desk::SharedLibrary library_;
    const clap_plugin_entry_t* entry_;
};

} // namespace clap_test
