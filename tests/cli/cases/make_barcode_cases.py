#!/usr/bin/env python3
"""Writes the escape files of the linear barcode end-to-end cases. Edit here, then run it again."""
import os

ESC = b"\x1b"
VT = b"\x0b"
HERE = os.path.dirname(os.path.abspath(__file__))


def number(value, width=5):
    return b"%0*d" % (width, value)


def barcode(kind, x, y, content, height, module, turns=0, reversed_=False, text=b"1", check=b"0", wide=None,
            encoding=b"00", element=None):
    """An ESC # B record of a linear type; kind is the two type characters."""
    field = b"V" + element if element else b"F" + content
    record = (ESC + b"#B" + kind + number(x) + number(y) + b"%d" % turns + (b"1" if reversed_ else b"0") + field + VT
              + number(height) + number(module, 2))
    if kind in (b"02", b"03", b"08"):
        return record + number(wide, 2) + text + check
    if kind == b"04":
        return record + text + check + encoding
    return record + text + check


def box(x, y, w, h):
    return ESC + b"L" + number(x) + number(y) + number(w) + number(h) + number(0) + number(0)


def counter(name, start, stop):
    return (ESC + b"VC" + name + VT + b"S" + b"%09d" % start + b"%09d" % stop + b"000000001000000001000000001" + VT
            + b"L00004" + VT + VT)


def format_(name, *records):
    return ESC + b"F" + name.ljust(10) + b"".join(records) + b"\xff"


def write(file_name, data):
    with open(os.path.join(HERE, file_name), "wb") as out:
        out.write(data)


# Every linear type at the four quarter turns, one per cell of a 2 x 2 grid of 1200 dots.
CELLS = [(100, 100), (1300, 100), (100, 1300), (1300, 1300)]
LINEAR = {
    "ean8": (b"00", b"1234567", {}),
    "ean13": (b"01", b"400638133393", {}),
    "code25": (b"02", b"1234567", {"wide": 8, "check": b"1"}),
    "code39": (b"03", b"KTR-39 A", {"wide": 8}),
    "code128": (b"04", b"Ktr-128 Abc12345678x", {}),
    "upca": (b"05", b"03600029145", {}),
    "upce": (b"06", b"123456", {}),
    "itf14": (b"08", b"1234567890123", {"wide": 8}),
}
for name, (kind, content, extra) in LINEAR.items():
    write("linear_%s.esc" % name,
          format_(name.encode(), *[barcode(kind, x, y, content, 300, 3, turns=t, **extra)
                                   for t, (x, y) in enumerate(CELLS)]))

write("barcode_type_15.esc", format_(b"TYPE15", barcode(b"15", 100, 100, b"12345", 200, 3)))
write("barcode_letter_type.esc", format_(b"LETTERS", barcode(b"AB", 100, 100, b"1234567", 200, 3)))
write("barcode_as_ean8.esc", format_(b"LETTERS", barcode(b"00", 100, 100, b"1234567", 200, 3)))
# Cut at the right edge of KTA1 (640 dots): the box after it still renders.
write("barcode_off_raster.esc", format_(b"OFFRASTER", barcode(b"03", 400, 100, b"ABCDEF", 200, 3, wide=8),
                                        box(10, 10, 20, 20)))
write("barcode_bad_content.esc", format_(b"BADEAN", box(10, 10, 20, 20),
                                         barcode(b"01", 100, 100, b"40063813339A", 200, 3)))
# A text flag of 7 counts as on; ITF-14 with its check flag off still carries its check digit.
write("barcode_flags.esc", format_(b"FLAGS", barcode(b"08", 100, 100, b"1234567890123", 300, 3, wide=8, text=b"7",
                                                     check=b"0")))
write("barcode_flags_plain.esc", format_(b"FLAGS", barcode(b"08", 100, 100, b"1234567890123", 300, 3, wide=8,
                                                           text=b"1", check=b"1")))
# A Code 128 fed by a counter; and the same symbol with the counter's later value as fixed text.
write("barcode_counter.esc", format_(b"COUNTER", counter(b"Lot", 5, 9999),
                                     barcode(b"04", 100, 100, b"", 200, 3, element=b"CLot")))
write("barcode_counter_0042.esc", format_(b"COUNTER", barcode(b"04", 100, 100, b"0042", 200, 3)))
# An old ESC B record of type 3 with fixed content, and the present-day record it stands for.
legacy = (ESC + b"B" + b"03" + number(100) + number(100) + number(200) + b"0" + b"UD" + b"03080808" + b"00000000"
          + b"1" + b"F" + b"KTR39" + VT)
write("legacy_barcode.esc", format_(b"LEGACY", legacy))
write("legacy_barcode_new.esc", format_(b"LEGACY", barcode(b"03", 100, 100, b"KTR39", 200, 3, wide=8)))
