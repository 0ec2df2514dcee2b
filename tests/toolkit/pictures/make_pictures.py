#!/usr/bin/env python3
"""Makes the small pictures of this folder anew (with python3-pil). They are kept, so that tests need no Python.

squares.*   3 x 2: red, green, blue over white, black, brown. JPEG: each square 16 pixels wide, as it has to guess.
glass.*     2 x 1: half transparent red, nothing at all.
palette.png, grey.png, deep.png   other kinds of PNG: 8-bit palette, 8-bit grey, 16 bits a channel.
moving.gif  2 x 2: a red picture, then a blue one.
squares.ico has a smaller picture before that one; in png.ico it is kept as a PNG.
giant.*     a header that promises more pixels than anybody can draw.
torn.*      the first half of a good file.
arithmetic.jpg is not made here: jpegtran -arithmetic -copy none squares.jpg > arithmetic.jpg
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


def tiff(width, height, samples, pixels, byte_order="<"):
    """Without compression, in one strip at the end."""
    entries = [(256, 4, width), (257, 4, height), (258, 3, 8), (259, 3, 1), (262, 3, 2), (273, 4, None),
               (277, 3, samples), (278, 4, height), (279, 4, len(pixels))]
    if samples == 4:
        entries.append((338, 3, 2))  # the fourth is how much is to be seen, not multiplied in
    end = 8 + 2 + 12 * len(entries) + 4
    bits = struct.pack(byte_order + "4H", 8, 8, 8, 8)[:2 * samples]
    data = (b"II*\0" if byte_order == "<" else b"MM\0*") + struct.pack(byte_order + "IH", 8, len(entries))
    for tag, kind, value in entries:
        count = samples if tag == 258 else 1
        value = end if tag == 258 else end + len(bits) if tag == 273 else value
        at_high_end = kind == 3 and count == 1 and byte_order == ">"
        data += struct.pack(byte_order + "HHII", tag, kind, count, value << 16 if at_high_end else value)
    return data + struct.pack(byte_order + "I", 0) + bits + pixels


def dib(width, height, pixels):
    """A picture in an ICO: its rows from the bottom, blue first, then a bit for each pixel that is not to be seen."""
    rows = [pixels[y * width:(y + 1) * width] for y in reversed(range(height))]
    colours = b"".join(bytes((b, g, r, a)) for row in rows for r, g, b, a in row)
    unseen = b"".join(struct.pack(">I", sum(1 << (31 - x) for x in range(width) if row[x][3] == 0)) for row in rows)
    return struct.pack("<IiiHHIIiiII", 40, width, 2 * height, 1, 32, 0, 0, 0, 0, 0, 0) + colours + unseen


def ico(*pictures):
    at = 6 + 16 * len(pictures)
    directory, data = struct.pack("<HHH", 0, 1, len(pictures)), b""
    for width, height, picture in pictures:
        directory += struct.pack("<BBBBHHII", width, height, 0, 0, 1, 32, len(picture), at + len(data))
        data += picture
    return directory + data


def more():
    colours = [RED, GREEN, BLUE, WHITE, BLACK, BROWN]
    opaque = [colour + (255,) for colour in colours]
    half_red = [(255, 0, 0, 128), (0, 0, 0, 0)]
    write("squares.tif", tiff(3, 2, 3, bytes(sum(colours, ()))))
    write("motorola.tif", tiff(3, 2, 3, bytes(sum(colours, ())), ">"))
    write("glass.tif", tiff(2, 1, 4, bytes(sum(half_red, ()))))
    write("giant.tif", tiff(40000, 40000, 3, bytes(sum(colours, ()))))
    write("squares.ico", ico((1, 1, dib(1, 1, [RED + (255,)])), (3, 2, dib(3, 2, opaque))))
    write("glass.ico", ico((2, 1, dib(2, 1, half_red))))
    write("giant.ico", ico((3, 2, struct.pack("<Iii", 40, 40000, 80000) + dib(3, 2, opaque)[12:])))
    with open("squares.png", "rb") as file:
        write("png.ico", ico((3, 2, file.read())))
    for name in ("squares.tif", "squares.ico"):
        with open(name, "rb") as file:
            content = file.read()
        write(name.replace("squares", "torn"), content[:len(content) // 2])


more()
