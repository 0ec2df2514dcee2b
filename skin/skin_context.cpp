#include "skin/skin_context.h"

#include "base/ascii.h"
#include "base/fixed_text.h"
#include "platform/folders.h"
#include "platform/module_folder.h"
#include "platform/settings.h"
#include "skin/images.h"
#include "skin/xml_gui_editor.h"
#include "toolkit/toolkit.h"

#include <algorithm>
#include <optional>
#include <string>

namespace skin {
namespace {

constexpr char kSetting[] = "SkinName";
constexpr char kFirstSkin[] = "Quillon Skin";
constexpr char kFallbackSkin[] = "skin";
constexpr char kSkinFile[] = "skin.xml";

/// The file of the skin that is called so, in any letter case; nothing if there is none, and where a folder
/// that has no path would mean the current one.
std::optional<std::string> skinFile(const std::string& folder, const std::string& name) {
    return folder.empty() ? std::nullopt
                          : platform::findPath(folder, name + platform::kFolderSeparator + kSkinFile);
}

/// For the operations that are given room for `size` bytes.
template <std::size_t size>
void copyInto(char* buffer, const std::string& text) {
    char whole[size];
    base::copyWholeText(whole, text.c_str());
    std::copy_n(whole, size, buffer);
}

/// The folder as it is really spelled, so that every file in it is found; as the name says if there is none.
std::string skinFolder(const std::string& folder, const std::string& name) {
    if (folder.empty())
        return "";
    const auto file = skinFile(folder, name);
    return file ? file->substr(0, file->find_last_of(platform::kFolderSeparator) + 1)
                : folder + name + platform::kFolderSeparator;
}

} // namespace

void skinModuleFolder(char* buffer) {
    copyInto<kPathSize>(buffer, platform::moduleFolder());
}

void skinLoadName(const char* folder, char* name) {
    const auto chosen = platform::readSetting(kSetting);
    // What is too long for a name cannot have been chosen.
    if (!chosen || chosen->size() >= kNameSize)
        return copyInto<kNameSize>(name, kFirstSkin);
    copyInto<kNameSize>(name, skinFile(folder, *chosen) ? *chosen : kFallbackSkin);
}

bool skinSaveName(const char* name) {
    return platform::writeSetting(kSetting, name);
}

void skinScanFolder(const char* folder, xmlGuiEditor* editor) {
    if (!*folder)
        return;
    for (const std::string& entry : platform::listFolder(folder)) {
        // In the very folder, not in one that differs from it in letter case.
        const bool holdsSkin =
            platform::findPath(folder + (platform::kFolderSeparator + entry), kSkinFile).has_value();
        SkinName name;
        if (holdsSkin && base::copyWholeText(name.text, entry.c_str()))
            editor->skinNames.append(name);
    }
}

void skinContextInit(SkinContext* context, void* parent, bool backgroundOnly, xmlGuiEditor* editor) {
    char folder[kPathSize], name[kNameSize];
    skinModuleFolder(folder);
    skinLoadName(folder, name);
    skinScanFolder(folder, editor);
    base::copyWholeText(context->path, skinFolder(folder, name).c_str());
    context->backgroundOnly = backgroundOnly;
    context->parent = parent;
    context->displayMemory = std::make_shared<toolkit::DisplayMemory>(kMostDisplayMemory);
}

VSTGUI::CBitmap* skinGetBitmap(SkinContext* context, const char* name) {
    for (const SkinBitmap& known : context->bitmaps)
        if (base::equalIgnoringCase(known.name, name))
            return known.bitmap;
    const VSTGUI::SharedPointer<VSTGUI::CBitmap> bitmap =
        loadImage(context->path, name, context->pictureAllowance, context->displayMemory);
    SkinBitmap entry;
    base::copyText(entry.name, name);
    entry.bitmap = bitmap.get();
    if (!entry.bitmap || !context->bitmaps.append(entry))
        return nullptr;
    entry.bitmap->remember();
    return entry.bitmap;
}

void skinContextRelease(SkinContext* context) {
    for (const SkinBitmap& known : context->bitmaps)
        known.bitmap->forget();
    context->bitmaps.clear();
    context->constants.clear();
}

} // namespace skin
