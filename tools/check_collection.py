#!/usr/bin/env python3
# SPDX-License-Identifier: LGPL-2.1-or-later
"""Looks after the collection of scripts that is shipped.

    tools/check_collection.py                         what can be read off the files alone
    tools/check_collection.py --measure [SCRIPT...]   renders the demo song: brightness, kicks, flashes
    tools/check_collection.py --speed [SCRIPT...]     frames a second at 1280x720, with nothing else running

The files: 24 to 32 scripts, each of two kinds of components or more and told of in the README; together all
kinds, all output modes, nested layers, equations that hear beat and impact, and at least one preset
of each table; no two with the same components and the same main equation. Measured: the mean
brightness of each fifth second lies between 4 % and 80 %; the picture changes at least twice as
much after a kick as between kicks, where the README's table says by how much (it has a dash for
scripts that aren't meant to); no flashes that could harm. Ends with status 1 if a rule is broken.
"""

import argparse
import collections
import json
import pathlib
import re
import subprocess
import sys
import tempfile
import time
import xml.etree.ElementTree

import measure_motion

ROOT = pathlib.Path(__file__).resolve().parent.parent
SCRIPTS = ROOT / "data" / "Visualizations" / "Vis Studio"
SONG = ROOT / "data" / "demo" / "pxvis-demo.opus"
RATE, WIDTH, HEIGHT = 60, 320, 180
DARKEST, BRIGHTEST = 4, 80  # percent

Piece = collections.namedtuple("Piece", "kind rows depth")


def read_kinds(pxvis):
    """The components' names by their GUIDs."""
    told = subprocess.run([pxvis, "list", "components", "--json"], check=True, capture_output=True).stdout
    components = map(json.loads, told.splitlines())
    return {component["guid"]: component["name"] for component in components if component["guid"]}


def pieces(element, known, depth=0):
    """The layers and components of an element, in drawing order; `known` has the kinds by GUID."""
    for child in element:
        if child.tag not in ("Component", "Layer"):
            continue
        properties = child.find("Properties")
        rows = [] if properties is None else [(row.tag, row.text or "") for row in properties]
        kind = known[child.get("GUID")] if child.tag == "Component" else "Layer"
        yield Piece(kind, rows, depth)
        if child.tag == "Layer":
            yield from pieces(child, known, depth + 1)


def read_readme():
    """By script: the text of its line's last column."""
    lines = (SCRIPTS / "README.md").read_text(encoding="utf-8").splitlines()
    cells = [[cell.strip() for cell in line.strip("|").split("|")] for line in lines if line.startswith("| ")]
    return {row[0]: row[-1] for row in cells if "/" in row[0]}


def preset_tables(pxvis):
    """By component and row: the names and values of its presets."""
    told = subprocess.run([pxvis, "list", "presets", "--json"], check=True, capture_output=True).stdout
    tables = collections.defaultdict(set)
    for preset in map(json.loads, told.splitlines()):
        tables[preset["component"], preset["row"]] |= {preset["name"], preset["value"]}
    return tables


def check_files(scripts, pxvis):
    faults, seen, kinds = [], {}, collections.Counter()
    told, tables, known = read_readme(), preset_tables(pxvis), read_kinds(pxvis)
    used, modes, words, nested = set(), set(), set(), False
    if not 24 <= len(scripts) <= 32:
        faults.append(f"there are {len(scripts)} scripts, not 24 to 32")
    for name, path in scripts.items():
        parts = list(pieces(xml.etree.ElementTree.parse(path).getroot(), known))
        components = [part for part in parts if part.kind != "Layer"]
        kinds.update({part.kind for part in components})
        if len({part.kind for part in components}) < 2:
            faults.append(f"{name}: one kind of component only")
        if name not in told:
            faults.append(f"{name}: no line in the README")
        # the longest one says most
        main = max((text for part in components for row, text in part.rows if row.endswith("Equation")), key=len, default="")
        key = tuple(sorted(part.kind for part in components)), main
        if key in seen:
            faults.append(f"{name}: same components and main equation as {seen[key]}")
        seen[key] = name
        for part in parts:
            nested = nested or part.depth > 1
            for row, text in part.rows:
                if text in tables.get((part.kind, row), ()):
                    used.add((part.kind, row))
                if row == "OutputMode":
                    modes.add(text)
                if row.endswith("Equation"):
                    words |= set(re.findall("beat|impact", text))
                if row == "OnEquation" and text not in ("on=1", "on=1;", "Always On"):
                    words.add("on")
    faults += [f"{name}: in the README, but not here" for name in told if name not in scripts]
    faults += [f"no script has a {kind}" for kind in known.values() if not kinds[kind]]
    faults += [f"no script uses a preset of {kind} \"{row}\"" for kind, row in sorted(set(tables) - used)
               if row != "OnEquation" or kind == "Layer"]
    if not nested:
        faults.append("no layer lies in a layer")
    if len(modes | {"0"}) < 3:
        faults.append("not all output modes are used")
    faults += [f"no equation uses {word}" for word in ("beat", "impact", "on") if word not in words]
    return faults


def measure(name, path, pxvis, records, kick_told):
    faults = []
    size = WIDTH * HEIGHT * 4
    with open(records, "rb") as source:
        frames = subprocess.Popen([pxvis, "frames", "--script", path, "--size", f"{WIDTH}x{HEIGHT}"],
                                  stdin=source, stdout=subprocess.PIPE)
        rows = list(measure_motion.changes(frames.stdout, size))
    if frames.wait() != 0:
        return [f"{name}: can't be drawn"]
    means = [rows[second * RATE][1] / 2.55 for second in range(5, len(rows) // RATE, 5)]
    for second, mean in zip(range(5, 1000, 5), means):
        if not DARKEST <= mean <= BRIGHTEST:
            faults.append(f"{name}: brightness {mean:.1f} % at {second} s")
    ratio = measure_motion.kick_ratio([row[0] for row in rows], RATE)[2]
    if kick_told != "-" and ratio < 2:
        faults.append(f"{name}: changes {ratio:.2f} times as much after a kick")
    flashes = subprocess.run([pxvis, "check", "--flash", path, "--song", SONG], capture_output=True, text=True)
    if flashes.returncode != 0:
        faults.append(f"{name}: {(flashes.stdout + flashes.stderr).strip().splitlines()[0]}")
    print(f"{name}: brightness {min(means):.0f} to {max(means):.0f} %, after a kick {ratio:.1f} x"
          f"{' (not meant to react)' if kick_told == '-' else ''}{', FLASHES' if flashes.returncode else ''}", flush=True)
    return faults


def speed(name, path, pxvis, records):
    """Frames a second at 1280x720, the first build of maps included."""
    with open(records, "rb") as source:
        began = time.monotonic()
        subprocess.run([pxvis, "frames", "--script", path, "--size", "1280x720", "--kernel", "scalar"],
                       stdin=source, stdout=subprocess.DEVNULL, check=True)
        taken = time.monotonic() - began
    rate = pathlib.Path(records).stat().st_size / 3088 / taken
    print(f"{rate:6.1f} frames a second: {name}", flush=True)
    return [] if rate >= 60 else [f"{name}: {rate:.1f} frames a second"]


def main():
    parser = argparse.ArgumentParser(description="Looks after the collection of scripts that is shipped.")
    parser.add_argument("names", nargs="*", metavar="SCRIPT", help="such as Dense/Rosette; all without")
    parser.add_argument("--pxvis", default=str(ROOT / "build" / "release" / "bin" / "pxvis"))
    parser.add_argument("--measure", action="store_true")
    parser.add_argument("--speed", action="store_true")
    args = parser.parse_args()
    scripts = {f"{path.parent.name}/{path.stem}": path for path in sorted(SCRIPTS.glob("*/*.pxv"))}
    chosen = {name: scripts[name] for name in args.names or scripts}

    if not args.measure and not args.speed:
        faults = check_files(scripts, args.pxvis)
    else:
        faults, told = [], read_readme()
        with tempfile.NamedTemporaryFile() as records:
            part = [] if args.measure else ["--from", "20", "--to", "25"]
            subprocess.run([args.pxvis, "analyze", SONG, *part], check=True, stdout=records)
            for name, path in chosen.items():
                if args.measure:
                    faults += measure(name, path, args.pxvis, records.name, told.get(name, ""))
                else:
                    faults += speed(name, path, args.pxvis, records.name)
    for fault in faults:
        print(f"FAULT {fault}", file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
