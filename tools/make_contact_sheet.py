#!/usr/bin/env python3
# SPDX-License-Identifier: LGPL-2.1-or-later
"""Draws the sheet of all shipped scripts that stands in their README. Needs Pillow (python3-pil).

    tools/make_contact_sheet.py [--at SECONDS] [--columns N] [-o FILE] [SCRIPT...]
    tools/make_contact_sheet.py --beside docs/examples/*.pxv

Each picture is the demo song's at --at, eight seconds after the script began. Several times, with commas, give a
line of pictures for each script: to look at, not for the README. With --beside each script's picture is written beside
it, as a JPEG of its own.
"""

import argparse
import pathlib
import subprocess
import tempfile

from PIL import Image, ImageDraw, ImageFont

ROOT = pathlib.Path(__file__).resolve().parent.parent
SCRIPTS = ROOT / "data" / "Visualizations" / "Vis Studio"
SONG = ROOT / "data" / "demo" / "pxvis-demo.opus"
WIDTH, HEIGHT, LABEL, GAP = 320, 180, 18, 6
SECONDS_BEFORE = 8  # that the script has run


def picture(pxvis, script, at, folder):
    path = pathlib.Path(folder) / "picture.png"
    subprocess.run([pxvis, "render", SONG, "-o", path, "--force", "--script", script, "--size", f"{2 * WIDTH}x{2 * HEIGHT}",
                    "--from", str(max(0, at - SECONDS_BEFORE)), "--at", str(at)], check=True)
    return Image.open(path).convert("RGB").resize((WIDTH, HEIGHT), Image.Resampling.BOX)


def main():
    parser = argparse.ArgumentParser(description="Draws the sheet of all shipped scripts.")
    parser.add_argument("names", nargs="*", metavar="SCRIPT", help="file or Mood/Name; all without")
    parser.add_argument("--at", default="20.84", help="just behind a kick, by default")
    parser.add_argument("--columns", type=int, default=4)
    parser.add_argument("--beside", action="store_true")
    parser.add_argument("-o", "--output", type=pathlib.Path, default=SCRIPTS / "contact-sheet.jpg")
    parser.add_argument("--pxvis", default=str(ROOT / "build" / "release" / "bin" / "pxvis"))
    args = parser.parse_args()
    times = [float(at) for at in args.at.split(",")]
    files = [pathlib.Path(name) if name.endswith(".pxv") else SCRIPTS / f"{name}.pxv" for name in args.names]
    files = files or sorted(SCRIPTS.glob("*/*.pxv"))

    if args.beside:
        with tempfile.TemporaryDirectory() as folder:
            for file in files:
                picture(args.pxvis, file, times[0], folder).save(file.with_suffix(".jpg"), quality=88, optimize=True)
        return

    cells = [(file, at) for file in files for at in times]
    columns = len(times) if len(times) > 1 else min(args.columns, len(cells))
    rows = -(-len(cells) // columns)
    sheet = Image.new("RGB", (columns * (WIDTH + GAP) + GAP, rows * (HEIGHT + LABEL + GAP) + GAP), (24, 24, 28))
    draw = ImageDraw.Draw(sheet)
    font = ImageFont.truetype("DejaVuSans.ttf", 12)
    with tempfile.TemporaryDirectory() as folder:
        for number, (file, at) in enumerate(cells):
            x = GAP + number % columns * (WIDTH + GAP)
            y = GAP + number // columns * (HEIGHT + LABEL + GAP)
            sheet.paste(picture(args.pxvis, file, at, folder), (x, y))
            label = f"{file.parent.name}/{file.stem}" + (f"  {at:g} s" if len(times) > 1 else "")
            draw.text((x, y + HEIGHT + 1), label, font=font, fill=(220, 220, 220))
    sheet.save(args.output, quality=88, optimize=True)


if __name__ == "__main__":
    main()
