"""An engraved plate from an old book of instruments: black and red ink on paper, every line drawn by hand.

The hand is a seeded one, so it trembles alike each time.
"""

import math
import random

import cairo

from canvas import SERIF, Canvas, fade, film_strip, glow, knob_angle
from legibility import horizon_of
from quillon_skin import PLAQUE_HEIGHT, PLAQUE_LEFT, PLAQUE_RIGHT, PLAQUE_TOP

FOLDER = "Paper and Ink"

PAPER, PAPER_LIGHT, PAPER_DARK = "F3EAD7", "F8F2E4", "E6D9BE"
INK, FADED, RED = "20242C", "625B4C", "9C2F22"
NIGHT, CREAM = "1D2733", "F4ECDA"
SEA = "14161B"
#: The left end of the plaque, where letters of a dark blue line and of the yellow line overlap.
WASH = "87857F"

FRAMES = 97

LABELS = {
    "BaseLength": "length, ms",
    "Taps": "echoes",
    "Stretch": "stretch",
    "AmpDecay": "fade / swell",
    "Curve": "curve",
    "SweepRate": "sweep rate, Hz",
    "SweepDepth": "sweep depth",
    "Movement": "how echoes move",
    "LowPass": "high cut, Hz",
    "HighPass": "low cut, Hz",
    "InputPan": "input pan",
    "InputGain": "gain",
    "Feedback": "feedback",
    "Stereo": "stereo",
    "DryWet": "mix",
    "OutputPan": "echo pan",
    "OutputGain": "gain",
}
#: These have no effect; the label says so.
QUIET = ("InputGain", "OutputGain")
RULES = ("BaseLength", "Taps", "Stretch", "AmpDecay", "Curve")
ORBITS = ("SweepRate", "SweepDepth")
DIALS = ("LowPass", "HighPass", "InputPan", "InputGain", "Feedback", "Stereo", "OutputPan", "OutputGain")

#: Number of the figure, its name, constant with the top, first column, number of columns.
FIGURES = (
    (2, "Pattern", "RowOne", 0, 5),
    (3, "Motion", "RowOne", 5, 4),
    (4, "Input", "RowTwo", 0, 4),
    (5, "Output", "RowTwo", 4, 5),
)

COLUMNS = 9
WIDTH, HEIGHT = 920, 660
POINTER_WIDTH, POINTER_HEIGHT = 26, 16
WEIGHT_WIDTH, WEIGHT_HEIGHT = 18, 36
SWITCH_WIDTH, SWITCH_HEIGHT = 134, 78
MOON = 17


def draw(skin):
    """Saves every picture of the skin beside its skin.xml."""
    folder, dial = skin.folder, skin.number("Dial")
    _paper(skin).save(folder / "paper.png")
    _about().save(folder / "about.png")
    _pointer().save(folder / "pointer.png")
    _weight().save(folder / "weight.png")
    _moon().save(folder / "moon.png")
    film_strip(folder / "movement.png", SWITCH_WIDTH, SWITCH_HEIGHT, 3, _movement)
    film_strip(folder / "needle.png", dial, dial, FRAMES, lambda canvas, value: _needle(canvas, dial, value, RED))
    film_strip(
        folder / "needle_quiet.png", dial, dial, FRAMES, lambda canvas, value: _needle(canvas, dial, value, FADED)
    )


def _place(skin, name):
    pictures = {
        "vswitch": (SWITCH_WIDTH, SWITCH_HEIGHT),
        "slider": (POINTER_WIDTH, POINTER_HEIGHT) if name in RULES else (WEIGHT_WIDTH, WEIGHT_HEIGHT),
    }
    return skin.control_rect(name, pictures)


class Pen:
    """A hand that draws lines which are nearly straight and circles which are nearly round."""

    def __init__(self, canvas, seed, tremble=0.7):
        self._canvas, self._random, self._tremble = canvas, random.Random(seed), tremble

    def path(self, points, ink=INK, width=1.1, alpha=0.9):
        """Follows the points in short strokes, a little beside them and pressing unevenly."""
        cr = self._canvas.cr
        cr.push_group()
        sway = [self._random.uniform(0, 2 * math.pi) for _ in range(4)]
        before = None
        for step, (x, y) in enumerate(points):
            x += self._tremble * 0.5 * (math.sin(step * 0.21 + sway[0]) + math.sin(step * 0.083 + sway[1]))
            y += self._tremble * 0.5 * (math.sin(step * 0.19 + sway[2]) + math.sin(step * 0.071 + sway[3]))
            if before:
                press = width * (1 + 0.22 * math.sin(step * 0.13 + sway[0]))
                cr.new_path()
                cr.set_line_cap(cairo.LINE_CAP_ROUND)
                cr.move_to(*before)
                cr.line_to(x, y)
                self._canvas.stroke(ink, press)
            before = (x, y)
        cr.pop_group_to_source()
        cr.paint_with_alpha(alpha)

    def line(self, x0, y0, x1, y1, ink=INK, width=1.1, alpha=0.9):
        steps = max(int(math.hypot(x1 - x0, y1 - y0) / 4), 2)
        self.path(
            [(x0 + (x1 - x0) * i / steps, y0 + (y1 - y0) * i / steps) for i in range(steps + 1)], ink, width, alpha
        )

    def arc(self, x, y, radius, start, end, ink=INK, width=1.1, alpha=0.9):
        steps = max(int(radius * abs(end - start) / 3), 6)
        angles = [start + (end - start) * i / steps for i in range(steps + 1)]
        self.path([(x + radius * math.cos(a), y + radius * math.sin(a)) for a in angles], ink, width, alpha)

    def circle(self, x, y, radius, ink=INK, width=1.1, alpha=0.9):
        start = self._random.uniform(0, 2 * math.pi)
        self.arc(x, y, radius, start, start + 2 * math.pi + 0.12, ink, width, alpha)

    def box(self, x, y, w, h, ink=INK, width=1.1, alpha=0.9):
        over = 1.5
        self.line(x - over, y, x + w + over, y, ink, width, alpha)
        self.line(x + w, y - over, x + w, y + h + over, ink, width, alpha)
        self.line(x + w + over, y + h, x - over, y + h, ink, width, alpha)
        self.line(x, y + h + over, x, y - over, ink, width, alpha)

    def hatch_disc(self, x, y, radius, spacing=3.0, ink=INK, width=0.7, alpha=0.6, start=-1.0, end=1.0):
        """Slanting lines inside a circle, from `start` to `end` of its radius across the slant."""
        offset = start * radius
        while offset <= end * radius:
            half = math.sqrt(max(radius * radius - offset * offset, 0)) * 0.97
            c = s = math.sqrt(0.5)
            cx, cy = x + offset * c, y + offset * s
            if half > 1:
                self.line(cx + half * s, cy - half * c, cx - half * s, cy + half * c, ink, width, alpha)
            offset += spacing


# The sheet.


def _paper(skin):
    canvas = Canvas(WIDTH, HEIGHT, PAPER)
    canvas.box(
        0,
        0,
        WIDTH,
        HEIGHT,
        glow(WIDTH / 2, HEIGHT * 0.45, WIDTH * 0.68, (0, PAPER_LIGHT), (0.6, PAPER), (1, PAPER_DARK)),
    )
    _foxing(canvas)
    pen = Pen(canvas, seed=1)
    pen.box(9, 9, WIDTH - 18, HEIGHT - 18, width=2.2)
    pen.box(14, 14, WIDTH - 28, HEIGHT - 28, width=0.9)
    _heading(canvas, pen, skin.place("skinselector"))
    _echo_figure(canvas, skin.place("ViewTaps"), skin.number("ViewSeen"))
    grid, column = skin.number("Grid"), skin.number("Column")
    for number, words, row, first, count in FIGURES:
        left, right = grid + column * first, grid + column * (first + count)
        is_last = first + count == COLUMNS
        _caption(canvas, number, words, skin.number(row), left, right if is_last else right - 12)
    for name, words in LABELS.items():
        row = skin.number("RowOne" if name in RULES + ORBITS + ("Movement",) else "RowTwo")
        ink = FADED if name in QUIET else INK
        middle = _place(skin, name).middle
        canvas.text(middle, row + 33, words, 12, ink, PAPER)
        if name in QUIET:
            canvas.text(middle, row + skin.number("RowTwoValue") + 13, "no effect", 12, FADED, PAPER)
    for seed, name in enumerate(RULES):
        _rule(canvas, _place(skin, name), seed)
    for seed, name in enumerate(ORBITS):
        _orbit(canvas, _place(skin, name), seed)
    for seed, name in enumerate(DIALS):
        _dial(canvas, _place(skin, name), seed, quiet=name in QUIET)
    _beam(canvas, _place(skin, "DryWet"))
    _foot(canvas, pen, skin.place("anydisp"))
    canvas.grain(2, seed=1704)
    return canvas


def _foxing(canvas):
    """The stains of age, few and faint, toward the margins."""
    source = random.Random(1704)
    for _ in range(46):
        x, y = source.choice((source.uniform(0, 60), source.uniform(WIDTH - 60, WIDTH))), source.uniform(0, HEIGHT)
        radius = source.uniform(2, 11)
        canvas.disc(x, y, radius, glow(x, y, radius, (0, "B08D57", 0.13), (0.7, "B08D57", 0.07), (1, "B08D57", 0)))


def _heading(canvas, pen, menu):
    canvas.text(40, 52, "Plate I.", 15, INK, PAPER, align=0, family=SERIF, italic=True)
    canvas.text(WIDTH / 2, 46, "The MULTITAP DELAY", 25, INK, PAPER, family=SERIF, spacing=2.0)
    canvas.text(
        WIDTH / 2,
        64,
        "of Quillon, which answers one sound with as many as 128",
        13,
        RED,
        PAPER,
        family=SERIF,
        italic=True,
    )
    canvas.text(menu.right - 18, menu.top + 19.5, "other skins", 15, INK, PAPER, align=1, family=SERIF, italic=True)
    pen.line(menu.left + 10, menu.top + 23, menu.right - 16, menu.top + 23, RED, 1.0)
    x, y = menu.right - 7, menu.top + 15
    canvas.polygon(((x - 5, y - 3), (x + 5, y - 3), (x, y + 4)), RED)


def _echo_figure(canvas, view, seen):
    """A sky of bare paper behind the texts of the effect, over a sea in ink, on which its palest bars can be seen."""
    right, horizon = view.left + seen, horizon_of(view)
    canvas.box(view.left, view.top, seen, view.height, PAPER_LIGHT, alpha=0.85)
    canvas.box(view.left, horizon, seen, view.bottom - horizon, SEA)
    pen = Pen(canvas, seed=2, tremble=0.5)
    for row in range(7):
        y = horizon + 5 + row * (3 + 0.7 * row)
        pen.line(view.left + 2, y, right - 2, y, CREAM, 1.1 - 0.1 * row, 0.34 - 0.04 * row)
    for words, share in (("12", 0.2512), ("18", 0.1259)):
        y = round(view.bottom - view.height * share)
        pen.line(view.left, y, right - 54, y, CREAM, 0.9, 0.5)
        canvas.text(right - 8, y + 4, f"\N{MINUS SIGN}{words} dB", 11, CREAM, SEA, align=1)
    _plaque(canvas, view)
    pen.box(view.left - 2, view.top - 2, seen + 4, view.height + 4, width=1.3)
    words = "Fig. 1.  The echoes, in the order of their arrival; their height is their loudness."
    canvas.text(view.left + seen / 2, view.bottom + 23, words, 14, INK, PAPER, family=SERIF, italic=True)


def _plaque(canvas, view):
    """A blank name plate; its ends are a wash of thinned ink."""
    middle, top = round(view.middle), view.top + PLAQUE_TOP
    left, right = middle - PLAQUE_LEFT, middle + PLAQUE_RIGHT
    canvas.box(left - 16, top, 16, PLAQUE_HEIGHT, WASH)
    canvas.box(left, top, right - left, PLAQUE_HEIGHT, SEA)
    canvas.box(right, top, 16, PLAQUE_HEIGHT, WASH)
    pen = Pen(canvas, seed=48, tremble=0.4)
    pen.box(left - 17, top - 0.5, right - left + 34, PLAQUE_HEIGHT + 1, INK, 1.0)


def _caption(canvas, number, words, top, left, right):
    pen = Pen(canvas, seed=10 + number)
    width = canvas.text(left, top + 13, f"Fig. {number}.  ", 14, RED, PAPER, align=0, family=SERIF, italic=True)
    width += canvas.text(left + width, top + 13, words, 14, INK, PAPER, align=0, family=SERIF, bold=True, spacing=0.8)
    pen.line(left + width + 10, top + 9, right, top + 9, width=0.8, alpha=0.6)


def _foot(canvas, pen, place):
    y = place.top + place.height / 2
    pen.line(32, place.top - 2, WIDTH - 32, place.top - 2, width=0.9, alpha=0.7)
    canvas.polygon(((36, y), (50, y - 4.5), (58, y), (50, y + 4.5)), INK)
    canvas.line(42, y, 51, y, PAPER, 1)
    canvas.disc(51.5, y, 1.3, PAPER)
    words = "Ctrl-click: reset   \N{MIDDLE DOT}   Right-click the echoes: help"
    canvas.text(WIDTH - 36, y + 4, words, 12, INK, PAPER, align=1)


def _rule(canvas, place, seed):
    """A measuring rule on which a pointer slides."""
    pen = Pen(canvas, seed=100 + seed, tremble=0.45)
    x = place.middle
    top, bottom = place.top + POINTER_HEIGHT / 2, place.bottom - POINTER_HEIGHT / 2
    pen.line(x - 3, top - 5, x - 3, bottom + 5)
    pen.line(x + 3, top - 5, x + 3, bottom + 5)
    for end in (top - 5, bottom + 5):
        pen.line(x - 3, end, x + 3, end)
    for step in range(21):
        y = top + (bottom - top) * step / 20
        reach = 15 if step % 10 == 0 else 11 if step % 5 == 0 else 8
        pen.line(x - reach, y, x - 4, y, width=0.8, alpha=0.8)


def _orbit(canvas, place, seed):
    """A sun with its rays, and the path on which a moon goes round it."""
    pen = Pen(canvas, seed=200 + seed, tremble=0.5)
    x, y = place.middle, place.top + place.height / 2
    path = place.width / 2 - MOON / 2 - 2.5
    pen.arc(x, y, path, knob_angle(0), knob_angle(1), width=1.0)
    for step in range(11):
        angle = knob_angle(step / 10)
        inner, outer = path - 8, path - (4 if step % 5 else 2)
        pen.line(
            x + inner * math.cos(angle),
            y + inner * math.sin(angle),
            x + outer * math.cos(angle),
            y + outer * math.sin(angle),
            width=0.8,
        )
    pen.circle(x, y, 11, width=1.2)
    pen.hatch_disc(x, y, 10, spacing=2.4, start=0.0, alpha=0.7)
    for ray in range(16):
        angle = ray * math.pi / 8
        outer = 20 if ray % 2 == 0 else 16
        pen.line(
            x + 13 * math.cos(angle),
            y + 13 * math.sin(angle),
            x + outer * math.cos(angle),
            y + outer * math.sin(angle),
            width=0.9,
        )


def _dial(canvas, place, seed, quiet):
    pen = Pen(canvas, seed=300 + seed, tremble=0.5)
    ink = FADED if quiet else INK
    x, y = place.middle, place.top + place.height / 2
    pen.circle(x, y, 27, ink, 1.3)
    if not quiet:
        pen.circle(x, y, 24.5, ink, 0.7)
        pen.arc(x, y, 29.5, 0.1, 1.35, ink, 1.6, 0.55)
    for step in range(21):
        angle = knob_angle(step / 20)
        inner = 17.5 if step % 10 == 0 else 19.5 if step % 5 == 0 else 21.5
        pen.line(
            x + inner * math.cos(angle),
            y + inner * math.sin(angle),
            x + 24 * math.cos(angle),
            y + 24 * math.sin(angle),
            ink,
            0.8,
            0.85,
        )


def _beam(canvas, place):
    """A balance, its beam hung in the middle, along which a weight slides."""
    pen = Pen(canvas, seed=400, tremble=0.5)
    y = place.top + WEIGHT_HEIGHT / 2
    left, right = place.left + WEIGHT_WIDTH / 2, place.right - WEIGHT_WIDTH / 2
    pen.line(left - 6, y, right + 6, y, width=1.8)
    pen.line(left - 6, y - 3, left - 6, y + 3, width=1.4)
    pen.line(right + 6, y - 3, right + 6, y + 3, width=1.4)
    for step in range(11):
        x = left + (right - left) * step / 10
        pen.line(x, y + 4, x, y + (11 if step % 5 == 0 else 8), width=0.8)
    canvas.text(left - 6, y + 26, "dry", 11, INK, PAPER, align=0)
    canvas.text(right + 6, y + 26, "wet", 11, INK, PAPER, align=1)


# What moves.


def _pointer():
    """A finger of red ink that points at the rule's marks from the right."""
    canvas = Canvas(POINTER_WIDTH, POINTER_HEIGHT)
    y = POINTER_HEIGHT / 2
    canvas.polygon(
        ((6, y), (14, y - 6), (POINTER_WIDTH - 1, y - 6), (POINTER_WIDTH - 1, y + 6), (14, y + 6)), PAPER_LIGHT
    )
    canvas.polygon(
        ((6, y), (14, y - 6), (POINTER_WIDTH - 1, y - 6), (POINTER_WIDTH - 1, y + 6), (14, y + 6)), RED, alpha=0.9
    )
    canvas.line(16, y - 2.5, POINTER_WIDTH - 4, y - 2.5, PAPER_LIGHT, 1, alpha=0.7)
    canvas.line(16, y + 2.5, POINTER_WIDTH - 4, y + 2.5, PAPER_LIGHT, 1, alpha=0.7)
    canvas.line(1, y, 8, y, RED, 1.6)
    return canvas


def _weight():
    canvas = Canvas(WEIGHT_WIDTH, WEIGHT_HEIGHT)
    x, y = WEIGHT_WIDTH / 2, WEIGHT_HEIGHT / 2
    canvas.ring(x, y - 1, 3.5, RED, 1.5)
    canvas.line(x, y + 2, x, y + 7, RED, 1.5)
    canvas.polygon(((x - 4, y + 6), (x + 4, y + 6), (x + 7, y + 16), (x - 7, y + 16)), RED)
    canvas.line(x - 3, y + 13, x + 4, y + 13, PAPER_LIGHT, 1, alpha=0.7)
    return canvas


def _moon():
    canvas = Canvas(MOON, MOON)
    middle, radius = MOON / 2, MOON / 2 - 1.2
    canvas.disc(middle, middle, radius, PAPER_LIGHT)
    canvas.disc(middle, middle, radius, RED, alpha=0.92)
    canvas.disc(middle - 2, middle - 2, radius * 0.42, PAPER_LIGHT, alpha=0.85)
    canvas.ring(middle, middle, radius, INK, 1.0, alpha=0.85)
    return canvas


def _movement(canvas, value):
    """A list of three, the chosen word underlined in red."""
    step = SWITCH_HEIGHT / 3
    for number, words in enumerate(("jump, no bend", "glide, soft bend", "glide, clear bend")):
        base = step * number + 18
        chosen = number == round(value * 2)
        pen = Pen(canvas, seed=500 + number, tremble=0.4)
        pen.circle(7, base - 5, 4.6, INK, 1.1)
        if chosen:
            canvas.disc(7, base - 5, 3, RED)
        width = canvas.text(19, base, words, 12, RED if chosen else INK, PAPER, align=0)
        if chosen:
            pen.line(19, base + 3.5, 19 + width, base + 3.5, RED, 1.0)


def _needle(canvas, size, value, ink):
    x = y = size / 2
    angle = knob_angle(value)
    c, s = math.cos(angle), math.sin(angle)
    tip, tail, broad = 22, 8, 2.6
    canvas.polygon(
        (
            (x + tip * c, y + tip * s),
            (x - broad * s, y + broad * c),
            (x - tail * c, y - tail * s),
            (x + broad * s, y - broad * c),
        ),
        ink,
    )
    canvas.disc(x, y, 3.6, INK)
    canvas.disc(x, y, 1.3, PAPER_LIGHT)


# The box that a click on the empty sheet opens: a cut in wood, light on dark. Its lower part belongs to the lines that
# the plug-in prints in white.

ABOUT_WIDTH, ABOUT_HEIGHT = 597, 506


def _about():
    width, height = ABOUT_WIDTH, ABOUT_HEIGHT
    canvas = Canvas(width, height, NIGHT)
    pen = Pen(canvas, seed=900)
    pen.box(8, 8, width - 16, height - 16, CREAM, 2.0)
    pen.box(14, 14, width - 28, height - 28, CREAM, 0.8)
    x, y = width / 2, 176
    canvas.cr.save()
    canvas.path_box(16, 16, width - 32, y - 16)
    canvas.cr.clip()
    for ring in range(15):
        strength = 1 - ring / 16
        pen.arc(x, y, 22 + ring * (7 + ring * 0.55), math.pi, 2 * math.pi, CREAM, 2.6 * strength, 0.3 + 0.65 * strength)
    canvas.cr.restore()
    pen.circle(x, y, 12, CREAM, 1.4)
    pen.hatch_disc(x, y, 11, 2.4, CREAM, 0.9, 0.9)
    for ray in range(9):
        angle = math.pi + ray * math.pi / 8
        pen.line(
            x + 14 * math.cos(angle),
            y + 14 * math.sin(angle),
            x + 20 * math.cos(angle),
            y + 20 * math.sin(angle),
            CREAM,
            1.0,
        )
    for row in range(7):
        reach = 255 - row * 26
        pen.line(x - reach, y + 8 + row * 7, x + reach, y + 8 + row * 7, CREAM, 1.4 - row * 0.12, 0.8 - row * 0.08)
    canvas.text(x, 282, "QUILLON", 34, CREAM, NIGHT, family=SERIF, spacing=10)
    canvas.text(x, 308, "the echo with 128 voices", 16, CREAM, NIGHT, family=SERIF, italic=True)
    pen.line(x - 110, 326, x + 110, 326, CREAM, 1.0)
    return canvas
