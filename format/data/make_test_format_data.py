#!/usr/bin/env python3
"""Writes logos.raw and quality.esc, the stored data of the built-in test patterns. Edit here, then run it again.

logos.raw: a 256 x 112 dot logo, then the same art at 512 x 224 dots, one bit per dot, rows top down, the top bit
of each byte leftmost.
quality.esc: the sample format of the quality pattern, 18322 bytes; the pattern drops the first ten and parses
the rest, from the format's ten-byte name on.
"""
import os

HERE = os.path.dirname(os.path.abspath(__file__))

# 5 x 7 letters of the logo.
LETTERS = {
    "K": ["#...#", "#..#.", "#.#..", "##...", "#.#..", "#..#.", "#...#"],
    "T": ["#####", "..#..", "..#..", "..#..", "..#..", "..#..", "..#.."],
    "R": ["####.", "#...#", "#...#", "####.", "#.#..", "#..#.", "#...#"],
}


def logo_cells():
    """The art on a grid of 64 x 28 cells, each 4 x 4 dots in the small logo."""
    width, height = 64, 28
    cells = [[0] * width for _ in range(height)]
    for y in range(height):
        for x in range(width):
            if x in (0, width - 1) or y in (0, height - 1):
                cells[y][x] = 1
            # a band of diagonal stripes under the letters
            if 21 <= y <= 24 and 3 <= x <= width - 4 and (x + y) % 4 < 2:
                cells[y][x] = 1
    for i, letter in enumerate("KTR"):
        for ly, row in enumerate(LETTERS[letter]):
            for lx, c in enumerate(row):
                if c == "#":
                    for dy in range(2):
                        for dx in range(2):
                            cells[4 + 2 * ly + dy][8 + 18 * i + 2 * lx + dx] = 1
    return cells


def raster(cells, scale):
    data = bytearray()
    for row in cells:
        for _ in range(scale):
            bits = "".join(str(c) * scale for c in row)
            data.extend(int(bits[i:i + 8], 2) for i in range(0, len(bits), 8))
    return bytes(data)


ESC = b"\x1b"
VT = b"\x0b"


def number(value):
    return b"%05d" % value


def box(x, y, w, h, vertical=0, horizontal=0):
    return ESC + b"L" + number(x) + number(y) + number(w) + number(h) + number(vertical) + number(horizontal)


def invert(x, y, width_bytes, h):
    return ESC + b"#I" + number(x) + number(y) + number(width_bytes) + number(h)


def text(font, x, y, content, size, element=None):
    field = b"V" + element if element else b"F" + content
    return ESC + b"#T" + b"%02d" % font + number(x) + number(y) + b"00" + field + VT + b"%02d" % size + b"L000"


def prompted(name, prompt):
    """A prompted variable, empty until the host fills it, up to 20 characters."""
    return ESC + b"VI" + name + VT + VT + prompt + VT + b"0 0000" + b"0020" + VT + VT


SAMPLE_SIZE = 18322
PREFIX = ESC + b"F" + b"SAMPLE01"

# The values of the pattern's parameters go to x 240, 420, 444 and 468 on rows 225, 258 and 291.
RECORDS = b"".join([
    box(0, 0, 640, 400, 6, 6),
    text(4, 40, 80, b"QUALITY TEST", 12),
    invert(32, 100, 72, 40),
    text(5, 40, 130, b"Print quality sample", 8),
    box(20, 170, 600, 3),
    prompted(b"ribbon", b"Ribbon"),
    prompted(b"speed", b"Speed"),
    prompted(b"pressure", b"Pressure"),
    prompted(b"density", b"Density"),
    prompted(b"operator", b"Operator"),
    text(2, 40, 225, b"Ribbon:", 7),
    text(2, 40, 258, b"Speed:", 7),
    text(2, 40, 291, b"Pressure:", 7),
    text(2, 340, 225, b"Dens.:", 7),
    text(2, 340, 258, b"Lines:", 7),
    text(2, 340, 291, b"Temp.:", 7),
    text(5, 40, 360, b"", 7, element=b"Ioperator"),
    text(5, 330, 360, b"", 7, element=b"Iribbon"),
    box(20, 310, 600, 3),
])


def sample():
    body = b"QUALITY   " + RECORDS + b"\xff"
    # What lies behind the format's end is never read; the file has its fixed size.
    return PREFIX + body + b"\xff" * (SAMPLE_SIZE - len(PREFIX) - len(body))


if __name__ == "__main__":
    cells = logo_cells()
    with open(os.path.join(HERE, "logos.raw"), "wb") as out:
        out.write(raster(cells, 4) + raster(cells, 8))
    data = sample()
    assert len(data) == SAMPLE_SIZE
    with open(os.path.join(HERE, "quality.esc"), "wb") as out:
        out.write(data)
