#!/usr/bin/env python3
"""Writes the labels of the whole-process benchmark: one box, and twenty lines of text in three fonts.
Edit here, then run it again."""
import os

ESC = b"\x1b"
VT = b"\x0b"
HERE = os.path.dirname(os.path.abspath(__file__))


def number(value):
    return b"%05d" % value


def format_(name, records):
    return ESC + b"F" + name.ljust(10) + b"".join(records) + b"\xff"


def text(font, x, y, content, size):
    return ESC + b"#T" + b"%02d" % font + number(x) + number(y) + b"00F" + content + VT + b"%02d" % size + b"L000"


with open(os.path.join(HERE, "box.esc"), "wb") as out:
    out.write(format_(b"BOX", [ESC + b"L" + number(40) + number(40) + number(400) + number(200) + number(4)
                               + number(4)]))

lines = [text((0, 2, 5)[i % 3], 20, 40 + 28 * i, b"Line %02d: Lot 2026/11 AB123456" % i, 6)
         for i in range(20)]
with open(os.path.join(HERE, "text.esc"), "wb") as out:
    out.write(format_(b"TEXT", lines))
