#include "tools/window/png_file.h"

#include "tools/common/output_file.h"
#include "tools/common/tool_error.h"

#include <cairo.h>
#include <cstring>
#include <memory>

namespace tools::window {

namespace {

struct Destroy {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
using Surface = std::unique_ptr<cairo_surface_t, Destroy>;

Surface surfaceOf(const platform::Picture& picture) {
    Surface surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, picture.width, picture.height));
    unsigned char* row = cairo_image_surface_get_data(surface.get());
    if (!row)
        return surface;
    const auto stride = static_cast<std::size_t>(cairo_image_surface_get_stride(surface.get()));
    const std::uint8_t* from = picture.rgb.data();
    for (int y = 0; y < picture.height; ++y, row += stride)
        for (int x = 0; x < picture.width; ++x, from += 3) {
            const std::uint32_t pixel = static_cast<std::uint32_t>(from[0] << 16 | from[1] << 8 | from[2]);
            std::memcpy(row + std::size_t{4} * static_cast<std::size_t>(x), &pixel, sizeof pixel);
        }
    cairo_surface_mark_dirty(surface.get());
    return surface;
}

} // namespace

void writePng(const platform::Picture& picture, const std::filesystem::path& file) {
    OutputFile output(file);
    const Surface surface = surfaceOf(picture);
    const cairo_status_t status =
        cairo_surface_write_to_png(surface.get(), output.temporary().string().c_str());
    if (status != CAIRO_STATUS_SUCCESS)
        throw ToolError(file.string() + " cannot be written: " + cairo_status_to_string(status));
    output.commit();
}

} // namespace tools::window
