"""Quillon Skin at one and a half times the size, for high-resolution screens.

The texts that the effect writes keep their size, so the drawn letters grow less than everything else.
"""

import re

import quillon_skin

FOLDER = "Quillon Skin Large"
SCALE = 1.5
#: Letters grow by the scale times this: 12 pixels become 14.4.
LETTERS = 0.8

#: Constants that are not scaled like the others, because they depend on the 12-pixel texts of the effect.
OWN = {"ValueTop": 168, "ValueHeight": 18}


def write_skin_file(skins):
    """Makes skin.xml from that of Quillon Skin: the same objects, with scaled constants."""
    text = (skins / quillon_skin.FOLDER / "skin.xml").read_text(encoding="utf-8")
    blocks = list(re.finditer(r"<CONSTANTS>.*?</CONSTANTS>", text, re.DOTALL))
    # The first block names the parameters; the second has the positions and sizes.
    _, places = blocks
    scaled = re.sub(r"(\w+) = (-?[0-9.]+)", _scaled, places[0])
    folder = skins / FOLDER
    folder.mkdir(exist_ok=True)
    (folder / "skin.xml").write_text(text[: places.start()] + scaled + text[places.end() :], encoding="utf-8")


def _scaled(constant):
    name, value = constant[1], float(constant[2])
    return f"{name} = {OWN.get(name, value * SCALE):g}"


def draw(skin):
    """Saves every picture of the skin beside its skin.xml."""
    quillon_skin.draw(skin, LETTERS)
