#include "desk/canvas.h"

#include <cairo.h>
#include <cstring>
#include <numbers>
#include <stdexcept>
#include <utility>

namespace desk {

namespace {

constexpr const char* kTypeface = "Liberation Sans";

struct Destroy {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
    void operator()(cairo_t* context) const { cairo_destroy(context); }
};
using Surface = std::unique_ptr<cairo_surface_t, Destroy>;
using Context = std::unique_ptr<cairo_t, Destroy>;

void save(cairo_surface_t* surface, const std::filesystem::path& file) {
    const cairo_status_t status = cairo_surface_write_to_png(surface, file.c_str());
    if (status != CAIRO_STATUS_SUCCESS)
        throw std::runtime_error(cairo_status_to_string(status));
}

Surface surfaceOf(const Picture& picture) {
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

class Canvas::System {
  public:
    explicit System(Surface sheet)
        : surface(std::move(sheet)), owner(cairo_create(surface.get())), context(owner.get()) {
        const cairo_status_t status = cairo_status(context);
        if (status != CAIRO_STATUS_SUCCESS)
            throw std::runtime_error(cairo_status_to_string(status));
    }

    void use(Colour colour) { cairo_set_source_rgb(context, colour.red, colour.green, colour.blue); }

    void use(const TextStyle& style) {
        use(style.colour);
        cairo_select_font_face(context, kTypeface, CAIRO_FONT_SLANT_NORMAL,
                               style.isBold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
        cairo_set_font_size(context, style.size);
    }

    Surface surface;
    Context owner;
    cairo_t* context;
};

Canvas::Canvas(int width, int height, Colour paper)
    : system_(
          std::make_unique<System>(Surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height)))) {
    system_->use(paper);
    cairo_paint(system_->context);
}

Canvas::Canvas(const Picture& picture) : system_(std::make_unique<System>(surfaceOf(picture))) {}

Canvas::~Canvas() = default;
Canvas::Canvas(Canvas&&) noexcept = default;

void Canvas::stroke(Point from, Point to, Colour colour, double width, Stroke kind) {
    const double dashes[] = {4.0, 4.0};
    cairo_set_dash(system_->context, dashes, kind == Stroke::dashed ? 2 : 0, 0.0);
    system_->use(colour);
    cairo_set_line_width(system_->context, width);
    cairo_move_to(system_->context, from.x, from.y);
    cairo_line_to(system_->context, to.x, to.y);
    cairo_stroke(system_->context);
}

void Canvas::dot(Point centre, double radius, Colour colour) {
    system_->use(colour);
    cairo_arc(system_->context, centre.x, centre.y, radius, 0.0, 2.0 * std::numbers::pi);
    cairo_fill(system_->context);
}

void Canvas::fill(const Area& area, Colour colour) {
    system_->use(colour);
    cairo_rectangle(system_->context, area.left, area.top, area.width(), area.height());
    cairo_fill(system_->context);
}

void Canvas::fill(const std::vector<Point>& outline, Colour colour) {
    system_->use(colour);
    for (const Point& point : outline)
        cairo_line_to(system_->context, point.x, point.y);
    cairo_close_path(system_->context);
    cairo_fill(system_->context);
}

void Canvas::write(const std::string& words, Point at, double offset, const TextStyle& style,
                   Direction direction) {
    cairo_save(system_->context);
    cairo_translate(system_->context, at.x, at.y);
    if (direction == Direction::upwards)
        cairo_rotate(system_->context, -std::numbers::pi / 2.0);
    system_->use(style);
    cairo_move_to(system_->context, offset, 0.0);
    cairo_show_text(system_->context, words.c_str());
    cairo_new_path(system_->context);
    cairo_restore(system_->context);
}

double Canvas::textWidth(const std::string& words, const TextStyle& style) {
    system_->use(style);
    cairo_text_extents_t extents;
    cairo_text_extents(system_->context, words.c_str(), &extents);
    return extents.x_advance;
}

void Canvas::writePng(const std::filesystem::path& file) {
    save(system_->surface.get(), file);
}

void writePng(const Picture& picture, const std::filesystem::path& file) {
    save(surfaceOf(picture).get(), file);
}

} // namespace desk
