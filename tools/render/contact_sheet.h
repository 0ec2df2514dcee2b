// The page for listening to one sound with many programs: a row for each, with a player, a picture and
// figures.
#pragma once

#include "tools/render/bulk_plan.h"
#include "tools/render/bulk_run.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tools::render {

/// The page with places for what differs, {{like this}}.
extern const std::string_view kContactSheetPage;

struct ContactSheet {
    std::filesystem::path folder;   ///< the page goes there, and all its files are below
    std::filesystem::path input;    ///< that was played
    std::filesystem::path drySound; ///< a copy of it in the folder
    std::string effect;             ///< what it was played through
    std::vector<BulkJob> jobs;
    std::vector<BulkOutcome> outcomes; ///< one per job
};

constexpr const char* kContactSheetName = "index.html";

/// The page as HTML. It refers to nothing outside of its folder.
std::string contactSheetText(const ContactSheet& sheet);

/// Lays the jobs' files out for a page: sounds and pictures in folders of their own.
void arrangeForContactSheet(std::vector<BulkJob>& jobs, const std::filesystem::path& folder);

/// Copies the sound into the folder as a file of this ending, for comparison, 24 bit or floating point as
/// wanted. Gives its path. Throws ToolError.
std::filesystem::path copyDrySound(const std::filesystem::path& input, const std::filesystem::path& folder,
                                   const std::string& ending, SampleFormat format);

} // namespace tools::render
