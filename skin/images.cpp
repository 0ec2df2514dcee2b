#include "skin/images.h"

#include "platform/folders.h"
#include "platform/toolkit.h"

namespace skin {

VSTGUI::SharedPointer<VSTGUI::CBitmap> loadImage(const std::string& folder, const std::string& name,
                                                 const std::shared_ptr<platform::DisplayMemory>& memory) {
    if (const auto path = platform::findPath(folder, name))
        if (const auto picture = platform::readBitmap(*path))
            return memory ? platform::makeWindowBitmap(picture, memory)
                          : VSTGUI::makeOwned<VSTGUI::CBitmap>(picture);
    return VSTGUI::makeOwned<MissingImage>();
}

void MissingImage::draw(VSTGUI::CDrawContext*, const VSTGUI::CRect&, const VSTGUI::CPoint&, float) {}

} // namespace skin
