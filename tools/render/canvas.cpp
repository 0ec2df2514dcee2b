#include "tools/render/canvas.h"

#include "tools/common/tool_error.h"

#include <cmath>
#include <numbers>

namespace tools::render {

namespace {

constexpr const char* typeface = "Liberation Sans";

/// The middle of the pixel that a coordinate falls into.
double pixelMiddle(double coordinate) {
    return std::floor(coordinate) + 0.5;
}

} // namespace

Canvas::Canvas(int width, int height, Colour paper)
    : surface_(cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height)),
      context_(cairo_create(surface_.get())) {
    use(paper);
    cairo_paint(context_.get());
}

void Canvas::hairline(Point from, Point to, Colour colour) {
    line({pixelMiddle(from.x), pixelMiddle(from.y)}, {pixelMiddle(to.x), pixelMiddle(to.y)}, colour, 1.0);
}

void Canvas::dashedHairline(Point from, Point to, Colour colour) {
    const double dashes[] = {4.0, 4.0};
    cairo_set_dash(context_.get(), dashes, 2, 0.0);
    hairline(from, to, colour);
    cairo_set_dash(context_.get(), nullptr, 0, 0.0);
}

void Canvas::line(Point from, Point to, Colour colour, double width) {
    use(colour);
    cairo_set_line_width(context_.get(), width);
    cairo_move_to(context_.get(), from.x, from.y);
    cairo_line_to(context_.get(), to.x, to.y);
    cairo_stroke(context_.get());
}

void Canvas::dot(Point centre, double radius, Colour colour) {
    use(colour);
    cairo_arc(context_.get(), centre.x, centre.y, radius, 0.0, 2.0 * std::numbers::pi);
    cairo_fill(context_.get());
}

void Canvas::fill(const Area& area, Colour colour) {
    use(colour);
    cairo_rectangle(context_.get(), area.left, area.top, area.width(), area.height());
    cairo_fill(context_.get());
}

void Canvas::fill(const std::vector<Point>& outline, Colour colour) {
    use(colour);
    for (const Point& point : outline)
        cairo_line_to(context_.get(), point.x, point.y);
    cairo_close_path(context_.get());
    cairo_fill(context_.get());
}

void Canvas::text(const std::string& words, Point at, const TextStyle& style) {
    use(style);
    const double width = style.align == Align::left ? 0.0 : textWidth(words, style);
    cairo_move_to(context_.get(), at.x - (style.align == Align::centre ? width / 2.0 : width), at.y);
    cairo_show_text(context_.get(), words.c_str());
    cairo_new_path(context_.get());
}

void Canvas::textUpwards(const std::string& words, Point at, const TextStyle& style) {
    cairo_save(context_.get());
    cairo_translate(context_.get(), at.x, at.y);
    cairo_rotate(context_.get(), -std::numbers::pi / 2.0);
    text(words, {0.0, 0.0}, style);
    cairo_restore(context_.get());
}

double Canvas::textWidth(const std::string& words, const TextStyle& style) {
    use(style);
    cairo_text_extents_t extents;
    cairo_text_extents(context_.get(), words.c_str(), &extents);
    return extents.x_advance;
}

std::string Canvas::fitted(const std::string& words, const TextStyle& style, double width) {
    std::string shorter = words;
    while (textWidth(shorter, style) > width) {
        const std::string ellipsis = "\u2026";
        if (shorter.ends_with(ellipsis))
            shorter.resize(shorter.size() - ellipsis.size());
        // A character of UTF-8 goes as a whole.
        while (!shorter.empty() && (shorter.back() & 0xC0) == 0x80)
            shorter.pop_back();
        if (shorter.empty())
            return shorter;
        shorter.pop_back();
        shorter += ellipsis;
    }
    return shorter;
}

void Canvas::writePng(const std::filesystem::path& path, const std::filesystem::path& target) {
    const cairo_status_t status = cairo_surface_write_to_png(surface_.get(), path.string().c_str());
    if (status != CAIRO_STATUS_SUCCESS)
        throw ToolError(target.string() + " cannot be written: " + cairo_status_to_string(status));
}

void Canvas::use(Colour colour) {
    cairo_set_source_rgb(context_.get(), colour.red, colour.green, colour.blue);
}

void Canvas::use(const TextStyle& style) {
    use(style.colour);
    cairo_select_font_face(context_.get(), typeface, CAIRO_FONT_SLANT_NORMAL,
                           style.isBold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(context_.get(), style.size);
}

} // namespace tools::render
