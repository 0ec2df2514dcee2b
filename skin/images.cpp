#include "skin/images.h"

#include "toolkit/toolkit.h"

#include <new>

namespace skin {

namespace {

/// Null if there is no such picture, or no memory for it.
VSTGUI::PlatformBitmapPtr readImage(const std::string& folder, const std::string& name,
                                    toolkit::PictureAllowance& allowance) try {
    const auto path = toolkit::findPicture(folder, name);
    return path ? toolkit::readBitmap(*path, allowance) : nullptr;
} catch (const std::bad_alloc&) {
    return nullptr;
}

} // namespace

VSTGUI::SharedPointer<VSTGUI::CBitmap> loadImage(const std::string& folder, const std::string& name,
                                                 toolkit::PictureAllowance& allowance,
                                                 const std::shared_ptr<toolkit::DisplayMemory>& memory) {
    const auto picture = readImage(folder, name, allowance);
    if (!picture)
        return VSTGUI::makeOwned<MissingImage>();
    if (memory)
        return toolkit::makeWindowBitmap(picture, memory);
    return VSTGUI::makeOwned<VSTGUI::CBitmap>(picture);
}

VSTGUI::SharedPointer<VSTGUI::CBitmap> loadImage(const std::string& folder, const std::string& name) {
    toolkit::PictureAllowance allowance;
    return loadImage(folder, name, allowance);
}

void MissingImage::draw(VSTGUI::CDrawContext*, const VSTGUI::CRect&, const VSTGUI::CPoint&, float) {}

} // namespace skin
