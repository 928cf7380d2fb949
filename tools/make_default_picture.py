#!/usr/bin/env python3
# SPDX-License-Identifier: LGPL-2.1-or-later
"""Draws the picture that stands in where none is found: a record whose grooves have become a spectrum.

    tools/make_default_picture.py "data/Visualizations/Vis Studio/Images/Default.gif"

The picture is CC0, as all of data/. Drawn from distances to its shapes, so edges are smooth without
a graphics library; black around, so that it has no edge on a black screen.
"""

import math
import pathlib
import sys

SIZE = 512
BARS = 96
BAR_HALF_WIDTH = 3.1  # pixels
BAR_START = 118.0  # from the centre
GROOVES = [  # radius, strength
    (36.0, 0.85), (48.0, 0.25), (56.0, 0.38), (64.0, 0.25), (72.0, 0.5),
    (80.0, 0.25), (88.0, 0.38), (96.0, 0.25), (104.0, 0.75)]
LABEL_DOT = 9.0

# From the root of a bar to where the longest ends.
RAMP = [(0.0, (255, 255, 255)), (0.16, (186, 246, 250)), (0.42, (64, 205, 224)), (0.72, (46, 126, 230)),
    (1.0, (70, 62, 214))]
GROOVE_COLOR = (58, 190, 170)
RAMP_STEPS = 27
SHADES = 8  # of each colour, from black


def bar_length(index):
    """Longest at the sides, and alike on both, as a spectrum of two channels."""
    angle = 2 * math.pi * index / BARS
    along = abs(math.sin(angle))
    wave = 0.5 + 0.5 * math.cos(10 * angle)
    detail = 0.5 + 0.5 * math.cos(26 * angle)
    return 14 + 106 * (0.5 + 0.5 * along**2) * (0.2 + 0.62 * wave + 0.18 * detail)


def ramp_color(position):
    for (start, low), (end, high) in zip(RAMP, RAMP[1:]):
        if position <= end:
            part = (position - start) / (end - start)
            return tuple(a + (b - a) * part for a, b in zip(low, high))
    return RAMP[-1][1]


def make_palette():
    """Black, then SHADES of each step of the ramp, then SHADES of the grooves."""
    colors = [ramp_color(i / (RAMP_STEPS - 1)) for i in range(RAMP_STEPS)] + [GROOVE_COLOR]
    palette = [(0, 0, 0)]
    for color in colors:
        palette += [tuple(round(c * (shade + 1) / SHADES) for c in color) for shade in range(SHADES)]
    return palette + [(0, 0, 0)] * (256 - len(palette))


def shade_of(coverage):
    """0: black, else 1 to SHADES."""
    return round(min(max(coverage, 0.0), 1.0) * SHADES)


def pixel_index(x, y, lengths):
    dx, dy = x - (SIZE - 1) / 2, y - (SIZE - 1) / 2
    radius = math.hypot(dx, dy)
    if radius < BAR_START - BAR_HALF_WIDTH - 1:
        dot = LABEL_DOT + 0.5 - radius
        if dot > 0:
            return shade_of(dot)  # the first of the ramp, white
        strength = max((min(max(1.25 - abs(radius - r), 0.0), 1.0) * s for r, s in GROOVES), default=0.0)
        shade = shade_of(strength)
        return RAMP_STEPS * SHADES + shade if shade else 0
    turn = (math.atan2(dx, -dy) / (2 * math.pi)) % 1.0  # clockwise from the top
    index = round(turn * BARS) % BARS
    offset = 2 * math.pi * (turn - index / BARS)
    offset = (offset + math.pi) % (2 * math.pi) - math.pi
    across, along = radius * math.sin(offset), radius * math.cos(offset)
    end = BAR_START + lengths[index]
    distance = math.hypot(across, along - min(max(along, BAR_START), end))
    shade = shade_of(BAR_HALF_WIDTH + 0.5 - distance)
    if not shade:
        return 0
    step = round(min(max((along - BAR_START) / 120, 0.0), 1.0) * (RAMP_STEPS - 1))
    return step * SHADES + shade


def lzw_bytes(indices, bits):
    """The picture as GIF packs it: codes of growing width, lowest bit first."""
    clear, end = 1 << bits, (1 << bits) + 1
    out = bytearray()
    buffer = filled = 0

    def put(code, width):
        nonlocal buffer, filled
        buffer |= code << filled
        filled += width
        while filled >= 8:
            out.append(buffer & 255)
            buffer >>= 8
            filled -= 8

    width, table = bits + 1, {(i,): i for i in range(clear)}
    put(clear, width)
    known = ()
    for index in indices:
        longer = known + (index,)
        if longer in table:
            known = longer
            continue
        put(table[known], width)
        table[longer] = len(table) + 2
        if table[longer] == 1 << width:
            width += 1
        if table[longer] == 4095:
            put(clear, min(width, 12))
            width, table = bits + 1, {(i,): i for i in range(clear)}
        known = (index,)
    put(table[known], width)
    put(end, width)
    if filled:
        out.append(buffer & 255)
    return bytes(out)


def gif_file(indices, palette):
    packed = lzw_bytes(indices, 8)
    blocks = b"".join(bytes([len(packed[i : i + 255])]) + packed[i : i + 255] for i in range(0, len(packed), 255))
    side = SIZE.to_bytes(2, "little")
    header = b"GIF89a" + side + side + b"\xf7\0\0" + b"".join(bytes(color) for color in palette)
    return header + b"," + b"\0" * 4 + side + side + b"\0\x08" + blocks + b"\0;"


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    lengths = [bar_length(i) for i in range(BARS)]
    indices = [pixel_index(x, y, lengths) for y in range(SIZE) for x in range(SIZE)]
    path = pathlib.Path(sys.argv[1])
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(gif_file(indices, make_palette()))


if __name__ == "__main__":
    main()
