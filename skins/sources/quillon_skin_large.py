"""The face of the plug-in for dense screens: all that Quillon Skin is, half as large again.

The letters that the effect writes keep their size, so the drawn ones grow by less than everything else.
"""

import re

import quillon_skin

FOLDER = "Quillon Skin Large"
SCALE = 1.5
#: The share of the scale by which letters grow: 12 pixels become 14.4.
LETTERS = 0.8

#: Constants that are not those of Quillon Skin times the scale: what depends on letters of 12 pixels.
OWN = {"ValueTop": 168, "ValueHeight": 18}


def write_skin_file(skins):
    """Makes skin.xml from that of Quillon Skin: the same objects, with other constants."""
    text = (skins / quillon_skin.FOLDER / "skin.xml").read_text(encoding="utf-8")
    blocks = list(re.finditer(r"<CONSTANTS>.*?</CONSTANTS>", text, re.DOTALL))
    # The first names the parameters, the second holds places and sizes.
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
