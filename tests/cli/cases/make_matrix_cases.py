#!/usr/bin/env python3
"""Writes the escape files of the matrix-code end-to-end cases. Edit here, then run it again."""
import os

ESC = b"\x1b"
VT = b"\x0b"
HERE = os.path.dirname(os.path.abspath(__file__))


def number(value, width=5):
    return b"%0*d" % (width, value)


def matrix(kind, x, y, content, fields, turns=0, reversed_=b"0", element=None):
    """An ESC # B record of a matrix type; kind is the two type characters, fields the bytes of its own fields."""
    field = b"V" + element if element else b"F" + content
    return ESC + b"#B" + kind + number(x) + number(y) + b"%d" % turns + reversed_ + field + VT + fields


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


FNC1 = b"\\<FNC1>"
# Size, module, margin, level, input mode, flag of records 10, 11, 13 and 14.
QR = b"00" b"06" b"00000" b"2" b"0" b"0"
# Every matrix type of the library at the four quarter turns, one per cell of a 2 x 2 grid of 1200 dots.
CELLS = [(100, 100), (1300, 100), (100, 1300), (1300, 1300)]
MATRIX = {
    "qr": (b"10", b"KTR QR 42", QR),
    "hanxin": (b"11", b"KTR HX 42", b"00" b"06" b"00000" b"2" b"0" b"0"),
    "pdf417": (b"12", b"KTR PDF417 42", b"0055" b"04" b"03" b"00300" b"2"),
    # Size 5 is the square of 18: a rectangle would not turn.
    "dmrect": (b"13", b"KTR DM 42", b"05" b"08" b"00000" b"0" b"0" b"0"),
    "microqr": (b"14", b"KTR MQ 42", b"00" b"08" b"00000" b"1" b"0" b"0"),
    "databar": (b"09", b"0101234567890128" b"10ABC123" + FNC1 + b"2112345", b"0031" b"00150" b"03" b"00060" b"00"),
    "databar14": (b"09", b"0123456789012", b"0029" b"00150" b"03" b"00060" b"00"),
}
for name, (kind, content, fields) in MATRIX.items():
    write("matrix_%s.esc" % name,
          format_(name.encode(), *[matrix(kind, x, y, content, fields, turns=t) for t, (x, y) in enumerate(CELLS)]))

# A GS1 QR code by its leading FNC1.
write("matrix_qr_gs1.esc", format_(b"GS1QR", matrix(b"10", 100, 100, FNC1 + b"0101234567890128" b"10ABC", QR)))
# A QR code fed by a counter; and the same symbol with the counter's later value as fixed text.
write("matrix_qr_counter.esc", format_(b"COUNTER", counter(b"Lot", 5, 9999),
                                       matrix(b"10", 100, 100, b"", QR, element=b"CLot")))
write("matrix_qr_0042.esc", format_(b"COUNTER", matrix(b"10", 100, 100, b"0042", QR)))
# Contents the library refuses: the QR code stays empty and the box after it renders; PDF417 and DataBar fail.
write("matrix_qr_refused.esc", format_(b"REFUSED", matrix(b"10", 100, 100, b"A" * 40, b"01" + QR[2:]),
                                       box(10, 10, 20, 20)))
write("matrix_pdf417_empty.esc", format_(b"EMPTY", matrix(b"12", 100, 100, b"", b"0055" b"04" b"03" b"00300" b"2")))
write("matrix_databar_no_ai.esc", format_(b"NOAI", matrix(b"09", 100, 100, b"7712345",
                                                          b"0031" b"00150" b"03" b"00060" b"00")))
write("matrix_reversed_2.esc", format_(b"REVERSED", matrix(b"10", 100, 200, b"X", QR, reversed_=b"2")))
