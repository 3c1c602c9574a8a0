#!/usr/bin/env python3
"""Writes the seed corpora of the fuzz targets from the end-to-end cases and a few made inputs.
Edit here, then run it again."""
import glob
import os
import struct

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(HERE)


def corpus(target, seeds):
    """Writes the seeds anew; the inputs kept from findings, named otherwise, stay."""
    folder = os.path.join(HERE, "corpus", target)
    os.makedirs(folder, exist_ok=True)
    for old in glob.glob(os.path.join(folder, "seed*")):
        os.remove(old)
    for i, seed in enumerate(seeds):
        with open(os.path.join(folder, "seed%03d" % i), "wb") as out:
            out.write(seed)


formats = [open(path, "rb").read() for path in sorted(glob.glob(os.path.join(ROOT, "tests/cli/cases/*.esc")))
           + [os.path.join(ROOT, "examples/demo.esc")] + sorted(glob.glob(os.path.join(ROOT, "bench/labels/*.esc")))]
# The parser starts behind ESC F; the driver gets the whole file behind a byte that picks printer and save.
corpus("FormatFuzz", [f[f.find(b"\x1bF") + 2:] for f in formats if b"\x1bF" in f])
corpus("DriverFuzz", [b"\x03" + f for f in formats])

corpus("ContentEscapeFuzz", [b"A\\<FNC1>0123\\<SHIFT>b", b"\\\\<x", b"\\<ASC(065)>\\<ASC(9)>", b"\\<C128_START_A>ab\\",
                             b"\\<ECI(000026)>A\\<RP>", b"plain text"])


def bitmap(width, height, rows, x=0, y=0, compression=0):
    pixels = b"".join(rows)
    header = (b"BM" + struct.pack("<IhhI", 62 + len(pixels), x, y, 62) + struct.pack("<IiiHHII", 40, width, height,
              1, 1, compression, len(pixels)) + struct.pack("<iiII", 12000, 12000, 0, 0) + b"\xff\xff\xff\x00"
              + b"\x00\x00\x00\x00")
    return header + pixels


corpus("BitmapFuzz", [bitmap(32, 2, [b"\x80\x00\x00\x01", b"\xff\x00\xff\x00"]),
                      bitmap(64, 1, [b"\x00" * 7 + b"\x01"], x=64, y=3),
                      bitmap(32, 1, [b"\xaa" * 4], compression=72)])

corpus("FontMapFuzz", [b"5;arial_2.ttf\n0;ocr-b_2.ttf\n", b"7;gone.ttf\n50;x\n",
                       b"5arial_2.ttf\xffold\xff\xff0ocr-b_2.ttf\xff\xff", b"", b"49;x\n-1;y\n"])

corpus("VariablesFileFuzz", [b"VIRibbon:=x\nVCLot=7\nVIBatch=zz\n", b"VCAlpha=27xyz\r\n=orphan\nVCLot=12abc\n",
                             b"VIRibbon:=x=y\nnothing\nVXGTIN=1\n"])


def simplefs():
    """A region of 128 bytes with a file of five bytes in blocks 0 and 1 and an empty file in block 2."""
    header = struct.pack("<7I", 0xA37F7B0E, 0, 128, 8, 3, 64, 2) + b"\x00" * 36
    blocks = [bytes([0x09, 1, 0, 0]) + b"hell", bytes([0x21, 0, 0, 0]) + b"o\x00\x00\x00",
              bytes([0xE9, 0, 0, 0, 0, 0, 0, 0])] + [b"\x00" * 8] * 5
    return header + b"".join(blocks)


corpus("DatamatrixFuzz", [b"\x00Lot 2026/11 AB123456", b"\x05\\<FNC1>0101234567890128", b"\x00" + b"1234567890" * 30,
                          b"\x17A\\<RP>AAAAAA", b"\x00(\r)", b"\x1cabcdefABCDEF012345 ./"])

# Property files of slots and the formats behind them.
properties = [b"<fmtName>BOXES     <\\fmtName>\r\n<1.Line>97<\\1.Line>\r\n<sram Addr><\\sram Addr>",
              b"<print coord>10;20;5;<\\print coord><1.Line>-1<\\1.Line><sram Addr>\x08\x00\x00\x00<\\sram Addr>", b""]
corpus("StorageFuzz", [bytes([len(p)]) + p + b"\x1bF" + f[f.find(b"\x1bF") + 2:]
                       for p in properties for f in formats[:6] if b"\x1bF" in f])

corpus("SimpleFSFuzz", [simplefs(), simplefs()[:100], b"\x00" * 128])

corpus("LinearBarcodeFuzz", [bytes(head) + content for head, content in [
    ([4, 2, 100, 4], b"Lot 2026 AB12345"), ([4, 1, 60, 0x25], b"\\<FNC1>0101234567890128"),
    ([1, 2, 100, 4], b"400638133393"), ([3, 2, 100, 0xE6], b"KTR-39"), ([6, 2, 100, 4], b"123456"),
    ([8, 2, 100, 0xC4], b"1234567890123"), ([2, 2, 100, 0xCB], b"1234567"), ([0, 3, 120, 0x17], b"1234567"),
    ([5, 2, 100, 4], b"03600029145")]])

# Kind and turn, four option bytes, the module, then the content.
corpus("LibrarySymbolFuzz", [bytes(head) + content for head, content in [
    ([0, 0, 2, 0, 0, 1], b"ktr-render QR 0123456789"), ([7, 0, 1, 0, 0, 1], b"12345"),
    ([14, 0, 2, 0, 0, 1], b"Han Xin 1234"), ([21, 0, 0, 0, 0, 2], b"Lot 2026"),
    ([4, 55, 4, 15, 3, 0], b"ktr-render PDF417"), ([10, 84, 2, 10, 0, 1], b"Micro PDF"),
    ([5, 31, 30, 60, 0, 2], b"0101234567890128" b"10ABC123\\<FNC1>2112345"), ([11, 29, 30, 0, 0, 1], b"0123456789012"),
    ([17, 81, 30, 20, 4, 1], b"0101234567890128" b"3103000123")]])
