#include "desk/canvas.h"

#include <cmath>

namespace desk {

namespace {

/// The middle of the pixel that a coordinate falls into.
double pixelMiddle(double coordinate) {
    return std::floor(coordinate) + 0.5;
}

Point pixelMiddle(Point point) {
    return {pixelMiddle(point.x), pixelMiddle(point.y)};
}

} // namespace

void Canvas::hairline(Point from, Point to, Colour colour) {
    stroke(pixelMiddle(from), pixelMiddle(to), colour, 1.0, Stroke::whole);
}

void Canvas::dashedHairline(Point from, Point to, Colour colour) {
    stroke(pixelMiddle(from), pixelMiddle(to), colour, 1.0, Stroke::dashed);
}

void Canvas::line(Point from, Point to, Colour colour, double width) {
    stroke(from, to, colour, width, Stroke::whole);
}

void Canvas::text(const std::string& words, Point at, const TextStyle& style) {
    write(words, at, offset(words, style), style, Direction::right);
}

void Canvas::textUpwards(const std::string& words, Point at, const TextStyle& style) {
    write(words, at, offset(words, style), style, Direction::upwards);
}

double Canvas::offset(const std::string& words, const TextStyle& style) {
    switch (style.align) {
    case Align::left:
        return 0.0;
    case Align::centre:
        return -textWidth(words, style) / 2.0;
    case Align::right:
        return -textWidth(words, style);
    }
    return 0.0;
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

} // namespace desk
