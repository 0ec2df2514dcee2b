"""A small layer over cairo: colours, text that must be readable, soft light, and film strips.

Everything is drawn from numbers, so the same sources and fonts give the same pictures, byte for byte.
"""

import contextlib
import math
import random
import subprocess

import cairo

SANS = "Liberation Sans"
SERIF = "Liberation Serif"

#: Nothing that is to be read is drawn smaller, in pixels.
SMALLEST_TEXT = 11
#: Nothing that is to be read stands out less from what lies under it.
LEAST_CONTRAST = 4.5

#: A turn of a knob, as the window's toolkit understands the pointer: from half past seven to half past four.
KNOB_START = 0.75 * math.pi
KNOB_RANGE = 1.5 * math.pi


def rgb(colour, alpha=1.0):
    """Red, green, blue and alpha, 0..1, of a colour written as six hexadecimal digits."""
    return (*(int(colour[i : i + 2], 16) / 255 for i in (0, 2, 4)), alpha)


def mix(a, b, share):
    """The colour that lies at `share` of the way from a to b."""
    return "".join(f"{round(p + (q - p) * share):02X}" for p, q in zip(bytes.fromhex(a), bytes.fromhex(b)))


def luminance(colour):
    def linear(channel):
        return channel / 12.92 if channel <= 0.04045 else ((channel + 0.055) / 1.055) ** 2.4

    red, green, blue, _ = rgb(colour)
    return 0.2126 * linear(red) + 0.7152 * linear(green) + 0.0722 * linear(blue)


def contrast(a, b):
    """1 for colours that are alike, 21 for black and white."""
    dark, light = sorted((luminance(a), luminance(b)))
    return (light + 0.05) / (dark + 0.05)


def require_fonts():
    """Fails unless the fonts that the pictures are set in are there: cairo would silently take others."""
    for family in (SANS, SERIF):
        found = subprocess.run(["fc-match", "-f", "%{family}", family], capture_output=True, text=True, check=True)
        if found.stdout != family:
            raise SystemExit(f"The font {family} is missing: install the package fonts-liberation.")


def mean_colour(picture, left, top, right, bottom):
    """The colour that a part of a saved picture has on average."""
    surface = cairo.ImageSurface.create_from_png(str(picture))
    data, stride = surface.get_data(), surface.get_stride()
    rows = [bytes(data[y * stride + 4 * left : y * stride + 4 * right]) for y in range(top, bottom)]
    count = (right - left) * (bottom - top)
    blue, green, red = (round(sum(sum(row[channel::4]) for row in rows) / count) for channel in range(3))
    return f"{red:02X}{green:02X}{blue:02X}"


class Canvas:
    """One picture. `cr` is its cairo context, for whatever this layer has no word for."""

    def __init__(self, width, height, ground=None, scale=1.0, letters=1.0):
        """`scale` is the size of one drawing unit in pixels. The size of letters is multiplied by `letters` besides."""
        self.width, self.height = round(width * scale), round(height * scale)
        self.scale, self._letters = scale, letters
        form = cairo.FORMAT_RGB24 if ground else cairo.FORMAT_ARGB32
        self._surface = cairo.ImageSurface(form, self.width, self.height)
        self.cr = cairo.Context(self._surface)
        self.cr.scale(scale, scale)
        options = cairo.FontOptions()
        options.set_antialias(cairo.ANTIALIAS_GRAY)
        options.set_hint_style(cairo.HINT_STYLE_SLIGHT)
        options.set_hint_metrics(cairo.HINT_METRICS_OFF)
        self.cr.set_font_options(options)
        if ground:
            self.cr.set_source_rgba(*rgb(ground))
            self.cr.paint()

    def save(self, path):
        self._surface.write_to_png(str(path))

    @contextlib.contextmanager
    def pixels(self):
        """Inside this context, one drawing unit is one pixel. For areas where the plug-in itself draws."""
        scale, letters, self.scale, self._letters = self.scale, self._letters, 1.0, self._letters * self.scale
        self.cr.save()
        self.cr.identity_matrix()
        yield
        self.cr.restore()
        self.scale, self._letters = scale, letters

    # Shapes. Each leaves no path behind.

    def path_box(self, x, y, w, h, radius=0.0):
        cr = self.cr
        cr.new_path()
        if radius <= 0:
            cr.rectangle(x, y, w, h)
            return
        for cx, cy, start in (
            (x + w - radius, y + radius, -0.5),
            (x + w - radius, y + h - radius, 0.0),
            (x + radius, y + h - radius, 0.5),
            (x + radius, y + radius, 1.0),
        ):
            cr.arc(cx, cy, radius, start * math.pi, (start + 0.5) * math.pi)
        cr.close_path()

    def fill(self, paint, alpha=1.0):
        self._use(paint, alpha)
        self.cr.fill()

    def stroke(self, paint, width=1.0, alpha=1.0):
        self._use(paint, alpha)
        self.cr.set_line_width(width)
        self.cr.stroke()

    def box(self, x, y, w, h, paint, radius=0.0, alpha=1.0):
        self.path_box(x, y, w, h, radius)
        self.fill(paint, alpha)

    def frame(self, x, y, w, h, paint, radius=0.0, width=1.0, alpha=1.0):
        """A line just inside the edges."""
        half = width / 2
        self.path_box(x + half, y + half, w - width, h - width, max(radius - half, 0))
        self.stroke(paint, width, alpha)

    def disc(self, x, y, radius, paint, alpha=1.0):
        self.cr.new_path()
        self.cr.arc(x, y, radius, 0, 2 * math.pi)
        self.fill(paint, alpha)

    def ring(self, x, y, radius, paint, width=1.0, alpha=1.0):
        self.cr.new_path()
        self.cr.arc(x, y, radius, 0, 2 * math.pi)
        self.stroke(paint, width, alpha)

    def arc(self, x, y, radius, start, end, paint, width, alpha=1.0, cap=cairo.LINE_CAP_ROUND):
        if end <= start:
            return
        self.cr.new_path()
        self.cr.set_line_cap(cap)
        self.cr.arc(x, y, radius, start, end)
        self.stroke(paint, width, alpha)

    def line(self, x0, y0, x1, y1, paint, width=1.0, alpha=1.0, cap=cairo.LINE_CAP_BUTT):
        self.cr.new_path()
        self.cr.set_line_cap(cap)
        self.cr.move_to(x0, y0)
        self.cr.line_to(x1, y1)
        self.stroke(paint, width, alpha)

    def spoke(self, x, y, inner, outer, angle, paint, width, alpha=1.0, cap=cairo.LINE_CAP_ROUND):
        """A line that points away from (x, y)."""
        c, s = math.cos(angle), math.sin(angle)
        self.line(x + c * inner, y + s * inner, x + c * outer, y + s * outer, paint, width, alpha, cap)

    def polygon(self, points, paint, alpha=1.0):
        self.cr.new_path()
        for point in points:
            self.cr.line_to(*point)
        self.cr.close_path()
        self.fill(paint, alpha)

    # Light.

    def shadow(self, x, y, w, h, radius=0.0, size=8, alpha=0.35, drop=2):
        """What a box casts on the ground, softer toward the outside."""
        for step in range(size):
            grow = size - step
            share = alpha * (2 * (step + 1)) / (size * (size + 1))
            self.box(x - grow, y - grow + drop, w + 2 * grow, h + 2 * grow, "000000", radius + grow, share)

    def grain(self, strength, seed):
        """A fine unevenness, alike in all three channels, that keeps long gradients from showing steps."""
        source = random.Random(seed)
        self._surface.flush()
        data, stride = self._surface.get_data(), self._surface.get_stride()
        for y in range(self.height):
            for offset in range(y * stride, y * stride + 4 * self.width, 4):
                change = source.randint(-strength, strength)
                if change:
                    for channel in range(offset, offset + 3):
                        data[channel] = min(max(data[channel] + change, 0), 255)
        self._surface.mark_dirty()

    # Text.

    def text(self, x, y, words, size, colour, on, align=0.5, family=SANS, bold=False, italic=False, spacing=0.0):
        """Words with their base line at y, and x at `align` of their width. `on` is the colour that they
        stand on: text too small or too faint to be read is refused. Gives the width."""
        if size * self._letters * self.scale < SMALLEST_TEXT - 0.01:
            raise ValueError(f"{words!r} is smaller than {SMALLEST_TEXT} pixels")
        if contrast(colour, on) < LEAST_CONTRAST:
            raise ValueError(f"{words!r} in {colour} on {on} has a contrast of {contrast(colour, on):.2f} only")
        return self.lettering(x, y, words, size, colour, align, family, bold, italic, spacing)

    def lettering(
        self, x, y, words, size, colour, align=0.5, family=SANS, bold=False, italic=False, spacing=0.0, alpha=1.0
    ):
        """Words as ornament: nobody has to read them."""
        cr = self.cr
        width = self.text_width(words, size, family, bold, italic, spacing)
        spacing *= self._letters
        self._use(colour, alpha)
        x -= width * align
        if not spacing:
            cr.move_to(x, y)
            cr.show_text(words)
        for letter in words if spacing else "":
            cr.move_to(x, y)
            cr.show_text(letter)
            x += cr.text_extents(letter).x_advance + spacing
        cr.new_path()
        return width

    def text_width(self, words, size, family=SANS, bold=False, italic=False, spacing=0.0):
        self._font(size, family, bold, italic)
        if not spacing:
            return self.cr.text_extents(words).x_advance
        advances = sum(self.cr.text_extents(letter).x_advance for letter in words)
        return advances + spacing * self._letters * (len(words) - 1)

    def _font(self, size, family, bold, italic):
        slant = cairo.FONT_SLANT_ITALIC if italic else cairo.FONT_SLANT_NORMAL
        self.cr.select_font_face(family, slant, cairo.FONT_WEIGHT_BOLD if bold else cairo.FONT_WEIGHT_NORMAL)
        self.cr.set_font_size(size * self._letters)

    def _use(self, paint, alpha):
        if isinstance(paint, str):
            self.cr.set_source_rgba(*rgb(paint, alpha))
        else:
            self.cr.set_source(paint)


def fade(x0, y0, x1, y1, *stops):
    """A linear gradient. A stop is (where, colour) or (where, colour, alpha)."""
    return _with_stops(cairo.LinearGradient(x0, y0, x1, y1), stops)


def glow(x, y, radius, *stops, focus=None, inner=0.0):
    """A radial gradient, its bright spot at `focus` if that is given."""
    fx, fy = focus or (x, y)
    return _with_stops(cairo.RadialGradient(fx, fy, inner, x, y, radius), stops)


def _with_stops(gradient, stops):
    for where, colour, *alpha in stops:
        gradient.add_color_stop_rgba(where, *rgb(colour, *alpha))
    return gradient


def knob_angle(value):
    """Where a knob points for a value of 0..1, in radians clockwise from three o'clock."""
    return KNOB_START + KNOB_RANGE * value


def film_strip(path, width, height, frames, draw, scale=1.0, letters=1.0):
    """Saves `frames` pictures one below the other; draw(canvas, value) draws one, the value going from 0 to 1."""
    strip = Canvas(width, height * frames, scale=scale, letters=letters)
    for frame in range(frames):
        strip.cr.save()
        strip.cr.rectangle(0, frame * height, width, height)
        strip.cr.clip()
        strip.cr.translate(0, frame * height)
        draw(strip, frame / (frames - 1))
        strip.cr.restore()
    strip.save(path)
