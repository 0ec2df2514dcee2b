#include "desk/canvas.h"

#include <windows.h>

// Needs what windows.h declares.
#include <gdiplus.h>

#include <cmath>
#include <cstring>
#include <stdexcept>

namespace desk {

namespace {

/// The first of these that there is. They have the same widths as the typeface on the other system, so that
/// both lay out alike; systems that stand in for Windows may have the second alone.
constexpr const wchar_t* kTypefaces[] = {L"Arial", L"Liberation Sans"};

/// The kind of file, by Windows' own name for it.
constexpr CLSID kPngEncoder = {0x557cf406, 0x1a04, 0x11d3, {0x9a, 0x73, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};

/// Drawing is a part of Windows that has to be started. It runs until the program ends.
void startDrawing() {
    static const Gdiplus::Status started = [] {
        const Gdiplus::GdiplusStartupInput input;
        ULONG_PTR token = 0;
        return Gdiplus::GdiplusStartup(&token, &input, nullptr);
    }();
    if (started != Gdiplus::Ok)
        throw std::runtime_error("this system cannot draw");
}

const char* reason(Gdiplus::Status status) {
    switch (status) {
    case Gdiplus::OutOfMemory:
        return "out of memory";
    case Gdiplus::AccessDenied:
    case Gdiplus::Win32Error:
        return "error while writing to output stream";
    default:
        return "the picture could not be made";
    }
}

void demand(Gdiplus::Status status) {
    if (status != Gdiplus::Ok)
        throw std::runtime_error(reason(status));
}

std::wstring wide(const std::string& words) {
    const int size = static_cast<int>(words.size());
    std::wstring text(
        static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, words.data(), size, nullptr, 0)), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, words.data(), size, text.data(), static_cast<int>(text.size()));
    return text;
}

BYTE part(double value) {
    return static_cast<BYTE>(std::lround(value * 255.0));
}

Gdiplus::Color coloured(Colour colour) {
    return {part(colour.red), part(colour.green), part(colour.blue)};
}

Gdiplus::PointF placed(Point point) {
    return {static_cast<float>(point.x), static_cast<float>(point.y)};
}

void copyRows(const Picture& picture, const Gdiplus::BitmapData& sheet) {
    const std::uint8_t* from = picture.rgb.data();
    for (int y = 0; y < picture.height; ++y) {
        BYTE* to = static_cast<BYTE*>(sheet.Scan0) + static_cast<std::ptrdiff_t>(y) * sheet.Stride;
        for (int x = 0; x < picture.width; ++x, from += 3, to += 4) {
            const BYTE pixel[] = {from[2], from[1], from[0], 0xFF};
            std::memcpy(to, pixel, sizeof pixel);
        }
    }
}

/// `sheet` must have the picture's size.
void copyInto(Gdiplus::Bitmap& sheet, const Picture& picture) {
    const Gdiplus::Rect whole(0, 0, picture.width, picture.height);
    Gdiplus::BitmapData rows;
    demand(sheet.LockBits(&whole, Gdiplus::ImageLockModeWrite, PixelFormat32bppRGB, &rows));
    copyRows(picture, rows);
    demand(sheet.UnlockBits(&rows));
}

std::unique_ptr<Gdiplus::FontFamily> findTypeface() {
    for (const wchar_t* name : kTypefaces)
        if (auto family = std::make_unique<Gdiplus::FontFamily>(name); family->IsAvailable())
            return family;
    const Gdiplus::InstalledFontCollection all;
    auto family = std::make_unique<Gdiplus::FontFamily>();
    INT found = 0;
    if (all.GetFamilies(1, family.get(), &found) != Gdiplus::Ok || found < 1)
        throw std::runtime_error("this system has no typeface to write with");
    return family;
}

/// The typeface in one size, and where its base line lies.
class Letters {
  public:
    Letters(const Gdiplus::FontFamily& family, const TextStyle& style)
        : style_(style.isBold ? Gdiplus::FontStyleBold : Gdiplus::FontStyleRegular),
          font_(&family, static_cast<float>(style.size), style_, Gdiplus::UnitPixel),
          ascent_(style.size * family.GetCellAscent(style_) / family.GetEmHeight(style_)) {}

    const Gdiplus::Font& font() const { return font_; }
    /// From the top of a line of text to its base line, in pixels.
    double ascent() const { return ascent_; }

  private:
    INT style_;
    Gdiplus::Font font_;
    double ascent_;
};

/// Text with nothing around it, blanks at its end included.
class Layout : public Gdiplus::StringFormat {
  public:
    Layout() : Gdiplus::StringFormat(Gdiplus::StringFormat::GenericTypographic()) {
        SetFormatFlags(GetFormatFlags() | Gdiplus::StringFormatFlagsMeasureTrailingSpaces |
                       Gdiplus::StringFormatFlagsNoWrap);
    }
};

} // namespace

class Canvas::System {
  public:
    System(int width, int height)
        : sheet(width, height, PixelFormat32bppRGB), pen(&sheet), typeface(findTypeface()) {
        demand(sheet.GetLastStatus());
        demand(pen.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias));
        // Coordinates count from a pixel's corner, not from its middle.
        demand(pen.SetPixelOffsetMode(Gdiplus::PixelOffsetModeHalf));
        demand(pen.SetTextRenderingHint(Gdiplus::TextRenderingHintAntiAlias));
    }

    Gdiplus::Bitmap sheet;
    Gdiplus::Graphics pen;
    std::unique_ptr<Gdiplus::FontFamily> typeface;
};

Canvas::Canvas(int width, int height, Colour paper) {
    startDrawing();
    system_ = std::make_unique<System>(width, height);
    system_->pen.Clear(coloured(paper));
}

Canvas::Canvas(const Picture& picture) {
    startDrawing();
    system_ = std::make_unique<System>(picture.width, picture.height);
    copyInto(system_->sheet, picture);
}

Canvas::~Canvas() = default;
Canvas::Canvas(Canvas&&) noexcept = default;

void Canvas::stroke(Point from, Point to, Colour colour, double width, Stroke kind) {
    Gdiplus::Pen ink(coloured(colour), static_cast<float>(width));
    const float dashes[] = {4.0f, 4.0f};
    if (kind == Stroke::dashed)
        ink.SetDashPattern(dashes, 2);
    system_->pen.DrawLine(&ink, placed(from), placed(to));
}

void Canvas::dot(Point centre, double radius, Colour colour) {
    const Gdiplus::SolidBrush ink(coloured(colour));
    system_->pen.FillEllipse(&ink, static_cast<float>(centre.x - radius),
                             static_cast<float>(centre.y - radius), static_cast<float>(2.0 * radius),
                             static_cast<float>(2.0 * radius));
}

void Canvas::fill(const Area& area, Colour colour) {
    const Gdiplus::SolidBrush ink(coloured(colour));
    system_->pen.FillRectangle(&ink, static_cast<float>(area.left), static_cast<float>(area.top),
                               static_cast<float>(area.width()), static_cast<float>(area.height()));
}

void Canvas::fill(const std::vector<Point>& outline, Colour colour) {
    std::vector<Gdiplus::PointF> corners;
    corners.reserve(outline.size());
    for (const Point& point : outline)
        corners.push_back(placed(point));
    const Gdiplus::SolidBrush ink(coloured(colour));
    system_->pen.FillPolygon(&ink, corners.data(), static_cast<INT>(corners.size()),
                             Gdiplus::FillModeWinding);
}

void Canvas::write(const std::string& words, Point at, double offset, const TextStyle& style,
                   Direction direction) {
    const Letters letters(*system_->typeface, style);
    const Layout layout;
    const Gdiplus::SolidBrush ink(coloured(style.colour));
    const std::wstring text = wide(words);
    const Gdiplus::GraphicsState before = system_->pen.Save();
    system_->pen.TranslateTransform(static_cast<float>(at.x), static_cast<float>(at.y));
    if (direction == Direction::upwards)
        system_->pen.RotateTransform(-90.0f);
    system_->pen.DrawString(text.c_str(), static_cast<INT>(text.size()), &letters.font(),
                            placed({offset, -letters.ascent()}), &layout, &ink);
    system_->pen.Restore(before);
}

double Canvas::textWidth(const std::string& words, const TextStyle& style) {
    const Letters letters(*system_->typeface, style);
    const Layout layout;
    const std::wstring text = wide(words);
    Gdiplus::RectF bounds;
    system_->pen.MeasureString(text.c_str(), static_cast<INT>(text.size()), &letters.font(),
                               Gdiplus::PointF(0.0f, 0.0f), &layout, &bounds);
    return static_cast<double>(bounds.Width);
}

void Canvas::writePng(const std::filesystem::path& file) {
    demand(system_->sheet.Save(file.c_str(), &kPngEncoder, nullptr));
}

void writePng(const Picture& picture, const std::filesystem::path& file) {
    startDrawing();
    Gdiplus::Bitmap sheet(picture.width, picture.height, PixelFormat32bppRGB);
    demand(sheet.GetLastStatus());
    copyInto(sheet, picture);
    demand(sheet.Save(file.c_str(), &kPngEncoder, nullptr));
}

} // namespace desk
