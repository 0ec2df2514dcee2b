// Builds a skin with the plug-in's own editor and records the messages and the positions of the objects.
#pragma once

#include "tools/skin_check/object_outline.h"
#include "tools/skin_check/skin_source.h"

#include <filesystem>
#include <vector>

namespace tools::window {

struct RecordedBuild {
    std::vector<Finding> findings;
    std::vector<ObjectOutline> outlines; ///< in drawing order, the bottom one first
};

/// Builds the skin in `folder`, whose text has been read to `root`, an element <GUI>, in a window that is
/// nowhere. Finds every message that it raises, every object that it passes over and every picture that it
/// does not find. Replaces the message box, settings and module folder of the process meanwhile.
RecordedBuild buildRecorded(const std::filesystem::path& folder, const SourceElement& root);

} // namespace tools::window
