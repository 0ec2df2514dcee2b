// A canvas with the few drawing operations that the tools' pictures need, drawn by the system and written as
// a PNG. The origin is the top left corner, a unit is a pixel, edges are anti-aliased.
#pragma once

#include "desk/picture.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace desk {

/// Parts from 0 to 1.
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
    double size; ///< of the typeface, in pixels
    Colour colour;
    bool isBold = false;
    Align align = Align::left;
};

/// On one thread. Texts are UTF-8.
class Canvas {
  public:
    /// Throws std::runtime_error if there is no memory for a sheet of this size, or no typeface.
    Canvas(int width, int height, Colour paper);
    /// A copy of the picture to draw on. Throws the same.
    explicit Canvas(const Picture& picture);
    ~Canvas();
    Canvas(Canvas&&) noexcept;

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

    /// Throws std::runtime_error with the reason alone.
    void writePng(const std::filesystem::path& file);

  private:
    enum class Stroke { whole, dashed };
    void stroke(Point from, Point to, Colour colour, double width, Stroke kind);
    enum class Direction { right, upwards };
    /// `offset` pixels along the line from `at`.
    void write(const std::string& words, Point at, double offset, const TextStyle& style,
               Direction direction);
    double offset(const std::string& words, const TextStyle& style);

    class System;
    std::unique_ptr<System> system_;
};

/// Writes a picture as a PNG. Throws std::runtime_error with the reason alone.
void writePng(const Picture& picture, const std::filesystem::path& file);

} // namespace desk
