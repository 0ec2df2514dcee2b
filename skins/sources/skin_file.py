"""Reads a skin.xml as far as a picture needs it: which controls there are, and where.

The pictures take every position from the file that places the controls, so a label always stands where its
control stands. Moving a control is one edit in skin.xml and one run of make_art.
"""

import ast
import operator
import pathlib
import xml.etree.ElementTree as ElementTree
from dataclasses import dataclass

_OPERATORS = {
    ast.Add: operator.add,
    ast.Sub: operator.sub,
    ast.Mult: operator.mul,
    ast.Div: operator.truediv,
}

#: The kinds of object that a hand can move.
_CONTROLS = ("knob", "slider", "vswitch", "hswitch", "onoff")


@dataclass(frozen=True)
class Rect:
    """A rectangle in pixels of the window, or in drawing units."""

    left: float
    top: float
    right: float
    bottom: float

    @property
    def width(self):
        return self.right - self.left

    @property
    def height(self):
        return self.bottom - self.top

    @property
    def middle(self):
        """Half way between left and right."""
        return (self.left + self.right) / 2

    def grown(self, by):
        return Rect(self.left - by, self.top - by, self.right + by, self.bottom + by)


class SkinFile:
    """The objects of one skin, in the order of the file, with their constants worked out."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self._constants = {}
        self._objects = []
        for node in ElementTree.parse(self.folder / "skin.xml").getroot():
            if node.tag.lower() == "constants":
                self._define(node.text or "")
            else:
                self._objects.append(node)

    def number(self, name):
        """The value of a constant."""
        return self._constants[name.lower()]

    def objects(self, kind):
        return [node for node in self._objects if node.tag.lower() == kind.lower()]

    def rect(self, node, size=None):
        """Where an object stands. Kinds that take their size from a picture need it told."""
        x, y = self._tag(node, "x"), self._tag(node, "y")
        w, h = size or (self._tag(node, "w"), self._tag(node, "h"))
        return Rect(int(x), int(y), int(x + w), int(y + h))

    def place(self, kind):
        """Where the only object of a kind stands."""
        (node,) = self.objects(kind)
        return self.rect(node)

    def control(self, name):
        """The object that moves the parameter whose id has this name among the constants."""
        return self._find(name, _CONTROLS, "id")

    def control_rect(self, name, pictures):
        """Where that control stands. Switches and sliders take their size from their pictures: `pictures` gives
        the width and height of one state, or of the handle, by the kind of control."""
        node = self.control(name)
        kind = node.tag.lower()
        if kind == "knob":
            return self.rect(node)
        width, height = pictures[kind]
        if kind == "slider":
            length = int(self._tag(node, "len"))
            width, height = (width, length) if int(self._tag(node, "style")) & 2 else (length, height)
        return self.rect(node, (width, height))

    def value(self, name):
        """Where the value of that parameter is printed."""
        return self.rect(self._find(name, ("autodisp",), "link"))

    def _find(self, name, kinds, tag):
        wanted = self.number(name)
        for node in self._objects:
            if node.tag.lower() in kinds and self._tag(node, tag) == wanted:
                return node
        raise KeyError(f"{self.folder}: nothing for {name}")

    def _tag(self, node, tag):
        return self._evaluate(node.attrib[tag])

    def _define(self, text):
        last = 0
        for line in text.replace("\n", ",").split(","):
            line = line.strip()
            if not line:
                continue
            name, equals, expression = line.partition("=")
            last = self._evaluate(expression) if equals else last + 1
            self._constants[name.strip().lower()] = last

    def _evaluate(self, text):
        return self._walk(ast.parse(text.strip(), mode="eval").body)

    def _walk(self, node):
        if isinstance(node, ast.Constant):
            return node.value
        if isinstance(node, ast.Name):
            return self._constants[node.id.lower()]
        if isinstance(node, ast.UnaryOp) and isinstance(node.op, ast.USub):
            return -self._walk(node.operand)
        if isinstance(node, ast.BinOp):
            return _OPERATORS[type(node.op)](self._walk(node.left), self._walk(node.right))
        raise ValueError(f"{self.folder}: cannot work out {ast.dump(node)}")


class Drawing:
    """A skin in drawing units. Its constant `Scale` is the size of one unit in pixels of the window."""

    def __init__(self, skin):
        self.skin = skin
        self.scale = skin.number("Scale")

    def number(self, name):
        """A constant that is a length or a position."""
        return self.skin.number(name) / self.scale

    def place(self, kind):
        return self._shrunk(self.skin.place(kind))

    def value(self, name):
        return self._shrunk(self.skin.value(name))

    def control_rect(self, name, pictures):
        """As SkinFile.control_rect(), with the sizes of `pictures` in drawing units."""
        real = {kind: (width * self.scale, height * self.scale) for kind, (width, height) in pictures.items()}
        return self._shrunk(self.skin.control_rect(name, real))

    def _shrunk(self, rect):
        return Rect(*(side / self.scale for side in (rect.left, rect.top, rect.right, rect.bottom)))
