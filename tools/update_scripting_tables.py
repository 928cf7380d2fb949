#!/usr/bin/env python3
"""Brings the tables of docs/scripting.md up to date with what the program says, and works out its equations.

    tools/update_scripting_tables.py [--check] [PXVIS]

PXVIS is the program, build/release/bin/pxvis by default. In the page each section of
"pxvis list components --markdown" stands, without its heading, between the lines

    <!-- pxvis list components --markdown: NAME -->
    <!-- end -->

With --check nothing is written; the exit status is 1 where the page differs. The page's lines "| `equation` | x |" are
given to "pxvis eval"; a value that differs is told, and the exit status is 1.
"""

import argparse
import difflib
import json
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
PAGE = ROOT / "docs" / "scripting.md"
BLOCK = re.compile(r"(<!-- pxvis list components --markdown: (.+?) -->\n)(.*?)(<!-- end -->\n)", re.DOTALL)


def sections(program):
    """The text below each heading, by the heading."""
    output = subprocess.run([program, "list", "components", "--markdown"], check=True,
                            capture_output=True, encoding="utf-8").stdout
    parts = re.split(r"^## (.+)\n", output, flags=re.MULTILINE)[1:]
    return {name: text.strip("\n") + "\n" for name, text in zip(parts[::2], parts[1::2])}


def equation_faults(program, page):
    lines = re.findall(r"^\| `(x=[^`]+)` \| ([-\d.]+) \|", page, flags=re.MULTILINE)
    texts = [equation.replace("\\|", "|") for equation, _ in lines]
    output = subprocess.run([program, "eval", "--batch"], input="\n".join(texts), check=True,
                            capture_output=True, encoding="utf-8").stdout
    values = [json.loads(line)["vars"].get("x") for line in output.splitlines()]
    faults = [f"{text!r} gives {value}, not {told}"
              for text, value, (_, told) in zip(texts, values, lines) if value != float(told)]
    return faults if lines else ["there are no equations"]


def main():
    parser = argparse.ArgumentParser(description="Brings the tables of docs/scripting.md up to date.")
    parser.add_argument("program", metavar="PXVIS", nargs="?", default=str(ROOT / "build/release/bin/pxvis"))
    parser.add_argument("--check", action="store_true", help="only tell whether they are")
    options = parser.parse_args()

    told = sections(options.program)
    page = PAGE.read_text(encoding="utf-8")
    blocks = [match.group(2) for match in BLOCK.finditer(page)]
    faults = [f"there is no component {name!r} for the block of this name" for name in blocks if name not in told]
    faults += [f"the block of {name!r} is missing: add the lines\n"
               f"<!-- pxvis list components --markdown: {name} -->\n<!-- end -->" for name in told if name not in blocks]
    faults += [f"{name!r} has more than one block" for name in told if blocks.count(name) > 1]
    if len(blocks) != page.count("<!-- pxvis list components"):
        faults.append("a block doesn't end in a line <!-- end -->")
    faults += equation_faults(options.program, page)
    for fault in faults:
        print(f"{PAGE}: {fault}", file=sys.stderr)
    if faults:
        return 1

    fresh = BLOCK.sub(lambda match: f"{match.group(1)}\n{told[match.group(2)]}\n{match.group(4)}", page)
    if fresh == page:
        return 0
    if not options.check:
        PAGE.write_text(fresh, encoding="utf-8")
        return 0
    sys.stderr.writelines(difflib.unified_diff(page.splitlines(True), fresh.splitlines(True), "docs/scripting.md",
                                               "what the program says", n=0))
    print(f"{PAGE}: the tables are behind the program; bring them up to date with\n"
          f"    tools/update_scripting_tables.py {options.program}", file=sys.stderr)
    return 1


if __name__ == "__main__":
    sys.exit(main())
