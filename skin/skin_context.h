// One pass over a skin: which folder it is read from, its constants so far, and its pictures, each decoded
// once. A skin is a folder beside the plug-in's own file that holds a skin.xml; the person's choice among
// them is a setting of theirs and shared by all instances and hosts.
//
// Everything here runs on the thread that constructs or opens the editor.
#pragma once

#include "skin_language/expression.h"
#include "skin_language/grow_array.h"
#include "toolkit/toolkit.h"

#include <cstddef>
#include <cstdio>
#include <memory>

namespace VSTGUI {
class CBitmap;
}

namespace skin {

class xmlGuiEditor;

/// Room for a path, its NUL included, as long as this system allows. A path that does not fit leads nowhere.
constexpr std::size_t kPathSize = FILENAME_MAX;

/// Room for the name of a skin or of a picture, its NUL included.
constexpr std::size_t kNameSize = 260;

/// What the pictures of one window may keep on the display, in bytes. The delivered skins keep less than
/// 20 MB; beyond the limit pictures are drawn from this process's memory, which is slower.
constexpr std::size_t kMostDisplayMemory = std::size_t{64} << 20;

/// The name of a skin's folder.
struct SkinName {
    char text[kNameSize];
};

/// A picture of this pass.
struct SkinBitmap {
    char name[kNameSize];    ///< as the first tag that asked for it spells it
    VSTGUI::CBitmap* bitmap; ///< holds one reference
};

struct SkinContext {
    GrowArray<SkinBitmap> bitmaps;
    void* parent = nullptr;      ///< the host's window; null in the pass that only measures
    char path[kPathSize] = "";   ///< the skin's folder with a separator behind it
    bool backgroundOnly = false; ///< true in the pass that only measures
    ExprTable constants;
    toolkit::PictureAllowance pictureAllowance;            ///< what the pictures may still cost
    std::shared_ptr<toolkit::DisplayMemory> displayMemory; ///< what the pictures may keep on the display
    bool isWindowMissing = false;                          ///< the display does not know `parent`
};

/// Decides which skin it is, and adds the names of all that there are to the editor's list.
void skinContextInit(SkinContext* context, void* parent, bool backgroundOnly, xmlGuiEditor* editor);

/// Gives the pictures back; those that a control has taken live on.
void skinContextRelease(SkinContext* context);

/// The picture `name` of the skin; the context keeps the reference. A file that is missing or cannot be
/// decoded gives a picture of no size. Null only without memory.
VSTGUI::CBitmap* skinGetBitmap(SkinContext* context, const char* name);

/// Writes the folder of the plug-in's file, with a separator behind it, into kPathSize bytes.
void skinModuleFolder(char* buffer);

/// Adds the name of every skin in `folder` to the editor's list, in the order of the file system.
void skinScanFolder(const char* folder, xmlGuiEditor* editor);

/// Writes the name of the skin to use into kNameSize bytes: the person's choice; "skin" if that has gone from
/// `folder`; "Quillon Skin" if nothing was ever chosen.
void skinLoadName(const char* folder, char* name);

/// Remembers the person's choice. False if it could not be kept.
bool skinSaveName(const char* name);

} // namespace skin
