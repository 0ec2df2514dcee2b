// Checks a skin for its author: what in the text the plug-in ignores or reads differently, and the messages
// it shows when it builds the window, each with its place in the file.
#pragma once

#include "tools/skin_check/object_outline.h"
#include "tools/skin_check/skin_source.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tools::window {

/// Everything that is found in the text of a skin alone, in the order of the file.
std::vector<Finding> checkSkinText(std::string_view text);

/// The text of a skin, read once, and what is found in it.
class SkinText {
  public:
    /// Of the skin in `folder`. Throws ToolError if the file cannot be read.
    explicit SkinText(const std::filesystem::path& folder);

    /// As of checkSkinText().
    const std::vector<Finding>& findings() const { return findings_; }
    /// Why the plug-in does not open the skin, or does not survive it; null if it may try.
    const Finding* obstacle() const;
    /// findings(), and what the building of this text shows, with the pictures in `folder`. As of
    /// checkSkin().
    std::vector<Finding> findingsBuiltIn(const std::filesystem::path& folder) const;
    /// The positions of its objects with the pictures in `folder`, the bottom one first; empty if there is an
    /// obstacle. As of checkSkin().
    std::vector<ObjectOutline> outlinesBuiltIn(const std::filesystem::path& folder) const;

  private:
    SkinSource source_;
    std::vector<Finding> findings_;
};

/// checkSkinText() of the skin in `folder`, and what its building shows. A skin that the plug-in would refuse
/// or that would end the host is not built. Needs no display and changes no setting. Runs no other
/// thread. Throws ToolError if the file cannot be read.
std::vector<Finding> checkSkin(const std::filesystem::path& folder);

/// "FILE:LINE:COLUMN: what", with a line end.
std::string lineFor(const std::filesystem::path& file, const Finding& finding);

} // namespace tools::window
