// A library with its skins in a place of its own, where one skin has been chosen and nobody else's choice is
// touched.
#pragma once

#include <filesystem>

namespace tools::window {

class Stage {
  public:
    /// Lays out below `folder`, which is private to this process, a copy of `library`, links to everything
    /// that lies beside it, and `skin`, chosen, under its own name or, if the
    /// library could not name that, another. From here on the process keeps its
    /// settings there. Call it before any library is loaded and any thread runs. Throws ToolError.
    Stage(const std::filesystem::path& folder, const std::filesystem::path& library,
          const std::filesystem::path& skin);

    /// Lays out the skin as it is now. Where it had to be copied, a change of the original shows only after
    /// this. Throws ToolError.
    void bringUpToDate();

    const std::filesystem::path& library() const { return library_; }
    /// The skin as the library finds it.
    const std::filesystem::path& skin() const { return skin_; }

  private:
    std::filesystem::path library_;
    std::filesystem::path original_; ///< the skin where its author has it
    std::filesystem::path skin_;
    bool isSkinLinked_ = false;
};

} // namespace tools::window
