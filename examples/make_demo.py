#!/usr/bin/env python3
"""Writes demo.esc, the example format that `make demo` renders. Edit here, then run it again."""
import os

ESC = b"\x1b"


def number(value):
    return b"%05d" % value


def box(x, y, w, h, vertical=0, horizontal=0):
    return ESC + b"L" + number(x) + number(y) + number(w) + number(h) + number(vertical) + number(horizontal)


def invert(x, y, width_bytes, h):
    return ESC + b"#I" + number(x) + number(y) + number(width_bytes) + number(h)


def graphic(x, y, rows):
    """rows: strings of '#' and '.', all of a length that is a multiple of 8."""
    width_bytes = len(rows[0]) // 8
    data = bytearray()
    for row in rows:
        for b in range(width_bytes):
            bits = row[8 * b:8 * b + 8]
            data.append(int(bits.replace("#", "1").replace(".", "0"), 2))
    return ESC + b"G" + number(x) + number(y) + number(width_bytes) + number(len(rows)) + b"0" + bytes(data)


def logo(scale):
    """A diamond on a 32 x 32 grid, each cell scale x scale dots."""
    rows = []
    for cy in range(32):
        cells = "".join("#" if abs(cx - 15.5) + abs(cy - 15.5) < 14 else "." for cx in range(32))
        row = "".join(c * scale for c in cells)
        rows.extend([row] * scale)
    return rows


records = b"".join([
    box(0, 0, 960, 600, 6, 6),                 # outer frame
    box(30, 30, 400, 240, 2, 2),               # thin frame
    box(60, 60, 120, 80),                      # solid box
    box(220, 60, 180, 180, 30, 0),             # two horizontal bars
    box(460, 30, 240, 240, 0, 20),             # two vertical bars
    graphic(720, 40, logo(6)),                 # 192 x 192 diamond
    box(30, 320, 900, 250, 12, 12),            # lower frame
    invert(40, 420, 110, 60),                  # inverted band across the lower frame and the box below
    box(400, 380, 160, 160),
])

with open(os.path.join(os.path.dirname(os.path.abspath(__file__)), "demo.esc"), "wb") as out:
    out.write(ESC + b"F" + b"DEMO      " + records + b"\xff")
