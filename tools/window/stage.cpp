#include "tools/window/stage.h"

#include "desk/host_settings.h"
#include "desk/links.h"
#include "platform/path_text.h"
#include "platform/settings.h"
#include "tools/common/text.h"
#include "tools/common/tool_error.h"

#include <system_error>

namespace tools::window {

namespace files = std::filesystem;

namespace {

void linkEverythingBeside(const files::path& library, const files::path& stage) {
    for (const files::directory_entry& entry : files::directory_iterator(library.parent_path()))
        if (entry.path().filename() != library.filename())
            desk::makeLink(entry.path(), stage / entry.path().filename());
}

/// In place of those that answer to the same name. Whether the skin is seen there as it changes.
bool linkSkin(const files::path& skin, const files::path& link) {
    for (const files::directory_entry& entry : files::directory_iterator(link.parent_path()))
        if (sameName(entry.path().filename().string(), link.filename().string()))
            desk::removeLink(entry.path());
    return desk::makeLink(skin, link);
}

/// Its own, unless that has letters that the library cannot name.
files::path nameInStage(const files::path& skin) {
    return platform::textOfPath(skin.filename()) ? skin.filename() : files::path("skin on stage");
}

} // namespace

Stage::Stage(const files::path& folder, const files::path& library, const files::path& skin) try
    : original_(skin) {
    const files::path stage = folder / "stage";
    files::create_directory(stage);
    library_ = stage / library.filename();
    skin_ = stage / nameInStage(skin);
    linkEverythingBeside(library, stage);
    isSkinLinked_ = linkSkin(skin, skin_);
    // The library looks around where its own file really is, so it cannot be a link.
    files::copy_file(library, library_);
    desk::keepSettingsIn((folder / "settings").string());
    const auto name = platform::textOfPath(skin_.filename());
    if (!name || !platform::writeSetting("SkinName", *name))
        throw ToolError("the skin cannot be chosen in " + folder.string());
} catch (const files::filesystem_error& error) {
    throw ToolError(std::string("the skin cannot be prepared: ") + error.what());
}

void Stage::bringUpToDate() try {
    if (!isSkinLinked_)
        isSkinLinked_ = linkSkin(original_, skin_);
} catch (const files::filesystem_error& error) {
    throw ToolError(std::string("the skin cannot be prepared: ") + error.what());
}

} // namespace tools::window
