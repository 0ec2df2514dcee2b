"""Quillon Skin for small screens: the echoes, one large knob for the mix, small ones for the rest."""

from canvas import KNOB_RANGE, KNOB_START, Canvas, fade, film_strip, knob_angle
from quillon_skin import (
    AMBER,
    BAR,
    FRAMES,
    GROUND,
    GROUND_DEEP,
    GROUND_TOP,
    IVORY,
    MUTED,
    PANEL,
    PANEL_TOP,
    draw_about,
    draw_cap,
    draw_knob,
    draw_menu,
    draw_plate,
)

FOLDER = "Quillon Skin Small"

LABELS = {
    "BaseLength": "Base ms",
    "Taps": "Echoes",
    "Stretch": "Stretch",
    "AmpDecay": "Fade",
    "Curve": "Curve",
    "Feedback": "Feedback",
    "Stereo": "Stereo",
    "OutputPan": "Echo pan",
    "LowPass": "High cut",
    "HighPass": "Low cut",
    "InputPan": "Input pan",
    "SweepRate": "Rate Hz",
    "SweepDepth": "Depth",
    "Movement": "How echoes move",
}
#: These have no effect; the label says so. They share one cell.
QUIET = ("InputGain", "OutputGain")

ROWS = {
    "RowOne": ("BaseLength", "Taps", "Stretch", "AmpDecay", "Curve", "Feedback", "Stereo", "OutputPan"),
    "RowTwo": ("LowPass", "HighPass", "InputPan", "SweepRate", "SweepDepth", "Movement"),
}

WIDTH, HEIGHT = 600, 402
SWITCH_WIDTH, SWITCH_HEIGHT = 112, 34
WAYS = (("Jump", "no bend"), ("Glide", "soft"), ("Fine", "clear"))
MENU_WIDTH, MENU_HEIGHT = 76, 20
PICTURES = {"hswitch": (SWITCH_WIDTH, SWITCH_HEIGHT)}

#: Side of the square in which the knob of Quillon Skin is drawn.
KNOB_SIDE = 60


def draw(skin):
    """Saves every picture of the skin beside its skin.xml."""
    folder = skin.folder
    _background(skin).save(folder / "background.png")
    draw_about(420, 320, 22).save(folder / "about.png")
    draw_menu(False, MENU_WIDTH, MENU_HEIGHT).save(folder / "skin_menu.png")
    draw_menu(True, MENU_WIDTH, MENU_HEIGHT).save(folder / "skin_menu_open.png")
    hero, knob, trim = (skin.number(name) for name in ("Hero", "Knob", "Trim"))
    large = {"scale": hero / KNOB_SIDE}
    film_strip(
        folder / "hero.png",
        KNOB_SIDE,
        KNOB_SIDE,
        FRAMES,
        lambda canvas, value: draw_knob(canvas, KNOB_SIDE, value, 0.0),
        **large,
    )
    film_strip(folder / "knob.png", knob, knob, FRAMES, lambda canvas, value: _knob(canvas, knob, value, 0.0))
    film_strip(folder / "knob_centre.png", knob, knob, FRAMES, lambda canvas, value: _knob(canvas, knob, value, 0.5))
    film_strip(folder / "trim.png", trim, trim, FRAMES, lambda canvas, value: _trim(canvas, trim, value))
    film_strip(folder / "movement.png", SWITCH_WIDTH, SWITCH_HEIGHT, 3, _movement)


def _background(skin):
    canvas = Canvas(WIDTH, HEIGHT, GROUND)
    canvas.box(0, 0, WIDTH, HEIGHT, fade(0, 0, 0, HEIGHT, (0, GROUND_TOP), (0.5, GROUND), (1, GROUND_DEEP)))
    draw_plate(canvas, skin.place("ViewTaps"), skin.number("ViewSeen"), levels=False)
    top, bottom = skin.number("RowOne"), skin.place("anydisp").top - 6
    split = skin.number("Grid") - 6
    for left, right in ((6, split - 3), (split + 3, WIDTH - 6)):
        canvas.box(left, top, right - left, bottom - top, fade(0, top, 0, bottom, (0, PANEL_TOP), (1, PANEL)), radius=6)
        light = fade(0, top, 0, bottom, (0, "FFFFFF", 0.11), (0.25, "FFFFFF", 0.03), (1, "000000", 0.12))
        canvas.frame(left, top, right - left, bottom - top, light, radius=6)
    hero = skin.control_rect("DryWet", PICTURES)
    canvas.text(hero.middle, top + 18, "Mix", 12, IVORY, PANEL_TOP, bold=True)
    for row, names in ROWS.items():
        for name in names:
            middle = skin.control_rect(name, PICTURES).middle
            canvas.text(middle, skin.number(row) + 14, LABELS[name], 11, IVORY, PANEL_TOP)
    _quiet_cell(canvas, skin)
    _foot(canvas, skin.place("anydisp"))
    canvas.grain(1, seed=128)
    return canvas


def _quiet_cell(canvas, skin):
    first, second = (skin.control_rect(name, PICTURES) for name in QUIET)
    middle, top = (first.left + second.right) / 2, skin.number("RowTwo")
    canvas.text(middle, top + 14, "Gains", 11, MUTED, PANEL)
    canvas.text(middle, top + skin.number("ValueTop") + 11, "no effect", 11, MUTED, PANEL)


def _foot(canvas, place):
    canvas.box(0, place.top - 2, WIDTH, HEIGHT - place.top + 2, BAR)
    canvas.box(0, place.top - 2, WIDTH, 1, "000000", alpha=0.45)
    canvas.text(WIDTH - 94, place.top + 13, "Right-click the echoes: help", 11, MUTED, BAR, align=1)


def _knob(canvas, size, value, rest):
    """The arc and cap of the large knob. Its rim is left out: it would be too thin at this size."""
    x = y = size / 2
    canvas.arc(x, y, 15.5, KNOB_START, KNOB_START + KNOB_RANGE, "14171B", 4.0)
    canvas.arc(x, y, 15.5, KNOB_START, KNOB_START + KNOB_RANGE, "454D56", 2.0, alpha=0.85)
    start, end = sorted((knob_angle(rest), knob_angle(value)))
    if end - start > 0.01:
        canvas.arc(x, y, 15.5, start, end, AMBER, 2.6)
    if rest:
        canvas.disc(x, y - 15.5, 1.6, IVORY)
    draw_cap(canvas, x, y, 11)
    canvas.spoke(x, y, 4, 9, knob_angle(value), IVORY, 2.4)


def _trim(canvas, size, value):
    x = y = size / 2
    draw_cap(canvas, x, y, 9)
    canvas.spoke(x, y, 3, 7, knob_angle(value), "B4BAC0", 1.8)


def _movement(canvas, value):
    width, height = SWITCH_WIDTH, SWITCH_HEIGHT
    canvas.box(0, 0, width, height, "14171B", radius=5)
    edges = (2, 46, 78, 110)
    for number, (words, heard) in enumerate(WAYS):
        chosen = number == round(value * 2)
        left, right = edges[number], edges[number + 1]
        ground = "454D56" if chosen else "14171B"
        if chosen:
            light = fade(0, 2, 0, height - 2, (0, "4E5761"), (1, "3A424A"))
            canvas.box(left, 2, right - left, height - 4, light, radius=4)
        canvas.text((left + right) / 2, 14, words, 11, IVORY if chosen else MUTED, ground)
        canvas.text((left + right) / 2, 27, heard, 11, "F5BC62" if chosen else MUTED, ground)
