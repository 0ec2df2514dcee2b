// A private copy of the built library, with nothing beside it but what the test puts there, and a private
// current directory. Everything that the library reads or writes by itself (factory bank, controller map,
// settings) is thus the test's own, and so is the process-wide controller map, which belongs to one loaded
// copy.
#pragma once

#include "desk/private_folder.h"
#include "host/plugin.h"
#include "support/program_bank.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <span>
#include <string>

namespace conversation {

inline constexpr char kMapFile[] = "Pluginccmap.bin";
inline constexpr char kBankFile[] = "default.fxb";

/// Nothing if the file cannot be read.
std::optional<Bytes> readFile(const std::string& path);
void writeFile(const std::string& path, std::span<const std::uint8_t> bytes);
void removeFile(const std::string& path);

/// One copy of the library in a folder of its own, which must not exist yet.
class ModuleCopy {
  public:
    /// `folder` is an absolute path. Puts the copy into it and nothing else.
    explicit ModuleCopy(const std::string& folder);

    const std::string& folder() const { return folder_; }
    std::string path() const;
    std::string beside(const std::string& name) const { return folder_ + "/" + name; }
    /// The loaded copy; loads it at the first call.
    host::Library& library();
    void unload() { library_.reset(); }

  private:
    std::string folder_;
    std::unique_ptr<host::Library> library_;
};

/// A test with a private current directory and one copy of the library in "module" below it, without a bank.
class PluginFolder : public ::testing::Test {
  protected:
    PluginFolder();

    /// The path of a file in the current directory as it was at the start of the test.
    std::string here(const std::string& name) const { return folder_.path() + "/" + name; }

  private:
    desk::PrivateFolder folder_;

  protected:
    ModuleCopy module;
};

/// The same with a bank of default programs beside the library: instances come up without a message.
class QuietPlugin : public PluginFolder {
  protected:
    QuietPlugin();
    host::Library& library() { return module.library(); }
};

/// The same with a bank of programs that can be told apart.
class DistinctPlugin : public PluginFolder {
  protected:
    DistinctPlugin();
    host::Library& library() { return module.library(); }
};

} // namespace conversation
