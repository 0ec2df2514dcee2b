"""Whether what the plug-in itself writes into the window can be read on what the skin has drawn there."""

from canvas import LEAST_CONTRAST, contrast, mean_colour

#: What the picture of the echoes is written with, by the first and the last row of its view.
ECHO_TEXTS = (
    ("the line above the echoes", "666666", 0, 14, LEAST_CONTRAST),
    ("the first lines of help", "2D2D66", 0, 47, LEAST_CONTRAST),
    ("the next lines of help", "2D2D66", 62, 87, LEAST_CONTRAST),
    ("the last line of help", "666666", 89, 100, LEAST_CONTRAST),
    ("the fifth line of the second help page", "FFFF66", 49, 60, 7.0),
)
#: The extremes of the colours of bars. Below the texts they have a background of their own.
BARS = (("the palest bars", "A6BDFF", 7.0), ("the darkest bars", "276600", 2.4))
#: Half the width of the yellow line. The left and right ends of the dark blue line in the same rows, from the view's
#: middle.
YELLOW_HALF = 159
BLUE_LEFT, BLUE_RIGHT = -278, -148
#: Half the width of the longest line of help.
HELP_HALF = 288
#: Where these two overlap, no colour suits both well: 3.4 each is the best possible contrast.
LEAST_SHARED = 3.2


def horizon_of(view):
    """The first row below all texts of the effect in the view of the echoes."""
    return view.top + view.height // 3 + 53


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
    middle = int(view.middle)
    if middle + HELP_HALF > view.left + skin.number("ViewSeen"):
        raise SystemExit(f"{skin.folder.name}: the help lines are wider than the visible part of the echoes")

    def require_on(words, colour, left, right, first, last, least):
        ground = mean_colour(picture, middle + left, view.top + first, middle + right, view.top + last)
        _require(skin, words, colour, ground, least)

    low = horizon_of(view) - view.top
    for words, colour, least in BARS:
        require_on(words, colour, -view.width // 2, YELLOW_HALF, low, view.height, least)
    for words, colour, first, last, least in ECHO_TEXTS:
        require_on(words, colour, BLUE_RIGHT + 4, YELLOW_HALF, first, last, least)
    words = "the fifth line of the first help page"
    require_on(words, "2D2D66", BLUE_LEFT, -YELLOW_HALF - 4, 49, 60, LEAST_CONTRAST)
    for words, colour in ((words, "2D2D66"), ("the fifth line of the second help page", "FFFF66")):
        require_on(words, colour, -YELLOW_HALF, BLUE_RIGHT, 50, 61, LEAST_SHARED)


def _require(skin, words, colour, ground, least):
    if contrast(colour, ground) < least:
        raise SystemExit(
            f"{skin.folder.name}: {words} in {colour} stands on {ground},"
            f" a contrast of {contrast(colour, ground):.2f}; {least} is the least"
        )
