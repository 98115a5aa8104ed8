#!/usr/bin/env python3
"""Draws the gold button skin: five cells of 82 x 23 pixels stacked into one 82 x 115 strip.

Cell 0 is the flat look, 1 raised inner, 2 sunken outer, 3 raised (the hover look, a brighter
gold) and 4 sunken (the pressed look, a deeper gold lit from below). Each cell is a 2-pixel
frame around a body whose rows run from light to dark gold; the button repeats the body's
19-pixel tile, so every column of a row has the same colour.

Usage: scripts/make-goldbutton-skin.py [output.png]   (default assets/skins/goldbutton.png)
"""

import os
import struct
import sys
import zlib

CELL_W, CELL_H, CELLS, FRAME = 82, 23, 5, 2

OUTLINE = (139, 101, 24)
HIGHLIGHT = (255, 250, 222)
SOFT_HIGHLIGHT = (252, 232, 150)
SHADOW = (168, 120, 32)
DARK_SHADOW = (104, 70, 12)


def mix(a, b, t):
    return tuple(round(x + (y - x) * t) for x, y in zip(a, b))


def body_colour(cell, row):
    """Colour of a body row (0 at the top of the frame's inside, 18 at its bottom)."""
    t = row / 18
    if cell == 3:
        top, middle, bottom = (255, 246, 190), (249, 214, 96), (224, 170, 52)
    elif cell == 4:
        top, middle, bottom = (196, 142, 38), (222, 174, 66), (240, 204, 110)
    else:
        top, middle, bottom = (252, 236, 164), (238, 196, 80), (212, 158, 44)
    return mix(top, middle, t * 2) if t < 0.5 else mix(middle, bottom, (t - 0.5) * 2)


def rings(cell):
    """(top-left, bottom-right) colours of the outer and inner frame rings; None is the body."""
    return {
        0: [(OUTLINE, OUTLINE), (None, None)],
        1: [(HIGHLIGHT, SHADOW), (None, None)],
        2: [(SHADOW, HIGHLIGHT), (None, None)],
        3: [(HIGHLIGHT, DARK_SHADOW), (SOFT_HIGHLIGHT, SHADOW)],
        4: [(SHADOW, HIGHLIGHT), (DARK_SHADOW, SOFT_HIGHLIGHT)],
    }[cell]


def cell_pixel(cell, x, y):
    # Body rows repeat every 19 pixels, as the button tiles them; the frame rows at the top
    # and bottom continue the gradient of the rows next to them.
    body = body_colour(cell, min(max(y - FRAME, 0), 18))
    for inset, (top_left, bottom_right) in enumerate(rings(cell)):
        left, top, right, bottom = inset, inset, CELL_W - 1 - inset, CELL_H - 1 - inset
        on_ring = (x in (left, right) and top <= y <= bottom) or (
            y in (top, bottom) and left <= x <= right)
        if not on_ring:
            continue
        # The bottom-right colour owns the top-right and bottom-left corners.
        lit = (y == top and x < right) or (x == left and y < bottom)
        colour = top_left if lit else bottom_right
        return colour if colour is not None else body
    return body


def png(width, height, pixel):
    rows = b"".join(
        b"\0" + bytes(c for x in range(width) for c in pixel(x, y)) for y in range(height))

    def chunk(kind, data):
        return (struct.pack(">I", len(data)) + kind + data +
                struct.pack(">I", zlib.crc32(kind + data) & 0xFFFFFFFF))

    header = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) +
            chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))


def main():
    root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    out = sys.argv[1] if len(sys.argv) > 1 else os.path.join(root, "assets", "skins",
                                                               "goldbutton.png")
    os.makedirs(os.path.dirname(out), exist_ok=True)
    data = png(CELL_W, CELL_H * CELLS,
               lambda x, y: cell_pixel(y // CELL_H, x, y % CELL_H))
    with open(out, "wb") as f:
        f.write(data)


if __name__ == "__main__":
    main()
