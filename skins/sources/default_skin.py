"""The skin to fall back on: small, light, black on white, drawn with few pictures."""

from canvas import Canvas, film_strip, knob_angle

FOLDER = "skin"

PAPER, PLATE, LINE, INK, GREY = "F2F2EF", "FFFFFF", "B9B9B4", "111111", "595959"
#: Dark blue and yellow lines of the help pages share these rows of the echoes' plate.
STRIPE, STRIPE_TOP, STRIPE_HEIGHT = "868686", 48, 14

FRAMES = 65

LABELS = {
    "BaseLength": "Length, ms",
    "Taps": "Echoes",
    "Stretch": "Stretch",
    "AmpDecay": "Fade / Swell",
    "Curve": "Curve",
    "SweepRate": "Sweep, Hz",
    "SweepDepth": "Depth",
    "Movement": "How echoes move",
    "LowPass": "High cut, Hz",
    "HighPass": "Low cut, Hz",
    "InputPan": "Pan",
    "InputGain": "Gain, dB",
    "Feedback": "Feedback",
    "Stereo": "Stereo",
    "DryWet": "Dry / Wet",
    "OutputPan": "Pan",
    "OutputGain": "Gain, dB",
}
QUIET = ("InputGain", "OutputGain")

#: Name, constant with the top, left edge, right edge.
GROUPS = (
    ("Pattern", "RowOne", 12, 376),
    ("Motion", "RowOne", 384, 668),
    ("Input", "RowTwo", 12, 303),
    ("Output", "RowTwo", 311, 668),
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

WIDTH, HEIGHT, ROW_HEIGHT = 680, 497, 98
SWITCH_WIDTH, SWITCH_HEIGHT = 120, 24
FADER_WIDTH, FADER_HEIGHT = 12, 26
PICTURES = {"hswitch": (SWITCH_WIDTH, SWITCH_HEIGHT), "slider": (FADER_WIDTH, FADER_HEIGHT)}


def draw(skin):
    """Saves every picture of the skin beside its skin.xml."""
    folder, knob = skin.folder, skin.number("Knob")
    _background(skin).save(folder / "background.png")
    _about().save(folder / "about.png")
    film_strip(folder / "knob.png", knob, knob, FRAMES, lambda canvas, value: _knob(canvas, knob, value, INK))
    film_strip(folder / "knob_quiet.png", knob, knob, FRAMES, lambda canvas, value: _knob(canvas, knob, value, GREY))
    film_strip(folder / "movement.png", SWITCH_WIDTH, SWITCH_HEIGHT, 3, _movement)
    _fader().save(folder / "fader.png")


def _background(skin):
    canvas = Canvas(WIDTH, HEIGHT, PAPER)
    canvas.box(0, 0, WIDTH, 34, INK)
    canvas.text(14, 23, "Quillon Multitap Delay", 16, PLATE, INK, align=0, bold=True)
    menu = skin.place("skinselector")
    canvas.frame(menu.left, menu.top, menu.width, menu.height, PLATE)
    canvas.text(menu.left + 10, menu.top + 15.5, "Skins", 12, PLATE, INK, align=0)
    x, y = menu.right - 15, menu.top + 11
    canvas.polygon(((x - 5, y - 3), (x + 5, y - 3), (x, y + 3)), PLATE)

    view = skin.place("ViewTaps")
    canvas.box(view.left, view.top, view.width, view.height, PLATE)
    canvas.box(view.left, view.top + STRIPE_TOP, view.width, STRIPE_HEIGHT, STRIPE)
    frame = view.grown(1)
    canvas.frame(frame.left, frame.top, frame.width, frame.height, INK)

    for words, row, left, right in GROUPS:
        top = skin.number(row)
        canvas.box(left, top, right - left, ROW_HEIGHT, PLATE)
        canvas.frame(left, top, right - left, ROW_HEIGHT, LINE)
        canvas.box(left, top, right - left, 2, INK)
        canvas.text(left + 8, top + 15, words, 12, INK, PLATE, align=0, bold=True)
    for row, names in ROWS.items():
        for name in names:
            middle = skin.control_rect(name, PICTURES).middle
            canvas.text(middle, skin.number(row) + 30, LABELS[name], 11, GREY if name in QUIET else INK, PLATE)

    track = skin.control_rect("DryWet", PICTURES)
    canvas.box(track.left, track.top + FADER_HEIGHT / 2 - 2, track.width, 4, INK)

    hint = skin.place("anydisp")
    canvas.box(0, hint.top - 1, WIDTH, HEIGHT - hint.top + 1, INK)
    canvas.text(WIDTH - 12, hint.top + 13, "Right-click the echoes for help", 11, PLATE, INK, align=1)
    return canvas


def _knob(canvas, size, value, ink):
    x = y = size / 2
    canvas.disc(x, y, 15, PLATE)
    canvas.ring(x, y, 15, ink, 2)
    for end in (0, 1):
        canvas.spoke(x, y, 17.5, 20, knob_angle(end), ink, 1.5)
    canvas.spoke(x, y, 3, 12, knob_angle(value), ink, 4)


def _movement(canvas, value):
    width, height = SWITCH_WIDTH, SWITCH_HEIGHT
    field = width / 3
    canvas.box(0, 0, width, height, PLATE)
    for number, words in enumerate(("Jump", "Glide", "Fine")):
        chosen = number == round(value * 2)
        if chosen:
            canvas.box(number * field, 0, field, height, INK)
        ink, ground = (PLATE, INK) if chosen else (INK, PLATE)
        canvas.text((number + 0.5) * field, 16, words, 11, ink, ground)
        canvas.box(number * field, 0, 1, height, INK)
    canvas.frame(0, 0, width, height, INK)


def _fader():
    canvas = Canvas(FADER_WIDTH, FADER_HEIGHT)
    canvas.box(0, 0, FADER_WIDTH, FADER_HEIGHT, PLATE)
    canvas.frame(0, 0, FADER_WIDTH, FADER_HEIGHT, INK, width=2)
    canvas.box(FADER_WIDTH / 2 - 1, 5, 2, FADER_HEIGHT - 10, INK)
    return canvas


def _about():
    """Its lower part belongs to the lines that the plug-in prints in white."""
    width, height = 441, 404
    canvas = Canvas(width, height, INK)
    canvas.frame(4, 4, width - 8, height - 8, PLATE)
    for echo in range(24):
        tall = 140 * (1 - echo / 24) ** 1.2
        canvas.box(58 + echo * 13.8, 182 - tall, 5, tall, PLATE)
    canvas.text(width / 2, 230, "Quillon", 28, PLATE, INK, bold=True)
    return canvas
