#!/usr/bin/env python3
"""Makes the small pictures of this folder anew (with python3-pil). They are kept, so that tests need no Python.

squares.*   3 x 2: red, green, blue over white, black, brown. JPEG: each square 16 pixels wide, as it has to guess.
glass.png   2 x 1: half transparent red, nothing at all.
palette.png, grey.png, deep.png   other kinds of PNG: 8-bit palette, 8-bit grey, 16 bits a channel.
moving.gif  2 x 2: a red picture, then a blue one.
giant.*     a header that promises more pixels than anybody can draw.
torn.*      the first half of a good file.
"""
import struct
import zlib

from PIL import Image

RED, GREEN, BLUE = (255, 0, 0), (0, 255, 0), (0, 0, 255)
WHITE, BLACK, BROWN = (255, 255, 255), (0, 0, 0), (128, 64, 32)


def squares():
    image = Image.new("RGB", (3, 2))
    image.putdata([RED, GREEN, BLUE, WHITE, BLACK, BROWN])
    return image


def png_chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def png(width, height, depth, colour, rows):
    header = struct.pack(">IIBBBBB", width, height, depth, colour, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + png_chunk(b"IHDR", header) + png_chunk(b"IDAT", zlib.compress(rows)) +
            png_chunk(b"IEND", b""))


def write(name, data):
    with open(name, "wb") as file:
        file.write(data)


def patched(name, offset, data):
    with open(name, "rb") as file:
        content = bytearray(file.read())
    content[offset:offset + len(data)] = data
    return bytes(content)


squares().save("squares.png")
squares().save("squares.bmp")
squares().convert("P", palette=Image.Palette.ADAPTIVE).save("squares.gif")
squares().resize((48, 32), Image.Resampling.NEAREST).save("squares.jpg", quality=95, subsampling=0)

glass = Image.new("RGBA", (2, 1))
glass.putdata([(255, 0, 0, 128), (0, 0, 0, 0)])
glass.save("glass.png")
squares().convert("P", palette=Image.Palette.ADAPTIVE).save("palette.png")
write("grey.png", png(2, 1, 8, 0, b"\x00\x40\xff"))
write("deep.png", png(1, 1, 16, 2, b"\x00" + struct.pack(">HHH", 0xFFFF, 0x8080, 0)))
frames = [Image.new("RGB", (2, 2), colour).convert("P", palette=Image.Palette.ADAPTIVE) for colour in (RED, BLUE)]
frames[0].save("moving.gif", save_all=True, append_images=frames[1:])

write("giant.png", png(40000, 40000, 8, 2, b"\x00"))
write("giant.bmp", patched("squares.bmp", 18, struct.pack("<ii", 40000, 40000)))
gif = patched("squares.gif", 6, struct.pack("<HH", 65535, 65535))
at = gif.index(b",\0\0\0\0\3\0\2\0")
write("giant.gif", gif[:at] + b",\0\0\0\0" + struct.pack("<HH", 65535, 65535) + gif[at + 9:])
with open("squares.jpg", "rb") as file:
    jpeg = file.read()
at = jpeg.index(b"\xff\xc0") + 5
write("giant.jpg", jpeg[:at] + struct.pack(">HH", 65500, 65500) + jpeg[at + 4:])
for name in ("squares.png", "squares.bmp", "squares.gif", "squares.jpg"):
    with open(name, "rb") as file:
        content = file.read()
    write(name.replace("squares", "torn"), content[:len(content) // 2])
