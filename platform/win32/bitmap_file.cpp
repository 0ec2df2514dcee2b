// Pictures are decoded by the toolkit, that is, by the system's own decoders.

#include "platform/files.h"
#include "platform/toolkit.h"

#include "picture_size.h"

#include "vstgui/lib/cbitmap.h"
#include "vstgui/lib/cpoint.h"
#include "vstgui/lib/platform/iplatformbitmap.h"
#include "vstgui/lib/platform/platform_win32.h"
#include "vstgui/lib/platform/platformfactory.h"
#include "vstgui/lib/platform/win32/direct2d/d2dbitmap.h"
#include "vstgui/lib/platform/win32/win32factory.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <vector>
#include <wincodec.h>

namespace platform {

namespace {

constexpr std::int64_t longestSide = 32767;
constexpr std::int64_t mostPixels = std::int64_t{1} << 26;

bool isDrawable(const std::optional<PictureSize>& size) {
    return size && size->width > 0 && size->height > 0 && size->width <= longestSide &&
           size->height <= longestSide && size->width * size->height <= mostPixels;
}

PictureSize sizeOf(const VSTGUI::IPlatformBitmap& bitmap) {
    return {static_cast<std::int64_t>(bitmap.getSize().x), static_cast<std::int64_t>(bitmap.getSize().y)};
}

/// Whether every row can be decoded. The toolkit decodes when it draws, and a file that turns out to be torn
/// would then be a picture with a hole in it.
bool isWhole(const VSTGUI::PlatformBitmapPtr& bitmap) {
    auto* const picture = dynamic_cast<VSTGUI::D2DBitmap*>(bitmap.get());
    IWICBitmapSource* const source = picture ? picture->getSource() : nullptr;
    if (!source)
        return false;
    const auto width = static_cast<INT>(picture->getSize().x),
               height = static_cast<INT>(picture->getSize().y);
    std::vector<BYTE> row(static_cast<std::size_t>(width) * 4);
    for (INT y = 0; y < height; ++y) {
        const WICRect part = {0, y, width, 1};
        const auto size = static_cast<UINT>(row.size());
        if (FAILED(source->CopyPixels(&part, size, size, row.data())))
            return false;
    }
    return true;
}

} // namespace

VSTGUI::PlatformBitmapPtr readBitmap(const std::string& path) {
    const auto* const factory = VSTGUI::getPlatformFactory().asWin32Factory();
    // No drawable picture is larger, whatever it is kept in.
    constexpr std::size_t largestFile = std::numeric_limits<std::uint32_t>::max();
    const auto file = readWholeFile(path, largestFile);
    if (!factory->getWICImagingFactory() || !file || !isDrawable(promisedSize(*file)))
        return nullptr;
    auto bitmap = factory->createBitmapFromMemory(file->data(), static_cast<std::uint32_t>(file->size()));
    return bitmap && isDrawable(sizeOf(*bitmap)) && isWhole(bitmap) ? bitmap : nullptr;
}

VSTGUI::SharedPointer<VSTGUI::CBitmap> makeWindowBitmap(const VSTGUI::PlatformBitmapPtr& pixels,
                                                        std::shared_ptr<DisplayMemory>) {
    return VSTGUI::makeOwned<VSTGUI::CBitmap>(pixels);
}

} // namespace platform
