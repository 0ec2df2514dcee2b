"""Whether what the plug-in itself writes into the window can be read on what the skin has drawn there."""

from canvas import LEAST_CONTRAST, contrast, mean_colour

#: What the picture of the echoes is written with, by the first and the last row of its view.
ECHO_TEXTS = (
    ("the line above the echoes", "666666", 0, 14, LEAST_CONTRAST),
    ("the first lines of help", "2D2D66", 0, 47, LEAST_CONTRAST),
    ("the next lines of help", "2D2D66", 62, 87, LEAST_CONTRAST),
    ("the last line of help", "666666", 89, 100, LEAST_CONTRAST),
    # These two share their rows, so what one gains the other loses: 3.4 each is the best there is.
    ("the fifth line of the first help page", "2D2D66", 49, 60, 3.2),
    ("the fifth line of the second help page", "FFFF66", 49, 60, 3.2),
)


def require_legible(skin):
    """Fails at the first text that cannot be read. To be called when the pictures are drawn."""
    (background,) = skin.objects("background")
    picture = skin.folder / background.attrib["filename"]
    for kind in ("autodisp", "anydisp"):
        for node in skin.objects(kind):
            place = skin.rect(node)
            ground = mean_colour(picture, place.left, place.top, place.right, place.bottom)
            words = f"the {kind} at {place.left}, {place.top}"
            _require(skin, words, node.attrib["fontcolor"], ground, LEAST_CONTRAST)
    view = skin.place("ViewTaps")
    # The yellow line is some 320 pixels wide, in the middle.
    left, right = int(view.middle) - 160, int(view.middle) + 160
    for words, colour, first, last, least in ECHO_TEXTS:
        ground = mean_colour(picture, left, view.top + first, right, view.top + last)
        _require(skin, words, colour, ground, least)


def _require(skin, words, colour, ground, least):
    if contrast(colour, ground) < least:
        raise SystemExit(
            f"{skin.folder.name}: {words} in {colour} stands on {ground},"
            f" a contrast of {contrast(colour, ground):.2f}; {least} is the least"
        )
