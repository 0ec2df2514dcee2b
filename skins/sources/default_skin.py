"""The fallback skin: black, white and one red, like a poster, with few pictures."""

import cairo

from canvas import KNOB_RANGE, KNOB_START, Canvas, film_strip, knob_angle
from legibility import horizon_of
from quillon_skin import PLAQUE_HEIGHT, PLAQUE_LEFT, PLAQUE_RIGHT, PLAQUE_TOP

FOLDER = "skin"

PAPER, TRACK, INK, GREY, RED = "FFFFFF", "D9D9D5", "111111", "5F5F5F", "D5301A"
#: The left end of the plaque, where letters of a dark blue line and of the yellow line overlap.
MIDDLE = "868686"

BUTT = cairo.LINE_CAP_BUTT
FRAMES = 65

LABELS = {
    "BaseLength": "Length, ms",
    "Taps": "Echoes",
    "Stretch": "Stretch",
    "AmpDecay": "Fade / Swell",
    "Curve": "Fade curve",
    "SweepRate": "Rate, Hz",
    "SweepDepth": "Depth",
    "Movement": "How echoes move",
    "LowPass": "High cut, Hz",
    "HighPass": "Low cut, Hz",
    "InputPan": "Pan",
    "InputGain": "Gain",
    "Feedback": "Feedback",
    "Stereo": "Stereo",
    "DryWet": "Mix",
    "OutputPan": "Echo pan",
    "OutputGain": "Gain",
}
#: These have no effect; the label says so.
QUIET = ("InputGain", "OutputGain")

#: Name, constant with the top, first column, number of columns.
GROUPS = (
    ("Pattern", "RowOne", 0, 5),
    ("Motion", "RowOne", 5, 4),
    ("Input", "RowTwo", 0, 4),
    ("Output", "RowTwo", 4, 5),
)
ROWS = {
    "RowOne": ("BaseLength", "Taps", "Stretch", "AmpDecay", "Curve", "SweepRate", "SweepDepth", "Movement"),
    "RowTwo": (
        "LowPass",
        "HighPass",
        "InputPan",
        "InputGain",
        "Feedback",
        "Stereo",
        "DryWet",
        "OutputPan",
        "OutputGain",
    ),
}

WIDTH, HEIGHT = 680, 497
SWITCH_WIDTH, SWITCH_HEIGHT = 132, 36
WAYS = (("Jump", "no bend"), ("Glide", "soft"), ("Fine", "clear"))
FADER_WIDTH, FADER_HEIGHT = 12, 26
PICTURES = {"hswitch": (SWITCH_WIDTH, SWITCH_HEIGHT), "slider": (FADER_WIDTH, FADER_HEIGHT)}


def draw(skin):
    """Saves every picture of the skin beside its skin.xml."""
    folder, knob = skin.folder, skin.number("Knob")
    _background(skin).save(folder / "background.png")
    _about().save(folder / "about.png")
    film_strip(folder / "knob.png", knob, knob, FRAMES, lambda canvas, value: _knob(canvas, knob, value, 0.0))
    film_strip(folder / "knob_centre.png", knob, knob, FRAMES, lambda canvas, value: _knob(canvas, knob, value, 0.5))
    film_strip(folder / "knob_quiet.png", knob, knob, FRAMES, lambda canvas, value: _quiet_knob(canvas, knob, value))
    film_strip(folder / "movement.png", SWITCH_WIDTH, SWITCH_HEIGHT, 3, _movement)
    _fader().save(folder / "fader.png")


def _background(skin):
    canvas = Canvas(WIDTH, HEIGHT, PAPER)
    canvas.box(0, 0, WIDTH, 34, INK)
    canvas.box(0, 0, 12, 34, RED)
    width = canvas.text(22, 23, "Quillon", 17, PAPER, INK, align=0, bold=True)
    canvas.text(22 + width + 7, 23, "Multitap Delay", 17, PAPER, INK, align=0)
    menu = skin.place("skinselector")
    canvas.text(menu.right - 22, menu.top + 15.5, "Skins", 12, PAPER, INK, align=1)
    x, y = menu.right - 8, menu.top + 11
    canvas.polygon(((x - 5, y - 3), (x + 5, y - 3), (x, y + 3)), RED)

    _plate(canvas, skin.place("ViewTaps"), skin.number("ViewSeen"))
    grid, column = skin.number("Grid"), skin.number("Column")
    for words, row, first, count in GROUPS:
        # The gap between two groups is centred on the line between their columns.
        top, left = skin.number(row), grid + column * first + (4 if first else -4)
        right = grid + column * (first + count) + (4 if first else -4)
        canvas.box(left, top, right - left, 3, INK)
        canvas.box(left, top, 24, 3, RED)
        canvas.text(left, top + 17, words, 13, INK, PAPER, align=0, bold=True)
    for row, names in ROWS.items():
        for name in names:
            _caption(canvas, skin, name, skin.number(row))

    track = skin.control_rect("DryWet", PICTURES)
    canvas.box(track.left, track.top + FADER_HEIGHT / 2 - 2, track.width, 4, TRACK)

    hint = skin.place("anydisp")
    canvas.box(0, hint.top - 1, WIDTH, HEIGHT - hint.top + 1, INK)
    words = "Ctrl-click: reset   Right-click the echoes: help"
    canvas.text(WIDTH - 12, hint.top + 13, words, 11, PAPER, INK, align=1)
    return canvas


def _caption(canvas, skin, name, top):
    middle = skin.control_rect(name, PICTURES).middle
    canvas.text(middle, top + 35, LABELS[name], 11, GREY if name in QUIET else INK, PAPER)
    if name in QUIET:
        canvas.text(middle, top + skin.number("ValueTop") + 12, "no effect", 11, GREY, PAPER)


def _plate(canvas, view, seen):
    """White behind the texts of the effect, black below, so that its palest bars can be seen."""
    right, horizon = view.left + seen, horizon_of(view)
    canvas.box(view.left - 1, view.top - 1, seen + 2, view.height + 2, INK)
    canvas.box(view.left, view.top, seen, horizon - view.top, PAPER)
    middle, top = round(view.middle), view.top + PLAQUE_TOP
    canvas.box(middle - PLAQUE_LEFT - 16, top, 16, PLAQUE_HEIGHT, MIDDLE)
    canvas.box(middle - PLAQUE_LEFT, top, PLAQUE_LEFT + PLAQUE_RIGHT, PLAQUE_HEIGHT, INK)
    canvas.box(middle + PLAQUE_RIGHT, top, 4, PLAQUE_HEIGHT, RED)
    for words, share in (("12", 0.2512), ("18", 0.1259)):
        y = round(view.bottom - view.height * share)
        canvas.line(view.left, y + 0.5, right - 52, y + 0.5, PAPER, alpha=0.28)
        canvas.text(right - 8, y + 4, f"\N{MINUS SIGN}{words} dB", 11, PAPER, INK, align=1)


def _knob(canvas, size, value, rest):
    """A black disc in a ring that is red from `rest`, the neutral value, to the present value."""
    x = y = size / 2
    canvas.arc(x, y, 18.5, KNOB_START, KNOB_START + KNOB_RANGE, TRACK, 4, cap=BUTT)
    start, end = sorted((knob_angle(rest), knob_angle(value)))
    canvas.arc(x, y, 18.5, start, end, RED, 4, cap=BUTT)
    if rest:
        canvas.box(x - 1, y - 20.5, 2, 4, INK)
    canvas.disc(x, y, 13.5, INK)
    canvas.spoke(x, y, 5, 12, knob_angle(value), PAPER, 3, cap=BUTT)


def _quiet_knob(canvas, size, value):
    x = y = size / 2
    canvas.disc(x, y, 13.5, PAPER)
    canvas.ring(x, y, 12.5, GREY, 1.5)
    canvas.spoke(x, y, 4, 11, knob_angle(value), GREY, 2, cap=BUTT)


def _movement(canvas, value):
    """Three fields side by side, each with a name and what you hear."""
    width, height = SWITCH_WIDTH, SWITCH_HEIGHT
    field = width / 3
    canvas.box(0, 0, width, height, PAPER)
    for number, (words, heard) in enumerate(WAYS):
        chosen = number == round(value * 2)
        ink, ground = (PAPER, INK) if chosen else (INK, PAPER)
        canvas.box(number * field, 0, field, height, ground)
        if chosen:
            canvas.box(number * field, height - 4, field, 4, RED)
        canvas.text((number + 0.5) * field, 14, words, 12, ink, ground, bold=True)
        canvas.text((number + 0.5) * field, 27, heard, 11, ink if chosen else GREY, ground)
        canvas.box(number * field, 0, 1, height, INK)
    canvas.frame(0, 0, width, height, INK)


def _fader():
    canvas = Canvas(FADER_WIDTH, FADER_HEIGHT)
    canvas.box(0, 0, FADER_WIDTH, FADER_HEIGHT, INK)
    canvas.box(FADER_WIDTH / 2 - 1, 4, 2, FADER_HEIGHT - 8, PAPER)
    return canvas


def _about():
    """Its lower part belongs to the lines that the plug-in prints in white."""
    width, height = 441, 404
    canvas = Canvas(width, height, INK)
    canvas.box(0, 0, width, 8, RED)
    for echo in range(24):
        tall = 140 * (1 - echo / 24) ** 1.2
        canvas.box(58 + echo * 13.8, 182 - tall, 6, tall, RED if echo == 0 else PAPER)
    canvas.text(width / 2, 230, "Quillon", 30, PAPER, INK, bold=True)
    return canvas
