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


VT = b"\x0b"
ETX = b"\x03"


def text(font, x, y, content, size, orientation=0, alignment=b"L", spacing=0, reversed_=False, element=None):
    """Fixed content, or with element= the id of an element defined earlier ("CLot", "DToday")."""
    field = b"V" + element if element else b"F" + content
    return (ESC + b"#T" + b"%02d" % font + number(x) + number(y) + b"%d" % orientation + (b"1" if reversed_ else b"0")
            + field + VT + b"%02d" % size + alignment + b"%03d" % spacing)


def barcode(kind, x, y, content, height, module, orientation=0, reversed_=False, wide=8, element=None):
    """A linear barcode record with its human-readable line; kind is the two type characters."""
    field = b"V" + element if element else b"F" + content
    record = (ESC + b"#B" + kind + number(x) + number(y) + b"%d" % orientation + (b"1" if reversed_ else b"0") + field
              + VT + number(height) + b"%02d" % module)
    if kind in (b"02", b"03", b"08"):
        return record + b"%02d" % wide + b"10"
    if kind == b"04":
        return record + b"1000"
    return record + b"10"


def matrix(kind, x, y, content, fields, orientation=0):
    """A matrix-code record: kind is the two type characters, fields the bytes of its own fields."""
    return (ESC + b"#B" + kind + number(x) + number(y) + b"%d" % orientation + b"0" + b"F" + content + VT + fields)


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
    text(4, 480, 700, b"ktr-render", 28, alignment=b"C"),                 # centred on x 480
    text(5, 40, 800, b"Left aligned at 40", 12),
    text(5, 920, 800, b"Right aligned at 920", 12, alignment=b"R"),
    text(2, 40, 880, b"Spacing 005", 12, spacing=5),
    text(0, 40, 960, b"OCR-B 0123456789", 12),
    text(6, 40, 1040, b"OCR-A 0123456789", 12),
    text(5, 40, 1140, b" Reversed \x80 5,00 ", 14, reversed_=True),
    # A counter from 5 to 999 in steps of 1, padded to four digits; today's date; a formula joining 2,0 + 30 and "kg".
    ESC + b"VCLot" + VT + b"S000000005000000999000000001000000001000000001" + VT + b"L00004L" + VT + VT,
    ESC + b"VDToday" + VT + b"0117." + ETX + b"0517." + ETX + b"10" + VT + b"F001000000",
    ESC + b"VFWeight" + VT + b"02,0 0000F12" + VT + b"+F30" + VT + b"&Fkg" + VT + VT,
    text(5, 40, 1240, b"", 12, element=b"CLot"),
    text(5, 340, 1240, b"", 12, element=b"DToday"),
    text(5, 920, 1240, b"", 12, alignment=b"R", element=b"FWeight"),
    text(3, 1000, 40, b"Turned a quarter", 12, orientation=1),
    text(1, 1200, 700, b"Upside down", 12, orientation=2),
    text(5, 1200, 560, b"Three quarters", 12, orientation=3),
    # Every linear symbology; Code 128 fed by the counter, Code 39 turned, EAN-13 reversed.
    barcode(b"00", 40, 1400, b"1234567", 240, 3),
    barcode(b"01", 400, 1400, b"400638133393", 240, 3, reversed_=True),
    barcode(b"05", 800, 1400, b"03600029145", 240, 3),
    barcode(b"06", 1200, 1400, b"123456", 240, 3),
    barcode(b"04", 40, 1760, b"", 240, 3, element=b"CLot"),
    barcode(b"03", 1200, 1760, b"KTR-39", 240, 3, orientation=1),
    barcode(b"02", 40, 2120, b"1234567", 240, 3),
    barcode(b"08", 520, 2120, b"1234567890123", 240, 3),
    # A Data Matrix of automatic size, module 6; beside it the library symbols: a QR code (automatic version,
    # module 6, level M), a PDF417 of four columns and a GS1 DataBar Expanded with its line, the element string
    # written as a scanner reads it.
    matrix(b"07", 1000, 2480, b"ktr-render Data Matrix", b"06" b"000" b"000" b"200" b"0" b"0"),
    matrix(b"10", 40, 2480, b"ktr-render QR 0123456789", b"00" b"06" b"00000" b"2" b"1" b"0"),
    matrix(b"12", 400, 2480, b"ktr-render PDF417", b"0055" b"04" b"03" b"00240" b"2"),
    matrix(b"09", 40, 2800, b"0101234567890128" b"10ABC123\\<FNC1>2112345",
           b"0031" b"00120" b"03" b"00060" b"00"),
])

with open(os.path.join(os.path.dirname(os.path.abspath(__file__)), "demo.esc"), "wb") as out:
    out.write(ESC + b"F" + b"DEMO      " + records + b"\xff")
