#!/usr/bin/env python3
# SPDX-License-Identifier: LGPL-2.1-or-later
"""Measures whether pictures move with the music.

    pxvis frames --script FILE --size 320x180 < records | tools/measure_motion.py --size 320x180
    tools/measure_motion.py --video out/demo.mp4

Reads raw frames (B G R A, 4 bytes a pixel) from standard input, or a video's by gst-launch-1.0. A
step's change is the mean absolute difference of its frame from the one before, in units of 0 to
255. Prints the mean change in the three steps from each kick on, the mean in all other steps that
lie between two kicks less than a second apart, and their ratio; then the mean change by steps since
the kick, and how bright the pictures are. Ends with status 1 when the ratio is below --least.
"""

import argparse
import math
import pathlib
import subprocess
import sys

KICKS = pathlib.Path(__file__).resolve().parent.parent / "data" / "demo" / "kicks.txt"
STEPS_AFTER = 3
SAMPLES = 20000  # bytes compared in a frame: enough for a mean, quick without numpy


def kick_steps(path, rate):
    """The first step whose frame is shown at or after each kick."""
    return [math.ceil(float(line) * rate - 1e-6) for line in path.read_text().split()]


def sample_stride(size):
    """A stride over a frame's bytes that meets all channels and all columns."""
    stride = max(1, size // SAMPLES) | 1
    while stride > 1 and any(math.gcd(stride, n) > 1 for n in (3, 5, 7)):
        stride += 2
    return stride


def changes(stream, size):
    """Yields each frame's mean change, mean value and share of bytes at the upper end."""
    stride, before = sample_stride(size), None
    while True:
        frame = stream.read(size)
        if len(frame) < size:
            if frame:
                sys.exit("the last frame is cut off: is the size right?")
            return
        sample = bytearray(frame)
        del sample[3::4]  # alpha
        sample = bytes(sample[::stride])
        change = 0.0
        if before is not None:
            change = sum(map(abs, map(int.__sub__, sample, before))) / len(sample)
        before = sample
        yield change, sum(sample) / len(sample), sum(map((250).__lt__, sample)) / len(sample)


def mean(values):
    values = list(values)
    return sum(values) / len(values) if values else 0.0


def kick_ratio(change, rate, path=KICKS):
    """The mean change after kicks, that between them, their ratio, and by step the steps since its kick."""
    kicks = [k for k in kick_steps(path, rate) if 0 < k < len(change)]
    since = {}
    for kick, following in zip(kicks, kicks[1:] + [len(change)]):
        for step in range(kick, min(following, kick + rate)):
            if following - kick < rate or step < kick + STEPS_AFTER:
                since[step] = step - kick
    after = mean(change[s] for s, n in since.items() if n < STEPS_AFTER)
    between = mean(change[s] for s, n in since.items() if n >= STEPS_AFTER)
    return after, between, after / between if between else math.inf if after else 0.0, since


def decoded(video, width, height, rate):
    caps = f"video/x-raw,format=BGRx,width={width},height={height},framerate={rate}/1"
    uri = pathlib.Path(video).resolve().as_uri()
    line = f"uridecodebin uri={uri} ! videoconvert ! videoscale ! videorate ! {caps} ! fdsink fd=1"
    return subprocess.Popen(["gst-launch-1.0", "-q", *line.split()], stdout=subprocess.PIPE)


def main():
    parser = argparse.ArgumentParser(description="Measures whether pictures move with the music.")
    parser.add_argument("--size", default="320x180", help="of the frames, or to scale a video to")
    parser.add_argument("--video", help="a video file instead of frames on standard input")
    parser.add_argument("--rate", type=int, default=60, help="frames a second")
    parser.add_argument("--kicks", type=pathlib.Path, default=KICKS)
    parser.add_argument("--least", type=float, default=2.0, help="the ratio that is asked for")
    args = parser.parse_args()
    width, height = map(int, args.size.split("x"))

    player = decoded(args.video, width, height, args.rate) if args.video else None
    rows = list(changes(player.stdout if player else sys.stdin.buffer, width * height * 4))
    if player and player.wait() != 0:
        sys.exit(f"{args.video}: can't be decoded")
    change = [row[0] for row in rows]
    after, between, ratio, since = kick_ratio(change, args.rate, args.kicks)
    if not since:
        sys.exit("there are no frames at the times of the kicks")
    print(f"{len(rows)} frames, {sum(n == 0 for n in since.values())} kicks")
    print(f"change after a kick {after:.3f}, between kicks {between:.3f}, ratio {ratio:.2f}")
    print("by steps since the kick:", " ".join(
        f"{mean(change[s] for s, n in since.items() if n == at):.1f}" for at in range(max(since.values()) + 1)))
    brightness = [row[1] for row in rows]
    print(f"brightness: mean {mean(brightness):.1f}, least {min(brightness):.1f}, most {max(brightness):.1f};"
          f" at the upper end {100 * mean(row[2] for row in rows):.1f} % of all, {100 * max(row[2] for row in rows):.1f} % of one frame")
    return 0 if ratio >= args.least else 1


if __name__ == "__main__":
    sys.exit(main())
