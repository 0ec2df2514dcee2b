#include "tools/render/plot.h"

#include "desk/canvas.h"
#include "tools/common/tool_error.h"
#include "tools/render/axis.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace tools::render {

using desk::Align;
using desk::Area;
using desk::Canvas;
using desk::Colour;
using desk::Point;
using desk::TextStyle;

namespace {

constexpr Colour hex(unsigned value) {
    return {((value >> 16) & 0xFF) / 255.0, ((value >> 8) & 0xFF) / 255.0, (value & 0xFF) / 255.0};
}

// Slate ink on warm paper; amber stands for left and slate blue for right wherever they appear.
constexpr Colour kPaper = hex(0xFAF6EE);
constexpr Colour kSheet = hex(0xFFFDF9);
constexpr Colour kInk = hex(0x2B3640);
constexpr Colour kFaintInk = hex(0x6C757D);
constexpr Colour kRule = hex(0xE7E0D3);
constexpr Colour kZeroRule = hex(0xC9C1B2);
constexpr Colour kDryTone = hex(0x87919A);
constexpr Colour kAmber = hex(0xD68A1E);
constexpr Colour kSlateBlue = hex(0x47699B);

constexpr double kLeftEdge = 104.0;
constexpr double kRightEdge = kPictureWidth - 56.0;
constexpr double kAxisNameX = 44.0;

constexpr TextStyle kTitleStyle{30.0, kInk, true, Align::left};
constexpr TextStyle kSettingsStyle{16.0, kFaintInk, false, Align::left};
constexpr TextStyle kHeadingStyle{15.0, kInk, true, Align::left};
constexpr TextStyle kRemarkStyle{14.0, kFaintInk, false, Align::left};
constexpr TextStyle kMarkStyle{13.0, kFaintInk, false, Align::right};
constexpr TextStyle kAxisStyle{14.0, kInk, false, Align::centre};
constexpr TextStyle kFootnoteStyle{12.5, kFaintInk, false, Align::left};

/// A time axis along the width of the picture.
struct TimeAxis {
    double seconds = 1.0;

    double x(double at) const { return kLeftEdge + (kRightEdge - kLeftEdge) * at / seconds; }
    bool isInMilliseconds() const { return seconds < 2.0; }
    double inUnit(double at) const { return isInMilliseconds() ? at * 1000.0 : at; }
    const char* unit() const { return isInMilliseconds() ? "ms" : "s"; }
};

class PictureDrawing {
  public:
    explicit PictureDrawing(const Picture& picture)
        : picture_(picture), canvas_(kPictureWidth, kPictureHeight, kPaper),
          scale_(scaleFor(*picture.outlines)), axis_{shownSeconds()} {}

    Canvas& draw() {
        drawHead();
        const double waveBottom = picture_.hasTaps ? 564.0 : 806.0;
        drawWaves(waveBottom);
        if (picture_.hasTaps)
            drawTaps({kLeftEdge, 656.0, kRightEdge, 806.0});
        canvas_.text(canvas_.fitted(picture_.footnote, kFootnoteStyle, kRightEdge - kLeftEdge),
                     {kLeftEdge, kPictureHeight - 18.0}, kFootnoteStyle);
        return canvas_;
    }

  private:
    double framesToSeconds(std::int64_t frames) const {
        return static_cast<double>(frames) / picture_.sampleRate;
    }
    static double scaleFor(const Outlines& outlines) {
        return roundUp(std::max({outlines.dry.peak(), outlines.wet.peak(), 0.001f}));
    }

    double wholeSeconds() const {
        const auto frames = std::max(picture_.outlines->dry.frames(), picture_.outlines->wet.frames());
        return framesToSeconds(std::max<std::int64_t>(frames, 1));
    }

    /// The whole sound, or without its end if that is long and no more than a line.
    double shownSeconds() const {
        const auto visible = static_cast<float>(scale_ * 0.004);
        const double last = framesToSeconds(
            std::max(picture_.outlines->dry.frames(), picture_.outlines->wet.lastReaching(visible)));
        return last * 1.1 < wholeSeconds() / 1.5 ? last * 1.1 : wholeSeconds();
    }

    std::string outputRemark() const {
        if (axis_.seconds >= wholeSeconds())
            return "output";
        return "output; it continues until " + axisText(wholeSeconds(), 1) + " s, too quiet to see";
    }

    void drawHead() {
        const double legendWidth = drawLegend();
        const double width = kRightEdge - kLeftEdge - legendWidth - 40.0;
        canvas_.text(canvas_.fitted(picture_.title, kTitleStyle, width), {kLeftEdge, 58.0}, kTitleStyle);
        canvas_.text(canvas_.fitted(picture_.settings, kSettingsStyle, kRightEdge - kLeftEdge),
                     {kLeftEdge, 88.0}, kSettingsStyle);
    }

    /// From the right edge leftwards. Gives the width that it took.
    double drawLegend() {
        struct Entry {
            const char* name;
            Colour colour;
        };
        std::vector<Entry> entries = {{"wet, right", kSlateBlue}, {"wet, left", kAmber}, {"dry", kDryTone}};
        if (!picture_.isStereo)
            entries = {{"wet", kAmber}, {"dry", kDryTone}};
        double x = kRightEdge;
        for (const Entry& entry : entries) {
            x -= canvas_.textWidth(entry.name, kRemarkStyle);
            canvas_.text(entry.name, {x, 57.0}, kRemarkStyle);
            x -= 20.0;
            canvas_.fill({x, 46.0, x + 12.0, 58.0}, entry.colour);
            x -= 24.0;
        }
        return kRightEdge - x;
    }

    struct Lane {
        const char* heading;
        std::string remark;
        const Waveform* wave;
        int side; ///< 0 left, 1 right, 2 both
        Colour colour;
    };

    void drawWaves(double bottom) {
        const Waveform& dry = picture_.outlines->dry;
        const Waveform& wet = picture_.outlines->wet;
        std::vector<Lane> lanes = {{"Dry", "input", &dry, 2, kDryTone}};
        if (picture_.isStereo) {
            lanes.push_back({"Dry and wet, left", outputRemark(), &wet, 0, kAmber});
            lanes.push_back({"Dry and wet, right", "", &wet, 1, kSlateBlue});
        } else {
            lanes.push_back({"Dry and wet", outputRemark(), &wet, 2, kAmber});
        }
        const double top = 146.0, gap = 38.0;
        const auto count = static_cast<double>(lanes.size());
        const double height = (bottom - top - (count - 1.0) * gap) / count;
        for (std::size_t i = 0; i < lanes.size(); ++i) {
            const double laneTop = top + static_cast<double>(i) * (height + gap);
            drawLane(lanes[i], {kLeftEdge, laneTop, kRightEdge, laneTop + height});
        }
        canvas_.textUpwards("level (1 is full scale)", {kAxisNameX, (top + bottom) / 2.0}, kAxisStyle);
        labelInputEnd(top);
        drawTimeMarks(axis_, bottom, std::string("time (") + axis_.unit() + ")");
    }

    void labelInputEnd(double top) {
        const std::string label = "end of the input";
        const double x = axis_.x(framesToSeconds(picture_.outlines->dry.frames())) + 8.0;
        if (x + canvas_.textWidth(label, kFootnoteStyle) < kRightEdge)
            canvas_.text(label, {x, top + 17.0}, kFootnoteStyle);
    }

    void drawPanel(const Area& area, const TimeAxis& axis) {
        canvas_.fill(area, kSheet);
        for (double place : marksFor(axis.inUnit(axis.seconds), 12).places) {
            const double x = axis.x(place / axis.inUnit(1.0));
            canvas_.hairline({x, area.top}, {x, area.bottom}, kRule);
        }
    }

    void drawHeading(const Area& area, const std::string& heading, const std::string& remark) {
        canvas_.text(heading, {area.left, area.top - 10.0}, kHeadingStyle);
        canvas_.text(remark, {area.left + canvas_.textWidth(heading, kHeadingStyle) + 10.0, area.top - 10.0},
                     kRemarkStyle);
    }

    void drawLane(const Lane& lane, const Area& area) {
        drawPanel(area, axis_);
        drawHeading(area, lane.heading, lane.remark);
        const double middle = (area.top + area.bottom) / 2.0;
        const auto y = [&](double level) { return middle - level / scale_ * area.height() / 2.0; };
        const int decimals = marksFor(scale_, 1).decimals;
        for (double level : {scale_, 0.0, -scale_}) {
            canvas_.hairline({area.left, y(level)}, {area.right, y(level)}, level == 0.0 ? kZeroRule : kRule);
            canvas_.text(axisText(level, level == 0.0 ? 0 : decimals), {area.left - 12.0, y(level) + 4.5},
                         kMarkStyle);
        }
        for (double level : {1.0, -1.0})
            if (scale_ > 1.0)
                canvas_.dashedHairline({area.left, y(level)}, {area.right, y(level)}, kZeroRule);
        drawOutline(lane, area, y);
        drawInputEnd(area);
    }

    template <typename LevelToY>
    void drawOutline(const Lane& lane, const Area& area, const LevelToY& y) {
        const double last = std::min(axis_.x(framesToSeconds(lane.wave->frames())), area.right);
        const double framesEach = axis_.seconds * picture_.sampleRate / area.width();
        std::vector<Point> upper, lower;
        for (double x = area.left; x < last; x += 1.0) {
            const double first = (x - area.left) * framesEach;
            const Extremes extremes = lane.wave->between(first, first + framesEach);
            const auto [low, high] = ofSide(extremes, lane.side);
            // Half a pixel each way keeps silence visible as a line.
            upper.push_back({x + 0.5, y(high) - 0.5});
            lower.push_back({x + 0.5, y(low) + 0.5});
        }
        upper.insert(upper.end(), lower.rbegin(), lower.rend());
        canvas_.fill(upper, lane.colour);
    }

    struct Range {
        double low, high;
    };
    static Range ofSide(const Extremes& extremes, int side) {
        if (side < 2)
            return {extremes.lowest[side], extremes.highest[side]};
        return {std::min(extremes.lowest[0], extremes.lowest[1]),
                std::max(extremes.highest[0], extremes.highest[1])};
    }

    void drawInputEnd(const Area& area) {
        const double x = axis_.x(framesToSeconds(picture_.outlines->dry.frames()));
        if (x < area.right - 1.0)
            canvas_.dashedHairline({x, area.top}, {x, area.bottom}, kFaintInk);
    }

    void drawTimeMarks(const TimeAxis& axis, double y, const std::string& name) {
        const Marks marks = marksFor(axis.inUnit(axis.seconds), 12);
        TextStyle style = kMarkStyle;
        style.align = Align::centre;
        for (double place : marks.places)
            canvas_.text(axisText(place, marks.decimals), {axis.x(place / axis.inUnit(1.0)), y + 20.0},
                         style);
        canvas_.text(name, {(kLeftEdge + kRightEdge) / 2.0, y + 42.0}, kAxisStyle);
    }

    /// The same axis as above where the pattern fills a good part of it, so that a tap stands under its echo;
    /// else one of its own.
    TimeAxis patternAxis() const {
        const double whole = axis_.seconds;
        const double last = picture_.taps.empty() ? whole : picture_.taps.back().seconds;
        if (last <= whole && last > whole / 3.0)
            return {whole};
        return {std::max(last * 1.04, 0.001)};
    }

    void drawTaps(const Area& area) {
        const TimeAxis axis = patternAxis();
        double loudest = 0.001;
        for (const Tap& tap : picture_.taps)
            loudest = std::max<double>(loudest, std::abs(tap.level));
        const double scale = roundUp(loudest);
        drawPanel(area, axis);
        drawHeading(area, "Echoes", tapsRemark());
        const auto y = [&](double level) { return area.bottom - level / scale * (area.height() - 8.0); };
        const int decimals = marksFor(scale, 2).decimals;
        for (double part : {0.0, 0.5, 1.0}) {
            canvas_.hairline({area.left, y(scale * part)}, {area.right, y(scale * part)},
                             part == 0.0 ? kZeroRule : kRule);
            canvas_.text(axisText(scale * part, part == 0.0 ? 0 : decimals),
                         {area.left - 12.0, y(scale * part) + 4.5}, kMarkStyle);
        }
        canvas_.textUpwards("level", {kAxisNameX, (area.top + area.bottom) / 2.0}, kAxisStyle);
        const double stem = stemWidth(axis);
        for (const Tap& tap : picture_.taps) {
            const Point top{axis.x(tap.seconds), y(std::abs(tap.level))};
            const Colour colour = tap.isRight ? kSlateBlue : kAmber;
            canvas_.line({top.x, area.bottom}, top, colour, stem);
            canvas_.dot(top, stem * 1.6, colour);
        }
        drawTimeMarks(axis, area.bottom, std::string("delay of the echo (") + axis.unit() + ")");
    }

    std::string tapsRemark() const {
        std::string count = std::to_string(picture_.taps.size());
        if (picture_.tapsAsked > 0 && picture_.taps.size() != static_cast<std::size_t>(picture_.tapsAsked))
            count += " of " + std::to_string(picture_.tapsAsked) + " are audible";
        return count + ", before \"Stereo\" mixes left and right; level 1 is as loud as the input";
    }

    /// Thin enough for the closest two taps to stand apart, within reason.
    double stemWidth(const TimeAxis& axis) const {
        double width = 2.6;
        for (std::size_t i = 1; i < picture_.taps.size(); ++i) {
            const double apart = axis.x(picture_.taps[i].seconds) - axis.x(picture_.taps[i - 1].seconds);
            width = std::min(width, apart * 0.4);
        }
        return std::max(width, 1.2);
    }

    const Picture& picture_;
    Canvas canvas_;
    double scale_;  ///< the level at the lanes' edges
    TimeAxis axis_; ///< of the lanes
};

} // namespace

void drawPicture(const Picture& picture, const std::filesystem::path& path,
                 const std::filesystem::path& target) {
    PictureDrawing drawing(picture);
    try {
        drawing.draw().writePng(path);
    } catch (const std::runtime_error& error) {
        throw ToolError(target.string() + " cannot be written: " + error.what());
    }
}

} // namespace tools::render
