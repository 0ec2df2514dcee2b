// A sheet of paper with the few strokes that the picture needs, over cairo.
#pragma once

#include <cairo.h>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace tools::render {

struct Colour {
    double red, green, blue;
};

struct Point {
    double x, y;
};

/// A rectangle by its edges, in pixels from the top left.
struct Area {
    double left, top, right, bottom;

    double width() const { return right - left; }
    double height() const { return bottom - top; }
};

enum class Align { left, centre, right };

struct TextStyle {
    double size;
    Colour colour;
    bool isBold = false;
    Align align = Align::left;
};

class Canvas {
  public:
    Canvas(int width, int height, Colour paper);

    /// A line one pixel wide, sharp where it is upright or level.
    void hairline(Point from, Point to, Colour colour);
    void dashedHairline(Point from, Point to, Colour colour);
    void line(Point from, Point to, Colour colour, double width);
    void dot(Point centre, double radius, Colour colour);
    void fill(const Area& area, Colour colour);
    void fill(const std::vector<Point>& outline, Colour colour);
    /// `at` is on the base line.
    void text(const std::string& words, Point at, const TextStyle& style);
    /// The same, read from the bottom to the top.
    void textUpwards(const std::string& words, Point at, const TextStyle& style);
    double textWidth(const std::string& words, const TextStyle& style);
    /// Cut with an ellipsis to what fits into `width`.
    std::string fitted(const std::string& words, const TextStyle& style, double width);

    /// Throws ToolError, naming `target`.
    void writePng(const std::filesystem::path& path, const std::filesystem::path& target);

  private:
    void use(Colour colour);
    void use(const TextStyle& style);

    struct Destroy {
        void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
        void operator()(cairo_t* context) const { cairo_destroy(context); }
    };
    std::unique_ptr<cairo_surface_t, Destroy> surface_;
    std::unique_ptr<cairo_t, Destroy> context_;
};

} // namespace tools::render
