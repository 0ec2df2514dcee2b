// In place of the decoder of pictures, which is the system's and takes longer than all that is tried here:
// each file is read once, and by the toolkit, which knows PNG. No input changes what is in a picture.
#include "platform/folders.h"
#include "toolkit/toolkit.h"

#include "vstgui/lib/platform/iplatformbitmap.h"
#include "vstgui/lib/platform/platformfactory.h"

#include <map>

VSTGUI::PlatformBitmapPtr toolkit::readBitmap(const std::string& path, PictureAllowance&) {
    static std::map<std::string, VSTGUI::PlatformBitmapPtr> read;
    const auto [found, isNew] = read.try_emplace(path);
    if (isNew)
        found->second = VSTGUI::getPlatformFactory().createBitmapFromPath(path.c_str());
    return found->second;
}

std::optional<std::string> toolkit::findPicture(const std::string& folder, const std::string& name) {
    return platform::findPath(folder, name);
}
