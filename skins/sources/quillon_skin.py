"""The face of the plug-in: a dark slate instrument with one amber accent, and a lit paper plate for the echoes."""

import math

from canvas import KNOB_RANGE, KNOB_START, Canvas, fade, film_strip, glow, knob_angle
from legibility import horizon_of
from skin_file import Drawing, Rect

FOLDER = "Quillon Skin"

GROUND_TOP, GROUND, GROUND_DEEP = "2B3138", "23282E", "1C2025"
BAR_TOP, BAR = "1F242A", "1A1E23"
PANEL_TOP, PANEL = "323942", "2A3037"
IVORY, MUTED = "F0EBDF", "AEB6BE"
AMBER, AMBER_DEEP, AMBER_LIGHT = "F0A93C", "C47F1D", "FFCE7D"

#: The plate behind the echoes: light down to the horizon, where the effect writes in grey and dark blue; dark below it,
#: where there are no texts, so that pale bars can be seen.
SKY_TOP, SKY, SKY_LOW = "EEEBE3", "F3EBDA", "FBE9CB"
NIGHT, NIGHT_LINE = "0D1013", "FFFFFF"
#: The yellow line of the help has a dark plaque behind it. Its brass ends have a medium tone, because the last letters
#: of a dark blue line reach into the left one.
PLAQUE, BRASS, BRASS_LIGHT = "15191D", "AB8044", "C79C5C"

#: An odd number, so that one frame points straight up.
FRAMES = 129

#: The label above each control, and the unit of its value.
LABELS = {
    "BaseLength": ("Base length", "ms"),
    "Taps": ("Echoes", None),
    "Stretch": ("Stretch", None),
    "AmpDecay": ("Fade / Swell", None),
    "Curve": ("Fade curve", None),
    "SweepRate": ("Sweep rate", "Hz"),
    "SweepDepth": ("Sweep depth", None),
    "Movement": ("How echoes move", None),
    "LowPass": ("High cut", "Hz"),
    "HighPass": ("Low cut", "Hz"),
    "InputPan": ("Input pan", None),
    "InputGain": ("Input gain", None),
    "Feedback": ("Feedback", None),
    "Stereo": ("Stereo", None),
    "DryWet": ("Mix", None),
    "OutputPan": ("Echo pan", None),
    "OutputGain": ("Output gain", None),
}
#: These have no effect; the label says so.
QUIET = ("InputGain", "OutputGain")

GROUPS = {
    "Pattern": ("RowOne", ("BaseLength", "Taps", "Stretch", "AmpDecay", "Curve")),
    "Motion": ("RowOne", ("SweepRate", "SweepDepth", "Movement")),
    "Input": ("RowTwo", ("LowPass", "HighPass", "InputPan", "InputGain")),
    "Output": ("RowTwo", ("Feedback", "Stereo", "DryWet", "OutputPan", "OutputGain")),
}

WIDTH, HEIGHT = 940, 604
SWITCH_WIDTH, SWITCH_HEIGHT = 186, 44
FADER_WIDTH, FADER_HEIGHT = 22, 38
MENU_WIDTH, MENU_HEIGHT = 94, 26
#: The positions of the switch, and what you hear in each.
WAYS = (("Jump", "no bend"), ("Glide", "soft bend"), ("Fine", "clear bend"))
PICTURES = {"hswitch": (SWITCH_WIDTH, SWITCH_HEIGHT), "slider": (FADER_WIDTH, FADER_HEIGHT)}


def draw(skin, letters=1.0):
    """Saves every picture of the skin beside its skin.xml. Letters are scaled by the skin's scale times `letters`, since
    the texts that the effect writes are not scaled."""
    folder, drawing = skin.folder, Drawing(skin)
    sizes = {"scale": drawing.scale, "letters": letters}
    _background(drawing, sizes).save(folder / "background.png")
    draw_about(ABOUT_WIDTH, ABOUT_HEIGHT, 34, sizes).save(folder / "about.png")
    draw_menu(False, MENU_WIDTH, MENU_HEIGHT, sizes).save(folder / "skin_menu.png")
    draw_menu(True, MENU_WIDTH, MENU_HEIGHT, sizes).save(folder / "skin_menu_open.png")
    knob, trim = drawing.number("Knob"), drawing.number("Trim")
    film_strip(folder / "knob.png", knob, knob, FRAMES, lambda canvas, value: draw_knob(canvas, knob, value, 0.0), **sizes)
    film_strip(
        folder / "knob_centre.png", knob, knob, FRAMES, lambda canvas, value: draw_knob(canvas, knob, value, 0.5), **sizes
    )
    film_strip(folder / "trim.png", trim, trim, FRAMES, lambda canvas, value: _trim(canvas, trim, value), **sizes)
    film_strip(folder / "movement.png", SWITCH_WIDTH, SWITCH_HEIGHT, 3, _movement, **sizes)
    _fader(sizes).save(folder / "fader.png")


# The window.


def _background(skin, sizes):
    canvas = Canvas(WIDTH, HEIGHT, GROUND, **sizes)
    canvas.box(0, 0, WIDTH, HEIGHT, fade(0, 0, 0, HEIGHT, (0, GROUND_TOP), (0.5, GROUND), (1, GROUND_DEEP)))
    _title_bar(canvas)
    with canvas.pixels():
        draw_plate(canvas, skin.skin.place("ViewTaps"), skin.skin.number("ViewSeen"), levels=True)
    for group, (row, names) in GROUPS.items():
        _panel(canvas, skin, group, skin.number(row))
        for name in names:
            _caption(canvas, skin, name, skin.number(row))
    _mix_track(canvas, skin)
    _movement_note(canvas, skin)
    _hint_line(canvas, skin.place("anydisp"))
    canvas.grain(1, seed=128)
    return canvas


def _title_bar(canvas):
    canvas.box(0, 0, WIDTH, 44, fade(0, 0, 0, 44, (0, BAR_TOP), (1, BAR)))
    canvas.box(0, 43, WIDTH, 1, "000000", alpha=0.5)
    canvas.box(0, 44, WIDTH, 1, "FFFFFF", alpha=0.05)
    _emblem(canvas, 20, 33, 1.0)
    width = canvas.text(64, 29, "QUILLON", 18, IVORY, BAR, align=0, bold=True, spacing=3.2)
    canvas.text(64 + width + 16, 29, "Multitap Delay", 15, MUTED, BAR, align=0)


def _emblem(canvas, x, y, scale):
    """Six echoes that hurry and fade: the mark of the product. (x, y) is its lower left corner."""
    place = 0.0
    for echo in range(6):
        height = 23.0 * 0.76**echo
        width = 3.4 * 0.93**echo
        canvas.box(
            x + place * scale,
            y - height * scale,
            width * scale,
            height * scale,
            fade(0, y - 23 * scale, 0, y, (0, AMBER_LIGHT), (1, AMBER)),
            radius=width * scale / 2,
        )
        place += 8.2 * 0.89**echo


def draw_plate(canvas, view, seen, levels):
    """The plate behind the echoes, in pixels. `seen` is the visible width of `view`. The view is wider, so that the bars,
    whose gaps grow with its width, fill the plate. `levels` adds a scale on the left."""
    plate = Rect(view.left - 6, view.top - 4, view.left + seen + 2, view.bottom + 4)
    frame = plate.grown(2)
    canvas.shadow(frame.left, frame.top, frame.width, frame.height, 7, size=6, alpha=0.35)
    canvas.box(frame.left, frame.top, frame.width, frame.height, "0B0D0F", radius=7)
    canvas.line(frame.left + 7, frame.bottom + 0.5, frame.right - 7, frame.bottom + 0.5, "FFFFFF", alpha=0.09)
    canvas.cr.save()
    canvas.path_box(plate.left, plate.top, plate.width, plate.height, 5)
    canvas.cr.clip()
    horizon = horizon_of(view)
    sky = fade(0, plate.top, 0, horizon, (0, SKY_TOP), (0.55, SKY), (1, SKY_LOW))
    canvas.box(plate.left, plate.top, plate.width, horizon - plate.top, sky)
    canvas.box(plate.left, horizon, plate.width, plate.bottom - horizon, NIGHT)
    middle, reach = plate.left + plate.width / 2, plate.width / 2
    canvas.box(plate.left, horizon, plate.width, 26, fade(0, horizon, 0, horizon + 26, (0, AMBER, 0.20), (1, AMBER, 0)))
    light = fade(middle - reach, 0, middle + reach, 0, (0, AMBER_DEEP), (0.5, AMBER_LIGHT), (1, AMBER_DEEP))
    canvas.box(plate.left, horizon, plate.width, 1, light)
    _level_lines(canvas, view, plate, horizon)
    _plaque(canvas, view)
    canvas.line(plate.left, view.bottom + 0.5, plate.right, view.bottom + 0.5, "FFFFFF", alpha=0.22)
    canvas.box(
        plate.left,
        plate.top,
        plate.width,
        4,
        fade(0, plate.top, 0, plate.top + 4, (0, "000000", 0.30), (1, "000000", 0)),
    )
    canvas.cr.restore()
    canvas.frame(plate.left, plate.top, plate.width, plate.height, "000000", radius=5, alpha=0.35)
    if levels:
        for words, share in LEVELS:
            y = round(view.bottom - view.height * share)
            canvas.text(frame.left - 3, y + 4, words, 11, MUTED, GROUND_TOP, align=1)


#: Labels of the scale: the level of an echo whose bar has this share of the height.
LEVELS = (
    ("0 dB", 1.0),
    ("\N{MINUS SIGN}6", 0.5012),
    ("\N{MINUS SIGN}12", 0.2512),
    ("\N{MINUS SIGN}18", 0.1259),
)


def _level_lines(canvas, view, plate, horizon):
    """Across the whole dark area; above it, short ones that end before the numbers beside the last bar."""
    for _, share in LEVELS[1:]:
        y = round(view.bottom - view.height * share) + 0.5
        if y > horizon:
            canvas.line(plate.left, y, plate.right, y, NIGHT_LINE, alpha=0.17)
        else:
            end = plate.left + 150
            canvas.line(plate.left, y, end, y, fade(end - 110, 0, end, 0, (0, "8C8370", 0.8), (1, "8C8370", 0)))


#: The plaque: first row, height, extent of the dark part to the left and right of the view's middle, width of each
#: brass end.
PLAQUE_TOP, PLAQUE_HEIGHT, PLAQUE_LEFT, PLAQUE_RIGHT, BRASS_END = 49, 12, 147, 160, 16


def _plaque(canvas, view):
    left, right = round(view.middle) - PLAQUE_LEFT, round(view.middle) + PLAQUE_RIGHT
    top, width = view.top + PLAQUE_TOP, right - left
    outer, outer_width = left - BRASS_END, width + 2 * BRASS_END
    canvas.shadow(outer, top, outer_width, PLAQUE_HEIGHT, 3, size=2, alpha=0.22, drop=1)
    brass = fade(0, top, 0, top + PLAQUE_HEIGHT, (0, BRASS_LIGHT), (0.25, BRASS), (1, BRASS))
    canvas.box(outer, top, outer_width, PLAQUE_HEIGHT, brass, radius=3)
    canvas.box(left, top, width, PLAQUE_HEIGHT, PLAQUE)
    canvas.box(left, top, width, 3, fade(0, top, 0, top + 3, (0, "000000", 0.6), (1, "000000", 0)))


def _panel(canvas, skin, group, top):
    left, width, height = skin.number(group + "Left"), skin.number(group + "Width"), skin.number("RowHeight")
    canvas.shadow(left, top, width, height, 8, size=5, alpha=0.22)
    canvas.box(left, top, width, height, fade(0, top, 0, top + height, (0, PANEL_TOP), (1, PANEL)), radius=8)
    canvas.frame(
        left,
        top,
        width,
        height,
        fade(0, top, 0, top + height, (0, "FFFFFF", 0.11), (0.25, "FFFFFF", 0.03), (1, "000000", 0.12)),
        radius=8,
    )
    canvas.box(left + 12, top + 10, 3, 9, AMBER, radius=1.5)
    name = canvas.text(left + 21, top + 18.5, group.upper(), 11, IVORY, PANEL_TOP, align=0, bold=True, spacing=1.6)
    line = left + 21 + name + 10
    canvas.line(line, top + 14.5, left + width - 12, top + 14.5, "FFFFFF", alpha=0.07)


def _caption(canvas, skin, name, top):
    words, unit = LABELS[name]
    middle = skin.control_rect(name, PICTURES).middle
    ink = MUTED if name in QUIET else IVORY
    if unit:
        gap = 4
        width = canvas.text_width(words, 12) + gap + canvas.text_width(unit, 12)
        left = middle - width / 2
        left += canvas.text(left, top + 42, words, 12, ink, PANEL_TOP, align=0) + gap
        canvas.text(left, top + 42, unit, 12, MUTED, PANEL_TOP, align=0)
    else:
        canvas.text(middle, top + 42, words, 12, ink, PANEL_TOP)
    if name in QUIET:
        base = top + skin.number("ValueTop") + skin.number("ValueHeight") / 2 + 4
        canvas.text(middle, base, "no effect", 12, MUTED, PANEL, italic=True)


def _mix_track(canvas, skin):
    place = skin.control_rect("DryWet", PICTURES)
    left, right = place.left + FADER_WIDTH / 2, place.right - FADER_WIDTH / 2
    y = place.top + FADER_HEIGHT / 2
    for step in range(11):
        x = left + (right - left) * step / 10
        tall = 4 if step % 5 else 7
        canvas.line(x, y - 11 - tall, x, y - 11, MUTED, alpha=0.75 if step % 5 == 0 else 0.4)
    canvas.box(left - 5, y - 3.5, right - left + 10, 7, "101317", radius=3.5)
    canvas.box(
        left - 5,
        y - 3.5,
        right - left + 10,
        7,
        fade(0, y - 3.5, 0, y + 3.5, (0, "000000", 0.5), (1, "FFFFFF", 0.10)),
        radius=3.5,
    )
    canvas.box(left - 4, y - 1.5, right - left + 8, 3, "3D454D", radius=1.5)
    canvas.text(left - 5, place.bottom + 9, "dry", 11, MUTED, PANEL, align=0)
    canvas.text(right + 5, place.bottom + 9, "wet", 11, MUTED, PANEL, align=1)


def _movement_note(canvas, skin):
    """Sweep rate and depth have no effect in the first position of the switch."""
    place = skin.control_rect("Movement", PICTURES)
    base = skin.number("RowOne") + skin.number("ValueTop") + skin.number("ValueHeight") / 2 + 4
    canvas.text(place.middle, base, "Glide and Fine can sweep", 11, MUTED, PANEL)


def _hint_line(canvas, place):
    canvas.box(0, place.top - 2, WIDTH, HEIGHT - place.top + 2, BAR)
    canvas.box(0, place.top - 2, WIDTH, 1, "000000", alpha=0.45)
    canvas.box(0, place.top - 1, WIDTH, 1, "FFFFFF", alpha=0.04)
    y = place.top + place.height / 2
    canvas.ring(place.left - 11, y, 3.2, MUTED, 1.4)
    words = "Ctrl-click: reset   \N{MIDDLE DOT}   Right-click the echoes: help"
    canvas.text(WIDTH - 18, y + 4, words, 11, MUTED, BAR, align=1)


# The controls.


def draw_knob(canvas, size, value, rest):
    """A knob whose arc is lit from `rest`, where the parameter does nothing, to its value."""
    x = y = size / 2
    angle = knob_angle(value)
    canvas.arc(x, y, 26.5, KNOB_START, KNOB_START + KNOB_RANGE, "14171B", 4.6)
    canvas.arc(x, y, 26.5, KNOB_START, KNOB_START + KNOB_RANGE, "454D56", 2.4, alpha=0.85)
    start, end = sorted((knob_angle(rest), angle))
    if end - start > 0.01:
        canvas.arc(x, y, 26.5, start, end, AMBER, 5.0, alpha=0.18)
        canvas.arc(x, y, 26.5, start, end, AMBER, 2.8)
    if rest:
        canvas.disc(x, y - 26.5, 2.0, IVORY if abs(value - rest) < 0.004 else AMBER_LIGHT)
    draw_cap(canvas, x, y, 20.5)
    canvas.spoke(x, y, 8.5, 16.5, angle, "000000", 4.4, alpha=0.45)
    canvas.spoke(x, y, 8.5, 16.5, angle, IVORY, 2.8)


def draw_cap(canvas, x, y, radius):
    """A round cap of dark metal under a soft light from above left."""
    for step in range(8):
        canvas.disc(x + 0.5, y + 3.0, radius + 3.6 - 0.6 * step, "000000", alpha=0.085)
    left, top, right, bottom = x - radius, y - radius, x + radius, y + radius
    canvas.disc(x, y, radius, fade(left + 6, top, right - 6, bottom, (0, "A3ADB7"), (0.4, "4C555F"), (1, "14171B")))
    canvas.disc(x, y, radius - 1.1, fade(left, top, right, bottom, (0, "616B76"), (0.5, "3C444D"), (1, "23282E")))
    inner = radius - 4.4
    canvas.disc(x, y, inner + 0.7, fade(left, top, right, bottom, (0, "1D2126"), (1, "6B7580")), alpha=0.8)
    canvas.disc(x, y, inner, fade(left, top, right, bottom, (0, "3A424B"), (1, "4A535D")))
    spot = (x - radius * 0.34, y - radius * 0.42)
    canvas.disc(x, y, inner, glow(x, y, inner * 1.35, (0, "FFFFFF", 0.26), (1, "FFFFFF", 0), focus=spot))


def _trim(canvas, size, value):
    """The quiet sister: smaller, and without a lit arc."""
    x = y = size / 2
    for step in range(11):
        angle = knob_angle(step / 10)
        canvas.spoke(x, y, 18, 20, angle, MUTED, 1.2, alpha=0.75 if step % 5 == 0 else 0.4)
    draw_cap(canvas, x, y, 14.5)
    canvas.spoke(x, y, 5.5, 11, knob_angle(value), "B4BAC0", 2.2)


def _movement(canvas, value):
    """Three fields side by side, each with a name and what you hear; the chosen one is raised and lit."""
    width, height = SWITCH_WIDTH, SWITCH_HEIGHT
    canvas.box(0, 0, width, height, "14171B", radius=6)
    canvas.frame(0, 0, width, height, fade(0, 0, 0, height, (0, "000000", 0.5), (1, "FFFFFF", 0.12)), radius=6)
    field = (width - 4) / 3
    for number, (words, heard) in enumerate(WAYS):
        chosen = number == round(value * 2)
        left = 2 + number * field
        ground = "454D56" if chosen else "14171B"
        if chosen:
            canvas.box(left, 2, field, height - 4, fade(0, 2, 0, height - 2, (0, "4E5761"), (1, "3A424A")), radius=4.5)
            canvas.frame(
                left,
                2,
                field,
                height - 4,
                fade(0, 2, 0, height - 2, (0, "FFFFFF", 0.22), (1, "000000", 0.1)),
                radius=4.5,
            )
            canvas.box(left + 16, height - 6.5, field - 32, 2, AMBER, radius=1)
        canvas.text(left + field / 2, 17, words, 12, IVORY if chosen else MUTED, ground)
        canvas.text(left + field / 2, 32, heard, 11, "F5BC62" if chosen else MUTED, ground)


def _fader(sizes):
    canvas = Canvas(FADER_WIDTH, FADER_HEIGHT, **sizes)
    x, y, w, h = 2, 4, FADER_WIDTH - 4, FADER_HEIGHT - 10
    canvas.shadow(x, y, w, h, 4, size=3, alpha=0.5, drop=2)
    canvas.box(x, y, w, h, fade(0, y, 0, y + h, (0, "7A848E"), (0.5, "3E464F"), (1, "1F2429")), radius=4)
    canvas.box(
        x + 1, y + 1, w - 2, h - 2, fade(x, 0, x + w, 0, (0, "3A424A"), (0.5, "59636D"), (1, "333A41")), radius=3.2
    )
    canvas.box(x + w / 2 - 1, y + 4, 2, h - 8, AMBER, radius=1)
    return canvas


def draw_menu(opened, width, height, sizes=None):
    """The button of the skin menu."""
    canvas = Canvas(width, height, **(sizes or {}))
    top, bottom = ("454D56", "4E5761") if opened else ("3C444D", "2F363D")
    canvas.box(0, 0, width, height, "0E1114", radius=6)
    canvas.box(1, 1, width - 2, height - 2, fade(0, 1, 0, height - 1, (0, top), (1, bottom)), radius=5)
    light = fade(0, 1, 0, height, (0, "FFFFFF", 0.16), (1, "FFFFFF", 0.02))
    canvas.frame(1, 1, width - 2, height - 2, light, radius=5)
    canvas.text(14, height / 2 + 4.5, "Skins", 12, IVORY, top, align=0)
    x, y = width - 18, height / 2 + 0.5
    canvas.polygon(((x - 5, y - 3), (x + 5, y - 3), (x, y + 3)), AMBER)
    return canvas


# The about box, which a click on the background opens. Its lower part is free for the credits of the plug-in.


ABOUT_WIDTH, ABOUT_HEIGHT = 610, 512
#: Height of the credits and of the margin below them, in pixels.
CREDITS = 165


def draw_about(width, height, size, sizes=None):
    """The name, in letters of `size`, below a pattern of echoes."""
    canvas = Canvas(width, height, GROUND_DEEP, **(sizes or {}))
    canvas.box(0, 0, width, height, fade(0, 0, 0, height, (0, "2C333B"), (0.68, "20252B"), (1, "171A1E")))
    light = (0, AMBER_DEEP, 0.32), (0.5, AMBER_DEEP, 0.09), (1, AMBER_DEEP, 0)
    canvas.box(0, 0, width, height, glow(width / 2, height * 0.42, width * 0.54, *light))
    line = height - CREDITS - 0.5
    _echo_fan(canvas, 62, line - 110 * size / 34, width - 124, (line - 110 * size / 34) * 0.71)
    canvas.text(width / 2, line - 46 * size / 34, "QUILLON", size, IVORY, "20252B", bold=True, spacing=size / 4)
    words, small = "The 128 Taps Echo", max(12, 15 * size / 34)
    canvas.text(width / 2, line - 18 * size / 34, words, small, AMBER_LIGHT, "20252B", italic=True)
    canvas.line(width / 2 - 130, line, width / 2 + 130, line, AMBER, alpha=0.5)
    canvas.frame(0, 0, width, height, "0C0E10", width=1)
    canvas.frame(1, 1, width - 2, height - 2, fade(0, 0, 0, height, (0, "FFFFFF", 0.16), (1, "FFFFFF", 0.03)))
    canvas.grain(1, seed=95)
    return canvas


def _echo_fan(canvas, left, base, width, height):
    """A pattern of echoes that spreads and fades, over its own faint reflection."""
    count = 40
    places = [1 / (math.exp(4 - 8 * (i + 0.5) / count) + 1) for i in range(count)]
    gaps = [0.25 + place for place in places]
    total, x = sum(gaps), left
    for i, gap in enumerate(gaps):
        x += gap / total * width
        tall = height * (1 - i / count) ** 1.25
        colour = AMBER_LIGHT if i % 2 == 0 else AMBER
        bar = 3.2
        canvas.box(x, base - tall, bar, tall, fade(0, base - tall, 0, base, (0, colour), (1, AMBER_DEEP)), radius=1.6)
        canvas.box(
            x, base + 3, bar, tall * 0.22, fade(0, base, 0, base + tall * 0.22 + 3, (0, AMBER, 0.28), (1, AMBER, 0))
        )
    canvas.line(
        left - 20,
        base + 1.5,
        left + width + 20,
        base + 1.5,
        fade(left - 20, 0, left + width + 20, 0, (0, AMBER, 0), (0.5, AMBER, 0.6), (1, AMBER, 0)),
    )
