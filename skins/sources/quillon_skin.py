"""The face of the plug-in: a dark slate instrument with one amber accent, and a lit paper plate for the echoes."""

import math

from canvas import KNOB_RANGE, KNOB_START, Canvas, fade, film_strip, glow, knob_angle

FOLDER = "Quillon Skin"

GROUND_TOP, GROUND, GROUND_DEEP = "2B3138", "23282E", "1C2025"
BAR_TOP, BAR = "1F242A", "1A1E23"
PANEL_TOP, PANEL = "323942", "2A3037"
WELL = "191D22"
IVORY, MUTED = "F0EBDF", "AEB6BE"
AMBER, AMBER_DEEP, AMBER_LIGHT = "F0A93C", "C47F1D", "FFCE7D"

#: The plate behind the echoes: light enough for their grey lettering, with a printed stripe on which both the
#: dark blue and the yellow line of the help pages can be read.
PLATE_TOP, PLATE_BOTTOM, PLATE_LINE = "F4EFE4", "ECE6D9", "CFC7B6"
STRIPE, STRIPE_TOP, STRIPE_HEIGHT = "AB8044", 48, 14
INK = "14171B"

#: An odd number, so that one frame points straight up.
FRAMES = 129

#: The words above each control, and the unit beside its value.
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
    "InputGain": ("Input gain", "dB"),
    "Feedback": ("Feedback", None),
    "Stereo": ("Stereo", None),
    "DryWet": ("Mix", None),
    "OutputPan": ("Echo pan", None),
    "OutputGain": ("Output gain", "dB"),
}
QUIET = ("InputGain", "OutputGain")

GROUPS = {
    "Pattern": ("RowOne", ("BaseLength", "Taps", "Stretch", "AmpDecay", "Curve")),
    "Motion": ("RowOne", ("SweepRate", "SweepDepth", "Movement")),
    "Input": ("RowTwo", ("LowPass", "HighPass", "InputPan", "InputGain")),
    "Output": ("RowTwo", ("Feedback", "Stereo", "DryWet", "OutputPan", "OutputGain")),
}

WIDTH, HEIGHT = 940, 604
SWITCH_WIDTH, SWITCH_HEIGHT = 148, 30
FADER_WIDTH, FADER_HEIGHT = 22, 38
MENU_WIDTH, MENU_HEIGHT = 94, 26
PICTURES = {"hswitch": (SWITCH_WIDTH, SWITCH_HEIGHT), "slider": (FADER_WIDTH, FADER_HEIGHT)}


def draw(skin):
    """Saves every picture of the skin beside its skin.xml."""
    folder = skin.folder
    _background(skin).save(folder / "background.png")
    _about().save(folder / "about.png")
    _menu(opened=False).save(folder / "skin_menu.png")
    _menu(opened=True).save(folder / "skin_menu_open.png")
    knob, trim = skin.number("Knob"), skin.number("Trim")
    film_strip(folder / "knob.png", knob, knob, FRAMES, lambda canvas, value: _knob(canvas, knob, value, 0.0))
    film_strip(folder / "knob_centre.png", knob, knob, FRAMES, lambda canvas, value: _knob(canvas, knob, value, 0.5))
    film_strip(folder / "trim.png", trim, trim, FRAMES, lambda canvas, value: _trim(canvas, trim, value))
    film_strip(folder / "movement.png", SWITCH_WIDTH, SWITCH_HEIGHT, 3, _movement)
    _fader().save(folder / "fader.png")


# The window.


def _background(skin):
    canvas = Canvas(WIDTH, HEIGHT, GROUND)
    canvas.box(0, 0, WIDTH, HEIGHT, fade(0, 0, 0, HEIGHT, (0, GROUND_TOP), (0.5, GROUND), (1, GROUND_DEEP)))
    _title_bar(canvas)
    _plate(canvas, skin.place("ViewTaps"))
    for group, (row, names) in GROUPS.items():
        _panel(canvas, skin, group, skin.number(row))
        for name in names:
            _caption(canvas, skin, name, skin.number(row))
    _mix_track(canvas, skin)
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


def _plate(canvas, view):
    frame = view.grown(6)
    canvas.shadow(frame.left, frame.top, frame.width, frame.height, 7, size=6, alpha=0.35)
    canvas.box(frame.left, frame.top, frame.width, frame.height, "111418", radius=7)
    canvas.line(frame.left + 7, frame.bottom + 0.5, frame.right - 7, frame.bottom + 0.5, "FFFFFF", alpha=0.09)
    plate = view.grown(4)
    canvas.cr.save()
    canvas.path_box(plate.left, plate.top, plate.width, plate.height, 4)
    canvas.cr.clip()
    canvas.box(
        plate.left,
        plate.top,
        plate.width,
        plate.height,
        fade(0, plate.top, 0, plate.bottom, (0, PLATE_TOP), (1, PLATE_BOTTOM)),
    )
    _stripe(canvas, view, plate.right)
    for share in (0.5, 0.25, 0.125):
        level = view.bottom - round(view.height * share) + 0.5
        canvas.line(plate.left, level, plate.right, level, PLATE_LINE, alpha=0.8)
    canvas.line(plate.left, view.bottom + 0.5, plate.right, view.bottom + 0.5, "8C8370")
    for step in range(6):
        canvas.frame(
            plate.left + step,
            plate.top + step,
            plate.width - 2 * step,
            plate.height - 2 * step,
            "5A4A2A",
            radius=4,
            alpha=0.10 * (1 - step / 6) ** 2,
        )
    canvas.box(
        plate.left,
        plate.top,
        plate.width,
        4,
        fade(0, plate.top, 0, plate.top + 4, (0, "000000", 0.22), (1, "000000", 0)),
    )
    canvas.cr.restore()
    for share, words in ((0.5, "-6 dB"), (0.25, "-12"), (0.125, "-18")):
        level = view.bottom - round(view.height * share)
        canvas.text(
            view.right - 4, level - 3, words.replace("-", "\N{MINUS SIGN}"), 11, "6B6556", PLATE_BOTTOM, align=1
        )


def _stripe(canvas, view, right):
    """Runs in from the right and is at full strength wherever the help pages write on it."""
    start, full = view.left + 150, view.left + 260
    y = view.top + STRIPE_TOP
    canvas.box(start, y, right - start, STRIPE_HEIGHT, fade(start, 0, full, 0, (0, STRIPE, 0), (1, STRIPE)))
    canvas.text(view.right - 4, y + 11, "128 TAPS", 11, INK, STRIPE, align=1, bold=True, spacing=1.4)


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
    canvas.text(middle, top + 36, words, 12, MUTED if name in QUIET else IVORY, PANEL_TOP)
    value = skin.value(name)
    if unit:
        canvas.text(value.right + 4, value.top + 14, unit, 12, MUTED, PANEL, align=0)


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
    canvas.box(left - 4, y - 1.5, right - left + 8, 3, fade(left, 0, right, 0, (0, "3A4048"), (1, AMBER)), radius=1.5)
    canvas.text(place.left, place.bottom + 10, "Dry", 11, MUTED, PANEL, align=0)
    canvas.text(place.right, place.bottom + 10, "Wet", 11, MUTED, PANEL, align=1)


def _hint_line(canvas, place):
    canvas.box(0, place.top - 2, WIDTH, HEIGHT - place.top + 2, BAR)
    canvas.box(0, place.top - 2, WIDTH, 1, "000000", alpha=0.45)
    canvas.box(0, place.top - 1, WIDTH, 1, "FFFFFF", alpha=0.04)
    y = place.top + place.height / 2
    canvas.polygon(((place.left - 16, y - 5), (place.left - 8, y), (place.left - 16, y + 5)), AMBER)
    canvas.text(WIDTH - 18, y + 4, "Right-click the echoes for help, a control for MIDI", 11, MUTED, BAR, align=1)


# The controls.


def _knob(canvas, size, value, rest):
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
    _cap(canvas, x, y, 20.5)
    canvas.spoke(x, y, 8.5, 16.5, angle, "000000", 4.4, alpha=0.45)
    canvas.spoke(x, y, 8.5, 16.5, angle, IVORY, 2.8)


def _cap(canvas, x, y, radius):
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
    _cap(canvas, x, y, 14.5)
    canvas.spoke(x, y, 5.5, 11, knob_angle(value), "B4BAC0", 2.2)


def _movement(canvas, value):
    """Three fields side by side, the chosen one raised and lit."""
    width, height = SWITCH_WIDTH, SWITCH_HEIGHT
    canvas.box(0, 0, width, height, "14171B", radius=6)
    canvas.frame(0, 0, width, height, fade(0, 0, 0, height, (0, "000000", 0.5), (1, "FFFFFF", 0.12)), radius=6)
    field = (width - 4) / 3
    for number, words in enumerate(("Jump", "Glide", "Fine")):
        chosen = number == round(value * 2)
        left = 2 + number * field
        if chosen:
            canvas.box(left, 2, field, height - 4, fade(0, 2, 0, height - 2, (0, "535C66"), (1, "3A424A")), radius=4.5)
            canvas.frame(
                left,
                2,
                field,
                height - 4,
                fade(0, 2, 0, height - 2, (0, "FFFFFF", 0.22), (1, "000000", 0.1)),
                radius=4.5,
            )
            canvas.box(left + 12, height - 7, field - 24, 2, AMBER, radius=1)
        canvas.text(
            left + field / 2, 18, words, 12, IVORY if chosen else MUTED, "535C66" if chosen else "14171B", bold=False
        )


def _fader():
    canvas = Canvas(FADER_WIDTH, FADER_HEIGHT)
    x, y, w, h = 2, 4, FADER_WIDTH - 4, FADER_HEIGHT - 10
    canvas.shadow(x, y, w, h, 4, size=3, alpha=0.5, drop=2)
    canvas.box(x, y, w, h, fade(0, y, 0, y + h, (0, "7A848E"), (0.5, "3E464F"), (1, "1F2429")), radius=4)
    canvas.box(
        x + 1, y + 1, w - 2, h - 2, fade(x, 0, x + w, 0, (0, "3A424A"), (0.5, "59636D"), (1, "333A41")), radius=3.2
    )
    canvas.box(x + w / 2 - 1, y + 4, 2, h - 8, AMBER, radius=1)
    return canvas


def _menu(opened):
    canvas = Canvas(MENU_WIDTH, MENU_HEIGHT)
    top, bottom = ("454D56", "4E5761") if opened else ("3C444D", "2F363D")
    canvas.box(0, 0, MENU_WIDTH, MENU_HEIGHT, "0E1114", radius=6)
    canvas.box(1, 1, MENU_WIDTH - 2, MENU_HEIGHT - 2, fade(0, 1, 0, MENU_HEIGHT - 1, (0, top), (1, bottom)), radius=5)
    canvas.frame(
        1,
        1,
        MENU_WIDTH - 2,
        MENU_HEIGHT - 2,
        fade(0, 1, 0, MENU_HEIGHT, (0, "FFFFFF", 0.16), (1, "FFFFFF", 0.02)),
        radius=5,
    )
    canvas.text(14, 17.5, "Skins", 12, IVORY, top, align=0)
    x, y = MENU_WIDTH - 18, MENU_HEIGHT / 2 + 0.5
    canvas.polygon(((x - 5, y - 3), (x + 5, y - 3), (x, y + 3)), AMBER)
    return canvas


# The box that a click on the empty ground opens. Its lower third belongs to the lines that the plug-in prints.


ABOUT_WIDTH, ABOUT_HEIGHT = 610, 512


def _about():
    width, height = ABOUT_WIDTH, ABOUT_HEIGHT
    canvas = Canvas(width, height, GROUND_DEEP)
    canvas.box(0, 0, width, height, fade(0, 0, 0, height, (0, "2C333B"), (0.68, "20252B"), (1, "171A1E")))
    canvas.box(
        0,
        0,
        width,
        height,
        glow(width / 2, 215, 330, (0, AMBER_DEEP, 0.32), (0.5, AMBER_DEEP, 0.09), (1, AMBER_DEEP, 0)),
    )
    _echo_fan(canvas, 62, 236, width - 124, 168)
    canvas.text(width / 2, 300, "QUILLON", 34, IVORY, "20252B", bold=True, spacing=9)
    canvas.text(width / 2, 328, "The 128 Taps Echo", 15, AMBER_LIGHT, "20252B", italic=True)
    canvas.line(width / 2 - 130, 346.5, width / 2 + 130, 346.5, AMBER, alpha=0.5)
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
