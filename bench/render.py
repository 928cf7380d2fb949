#!/usr/bin/env python3
"""Renders the demo at 1280x720, 60 pictures a second, at each quality, and prints how long it took against the song's length,
the processor time and the peak memory.

    bench/render.py [PXVIS=build/release/bin/pxvis]
"""

import os
import pathlib
import subprocess
import sys
import tempfile
import time

SONG = pathlib.Path(__file__).resolve().parent.parent / "data/demo/pxvis-demo.opus"
RECORD_BYTES = 3088


def main():
    pxvis = sys.argv[1] if len(sys.argv) > 1 else "build/release/bin/pxvis"
    records = subprocess.run([pxvis, "analyze", SONG], check=True, capture_output=True).stdout
    seconds = len(records) / RECORD_BYTES / 60
    print(f"song {seconds:.1f} s")
    with tempfile.TemporaryDirectory() as folder:
        for level in ("draft", "good", "best"):
            output = os.path.join(folder, level + ".mp4")
            begin = time.monotonic()
            command = [pxvis, "render", SONG, "-o", output, "--size", "1280x720", "--encode", level]
            process = subprocess.Popen(command)
            _, status, usage = os.wait4(process.pid, 0)
            wall = time.monotonic() - begin
            if status != 0:
                sys.exit(f"{level}: pxvis failed")
            print(f"{level:6} {wall:6.1f} s, {seconds / wall:5.2f} x real time, "
                  f"{usage.ru_utime + usage.ru_stime:6.1f} s of processors, "
                  f"peak {usage.ru_maxrss / 1024:4.0f} MB, {os.path.getsize(output) / 1e6:5.1f} MB file")


if __name__ == "__main__":
    main()
