// Pictures are decoded by gdk-pixbuf; the toolkit's own reader on this system knows PNG alone.

#include "platform/files.h"
#include "platform/folders.h"
#include "toolkit/toolkit.h"

#include "../picture_file.h"

#include "vstgui/lib/cpoint.h"
#include "vstgui/lib/platform/iplatformbitmap.h"
#include "vstgui/lib/platform/linux/cairobitmap.h"

#include <array>
#include <cstdint>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <memory>
#include <sys/stat.h>

namespace toolkit {

namespace {

struct Unref {
    void operator()(void* object) const { g_object_unref(object); }
};
using Loader = std::unique_ptr<GdkPixbufLoader, Unref>;

/// What the file's own header says has been found good before; a decoder that finds another size is wrong.
struct Expected {
    int width, height;
};

/// Asked when a size is known and before memory is taken for it; a size of nothing makes the decoder give up.
void refuseOthers(GdkPixbufLoader* loader, int width, int height, void* expected) {
    const auto& size = *static_cast<const Expected*>(expected);
    if (width > size.width || height > size.height)
        gdk_pixbuf_loader_set_size(loader, 0, 0);
}

/// The picture in the loader once it has seen the whole file; null if that is none. It belongs to the loader.
GdkPixbuf* decode(GdkPixbufLoader* loader, const FileBytes& file, PictureSize promised) {
    Expected expected = {static_cast<int>(promised.width), static_cast<int>(promised.height)};
    g_signal_connect(loader, "size-prepared", G_CALLBACK(refuseOthers), &expected);
    const bool isRead = gdk_pixbuf_loader_write(loader, file.data(), file.size(), nullptr);
    // Wanted in any case: a loader that is let go while open complains on standard error.
    const bool isWhole = gdk_pixbuf_loader_close(loader, nullptr);
    return isRead && isWhole ? gdk_pixbuf_loader_get_pixbuf(loader) : nullptr;
}

/// Where each colour lies in a pixel of the toolkit's.
struct ColourOrder {
    int red, green, blue, alpha;
};

ColourOrder orderOf(VSTGUI::IPlatformBitmapPixelAccess::PixelFormat format) {
    using Access = VSTGUI::IPlatformBitmapPixelAccess;
    switch (format) {
    case Access::kARGB:
        return {1, 2, 3, 0};
    case Access::kRGBA:
        return {0, 1, 2, 3};
    case Access::kABGR:
        return {3, 2, 1, 0};
    case Access::kBGRA:
        break;
    }
    return {2, 1, 0, 3};
}

std::uint8_t premultiplied(std::uint8_t colour, std::uint8_t alpha) {
    return static_cast<std::uint8_t>((colour * alpha + 127) / 255);
}

/// `isMultiplied`: the colours come multiplied with their alpha already.
void copyPixels(const GdkPixbuf* from, bool isMultiplied, VSTGUI::IPlatformBitmapPixelAccess& to) {
    const int width = gdk_pixbuf_get_width(from), height = gdk_pixbuf_get_height(from);
    const int channels = gdk_pixbuf_get_n_channels(from);
    const ColourOrder order = orderOf(to.getPixelFormat());
    for (int y = 0; y < height; ++y) {
        const std::uint8_t* source =
            gdk_pixbuf_read_pixels(from) + std::int64_t{y} * gdk_pixbuf_get_rowstride(from);
        std::uint8_t* target = to.getAddress() + std::int64_t{y} * to.getBytesPerRow();
        for (int x = 0; x < width; ++x, source += channels, target += 4) {
            const std::uint8_t alpha = channels == 4 ? source[3] : std::uint8_t{255};
            const std::uint8_t factor = isMultiplied ? std::uint8_t{255} : alpha;
            target[order.red] = premultiplied(source[0], factor);
            target[order.green] = premultiplied(source[1], factor);
            target[order.blue] = premultiplied(source[2], factor);
            target[order.alpha] = alpha;
        }
    }
}

} // namespace

std::optional<FileBytes> readUpTo(const std::string& path, std::uint64_t limit) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0 || static_cast<std::uint64_t>(status.st_size) > limit)
        return std::nullopt;
    return platform::readWholeFile(path, static_cast<std::size_t>(limit));
}

std::optional<std::string> findPicture(const std::string& folder, const std::string& name) {
    return platform::findPath(folder, name);
}

VSTGUI::PlatformBitmapPtr readBitmap(const std::string& path, PictureAllowance& allowance) {
    const auto file = readPictureFile(path, allowance);
    if (!file)
        return nullptr;
    const Loader loader(gdk_pixbuf_loader_new());
    const GdkPixbuf* picture = decode(loader.get(), *file, *promisedSize(*file));
    if (!picture)
        return nullptr;
    const VSTGUI::CPoint size(gdk_pixbuf_get_width(picture), gdk_pixbuf_get_height(picture));
    // Not from the toolkit's factory, which ends the process when memory runs out.
    const auto bitmap = VSTGUI::makeOwned<VSTGUI::Cairo::Bitmap>(size);
    const auto pixels = bitmap->lockPixels(true);
    if (!pixels)
        return nullptr;
    // Of all formats, the decoder does so for this one.
    copyPixels(picture, isTiff(*file), *pixels);
    return bitmap;
}

} // namespace toolkit
