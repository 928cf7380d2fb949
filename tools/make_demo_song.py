#!/usr/bin/env python3
# SPDX-License-Identifier: CC0-1.0
"""Makes the demo song, its cover and its list of kicks.

    tools/make_demo_song.py [FOLDER=data/demo] [--wav FILE]

Writes pxvis-demo.opus and kicks.txt (the start of each kick in seconds, one a line). The standard
library makes all of the sound; gst-launch-1.0 with opusenc and oggmux (gstreamer1.0-tools and
gstreamer1.0-plugins-base) encodes it. Takes about a minute. The result is kept in the repository,
so this runs only when the song is to change.

25 bars at 124 beats a minute: intro 4, build 4, drop 8, break 4, second drop 4, last chord 1.
"""

import argparse
import base64
import math
import pathlib
import random
import struct
import subprocess
import sys
import tempfile
import wave
import zlib
from array import array

RATE = 48000  # Opus works at this rate: no resampling in the encoder
TEMPO = 124
BEAT = RATE * 60 / TEMPO
STEP = BEAT / 4  # a sixteenth
BAR = BEAT * 4
BARS = 25
LENGTH = int(BARS * BAR)
TABLE = 4096
TITLE, ARTIST, ALBUM, YEAR = "First Light", "pxvis", "pxvis demo", "2025"

INTRO, BUILD, DROP, BREAK, DROP2, END = 0, 4, 8, 16, 20, 24

# Four bars of harmony, as MIDI notes: Dm9, Bbmaj7, Fadd9/A, C.
CHORDS = [(50, 57, 60, 64, 65), (50, 58, 62, 65, 69), (53, 57, 60, 65, 67), (52, 55, 60, 62, 67)]
ROOTS = [38, 34, 41, 36]
# Melodies: per bar (sixteenth, length in sixteenths, note).
HOOK = [
    [(0, 3, 69), (3, 3, 74), (6, 2, 77), (8, 3, 76), (11, 3, 74), (14, 2, 69)],
    [(0, 3, 74), (3, 3, 72), (6, 2, 74), (8, 6, 77), (14, 2, 79)],
    [(0, 3, 81), (3, 3, 79), (6, 2, 77), (8, 4, 72), (12, 2, 77), (14, 2, 79)],
    [(0, 6, 76), (6, 2, 79), (8, 3, 76), (11, 3, 74), (14, 2, 72)],
]
HOOK_TURN = [(0, 3, 76), (3, 3, 79), (6, 2, 84), (8, 8, 79)]
BELLS = [
    [(0, 6, 77), (6, 2, 76), (8, 8, 69)],
    [(0, 6, 74), (6, 2, 77), (8, 8, 81)],
    [(0, 4, 81), (4, 4, 79), (8, 4, 77), (12, 4, 72)],
    [(0, 8, 79), (8, 6, 76)],
]

rng = random.Random(124)


# ---- building blocks: sounds are lists of floats, buses are pairs of arrays ----


def hertz(note):
    return 440.0 * 2 ** ((note - 69) / 12)


def seconds(s):
    return int(s * RATE)


class Bus:
    def __init__(self):
        self.sides = [array("d", bytes(8 * LENGTH)) for _ in range(2)]

    def add(self, start, left, right=None, gain=1.0, pan=0.0):
        """Mixes a sound in at a sample position; pan -1 (left) to 1, constant power."""
        angle = (pan + 1) * math.pi / 4
        gains = (gain * math.cos(angle) * math.sqrt(2), gain * math.sin(angle) * math.sqrt(2))
        start = int(start)
        for side, sound, g in zip(self.sides, (left, right or left), gains):
            end = min(start + len(sound), LENGTH)
            if end > start:
                side[start:end] = array("d", [a + g * b for a, b in zip(side[start:end], sound)])


def band_limited(shape):
    """Makes a cache of single-cycle tables with no harmonic above 15 kHz; shape(k) is harmonic k."""
    tables = {}

    def table(freq):
        count = max(1, min(90, int(15000 / freq)))
        if count not in tables:
            sine = [math.sin(2 * math.pi * i / TABLE) for i in range(TABLE)]
            cycle = [0.0] * TABLE
            for k in range(1, count + 1):
                a = shape(k) * (math.cos(math.pi * k / (2 * count + 2)) ** 2)  # no ringing at the edge
                if a:
                    cycle = [c + a * sine[i * k % TABLE] for i, c in enumerate(cycle)]
            tables[count] = cycle
        return tables[count]

    return table


saw_table = band_limited(lambda k: 2 / (math.pi * k))
pulse_table = band_limited(lambda k: 2 / (math.pi * k) * math.sin(math.pi * k * 0.3))
sine_table = band_limited(lambda k: 1.0 if k == 1 else 0.0)


def tone(tables, freq, count, phase=0.0):
    table = tables(freq)
    inc = int(freq * TABLE * 65536 / RATE)
    p = int(phase * TABLE * 65536)
    mask = TABLE - 1
    return [table[(q >> 16) & mask] for q in range(p, p + count * inc, inc)][:count]


def noise(count):
    return [rng.uniform(-1, 1) for _ in range(count)]


def decay(count, tau, attack=0.001):
    """An exponential decay (time constant in seconds) behind a straight attack."""
    k = math.exp(-1 / (tau * RATE))
    out, level, rise = [], 1.0, max(1, seconds(attack))
    for i in range(count):
        out.append(level * i / rise if i < rise else level)
        level *= k
    fade = min(count, 200)
    for i in range(fade):
        out[count - 1 - i] *= i / fade
    return out


def gate(count, attack, release, sustain=1.0, tau=0.3):
    """Attack, decay to a sustain level, release within the length."""
    rise, fall = seconds(attack), seconds(release)
    k, level, out = math.exp(-1 / (tau * RATE)), 1.0, []
    for i in range(count):
        level = sustain + (level - sustain) * k
        out.append(level * min(1.0, (i + 1) / rise, (count - i) / fall))
    return out


def times(sound, envelope):
    return [a * b for a, b in zip(sound, envelope)]


def plus(*sounds):
    return [sum(x) for x in zip(*sounds)]


def filtered(sound, cutoff, q=0.7, kind="low"):
    """State variable filter (trapezoidal integrators). cutoff: Hz, or a function of the sample index."""
    moving = callable(cutoff)
    k = 1 / q
    g = math.tan(math.pi * min(0.45, (cutoff(0) if moving else cutoff) / RATE))
    a1 = 1 / (1 + g * (g + k))
    s1 = s2 = 0.0
    out = []
    append = out.append
    pick = {"low": 0, "band": 1, "high": 2}[kind]
    for block in range(0, len(sound), 32):
        if moving:
            g = math.tan(math.pi * min(0.45, cutoff(block) / RATE))
            a1 = 1 / (1 + g * (g + k))
        a2 = g * a1
        a3 = g * a2
        for x in sound[block : block + 32]:
            v3 = x - s2
            v1 = a1 * s1 + a2 * v3
            v2 = s2 + a2 * s1 + a3 * v3
            s1 = 2 * v1 - s1
            s2 = 2 * v2 - s2
            append(v2 if pick == 0 else v1 if pick == 1 else x - k * v1 - v2)
    return out


def drive(sound, amount):
    norm = 1 / math.tanh(amount)
    return [math.tanh(amount * x) * norm for x in sound]


# ---- instruments ----


def sweep(count, low, spans):
    """A sine whose pitch falls to low; spans: (Hz above low, time constant in seconds)."""
    phase, out = 0.0, []
    factors = [[depth, math.exp(-1 / (tau * RATE))] for depth, tau in spans]
    for _ in range(count):
        out.append(math.sin(phase))
        freq = low
        for f in factors:
            freq += f[0]
            f[0] *= f[1]
        phase += 2 * math.pi * freq / RATE
    return out


def make_kick():
    n = seconds(0.42)
    body = times(sweep(n, 48, [(120, 0.028), (700, 0.005)]), decay(n, 0.125, 0.0005))
    click = times(filtered(noise(n), 2500, kind="high"), decay(n, 0.004, 0.0002))
    return drive([b + 0.4 * c for b, c in zip(body, click)], 1.6)


def make_clap():
    n = seconds(0.35)
    hits = [0.0] * n
    for at, level, tau in ((0, 0.7, 0.006), (0.011, 0.8, 0.006), (0.021, 0.9, 0.006), (0.031, 1, 0.07)):
        s = seconds(at)
        for i, v in enumerate(decay(n - s, tau, 0.0005)):
            hits[s + i] += level * v
    return [1.4 * x for x in filtered(filtered(times(noise(n), hits), 1300, 0.9, "band"), 600, kind="high")]


def make_snare():
    n = seconds(0.28)
    body = times(sweep(n, 185, [(140, 0.012)]), decay(n, 0.05))
    rattle = times(filtered(noise(n), 1800, kind="high"), decay(n, 0.075))
    return drive([0.7 * b + 0.6 * r for b, r in zip(body, rattle)], 1.3)


def make_tom(freq):
    n = seconds(0.4)
    return drive(times(sweep(n, freq, [(freq * 0.8, 0.04)]), decay(n, 0.13)), 1.5)


def make_hat(length, tau):
    n = seconds(length)
    metal = plus(*[tone(pulse_table, f, n, rng.random()) for f in (3170, 4230, 5410, 6790)])
    mixed = [0.6 * x + 0.35 * m for x, m in zip(noise(n), metal)]
    return times(filtered(filtered(mixed, 7000, kind="high"), 7500, kind="high"), decay(n, tau, 0.0008))


def make_crash():
    n = seconds(2.6)
    ring = plus(*[tone(pulse_table, f, n, rng.random()) for f in (2417, 3389, 4973, 6121, 7703)])
    mixed = [0.8 * x + 0.25 * r for x, r in zip(noise(n), ring)]
    return times(filtered(mixed, 3800, kind="high"), decay(n, 0.62, 0.002))


def make_riser(bars):
    """Noise through a rising band, and a rising tone, ending in nothing."""
    n = int(bars * BAR)
    air = filtered(noise(n), lambda i: 400 * 25 ** (i / n), 1.6, "band")
    phase, out = 0.0, []
    for i, a in enumerate(air):
        x = i / n
        phase += hertz(50 + 24 * x * x) / RATE
        out.append(x**1.7 * (a + 0.10 * (2 * (phase % 1) - 1)))
    return out


def make_fall():
    n = int(2 * BAR)
    air = filtered(noise(n), lambda i: 6000 * 0.03 ** (i / n), 0.9, "band")
    return times(air, decay(n, 0.9, 0.01))


_notes = {}


def cached(make):
    def get(*key):
        k = (make.__name__,) + key
        if k not in _notes:
            _notes[k] = make(*key)
        return _notes[k]

    return get


@cached
def bass_note(note, steps, bright):
    n = int(steps * STEP)
    f = hertz(note)
    buzz = plus(tone(saw_table, f * 1.003, n, 0.1), tone(pulse_table, f * 0.997 * 2, n, 0.6))
    top = max(200.0, bright)
    buzz = filtered(buzz, lambda i: 120 + top * math.exp(-i / (0.09 * RATE)), 1.8)
    sub = tone(sine_table, f, n)
    return times(drive([0.55 * b + 0.75 * s for b, s in zip(buzz, sub)], 1.4), gate(n, 0.008, 0.012, 0.7, 0.12))


@cached
def pluck(note, bright):
    n = seconds(0.34)
    f = hertz(note)
    raw = plus(tone(saw_table, f * 1.004, n, 0.3), tone(pulse_table, f * 0.996, n, 0.8))
    raw = filtered(raw, lambda i: f + bright * math.exp(-i / (0.05 * RATE)), 1.3)
    return times(raw, decay(n, 0.09, 0.002))


@cached
def bell(note, steps):
    """Two-operator frequency modulation, ratio 3.5 and 1, fading to a pure tone."""
    n = int(steps * STEP) + seconds(0.9)
    w = 2 * math.pi * hertz(note) / RATE
    index, k, out = 2.2, math.exp(-1 / (0.22 * RATE)), []
    for i in range(n):
        out.append(math.sin(w * i + index * math.sin(3.5 * w * i)) + 0.5 * math.sin(1.003 * w * i))
        index *= k
    return times(out, decay(n, 0.55, 0.002))


@cached
def lead(note, steps):
    """A left and a right voice of detuned saws."""
    n = int(steps * STEP)
    f = hertz(note)
    sides = []
    for detune in ((0.9935, 1.0, 1.0045), (0.9955, 1.0, 1.0065)):
        raw = plus(*[tone(saw_table, f * d, n, rng.random()) for d in detune])
        raw = filtered(raw, lambda i: 2200 + 7500 * math.exp(-i / (0.18 * RATE)), 1.0)
        sides.append(times(raw, gate(n, 0.006, 0.03, 0.65, 0.15)))
    return sides


@cached
def strings(chord):
    """One bar of a chord, seven detuned saws a note, four heard left and four right."""
    n = int(BAR) + seconds(0.05)
    left, right = [0.0] * n, [0.0] * n
    for note in CHORDS[chord]:
        for j in range(7):
            voice = tone(saw_table, hertz(note) * (1 + (j - 3) * 0.0031), n, rng.random())
            if j <= 3:
                left = [a + b for a, b in zip(left, voice)]
            if j >= 3:
                right = [a + b for a, b in zip(right, voice)]
    return left, right


# ---- rooms ----


def reverberate(bus, feedback, damping):
    """Damped comb filters in parallel, then all-pass filters in a row; the sides' lengths differ."""
    wet = Bus()
    for side in range(2):
        source = bus.sides[side]
        total = [0.0] * LENGTH
        for length in (1687, 1601, 1493, 1367, 1213, 1087):
            line, at, low = [0.0] * (length + 37 * side), 0, 0.0
            size, out = len(line), []
            append = out.append
            for x in source:
                y = line[at]
                low = y + (low - y) * damping
                line[at] = x + low * feedback
                at += 1
                if at == size:
                    at = 0
                append(y)
            total = [a + b for a, b in zip(total, out)]
        for length in (605, 241):
            size = length + 23 * side
            line, at, out = [0.0] * size, 0, []
            append = out.append
            for x in total:
                y = line[at]
                v = x + 0.5 * y
                line[at] = v
                at += 1
                if at == size:
                    at = 0
                append(y - 0.5 * v)
            total = out
        wet.sides[side] = array("d", filtered(total, 250, kind="high"))
    return wet


def echo(bus, steps, feedback):
    """Ping-pong: what goes in left comes back right, a shade quieter each time."""
    wet, d = Bus(), int(steps * STEP)
    for start in range(d, LENGTH, d):
        end = min(start + d, LENGTH)
        n = end - start
        for side in range(2):
            dry = bus.sides[side][start - d : start - d + n]
            back = wet.sides[1 - side][start - d : start - d + n]
            wet.sides[side][start:end] = array("d", [a + feedback * b for a, b in zip(dry, back)])
    return wet


# ---- the song ----


def at(bar, step=0.0):
    return bar * BAR + step * STEP


def drums(dry, send):
    kick, clap, snare, crash = make_kick(), make_clap(), make_snare(), make_crash()
    closed, opened = make_hat(0.12, 0.024), make_hat(0.4, 0.11)
    toms = [make_tom(f) for f in (165, 125, 92)]
    kicks = []

    def hit_kick(bar, step, gain=1.0):
        kicks.append(int(at(bar, step)))
        dry.add(at(bar, step), kick, gain=0.80 * gain)

    for bar in range(BARS):
        in_drop = DROP <= bar < BREAK or DROP2 <= bar < END
        # kicks: all four beats in the build's first half and the drops; doubled ends before a fill
        if in_drop or BUILD <= bar < BUILD + 3:
            for beat in range(4):
                hit_kick(bar, 4 * beat, 1.0 if in_drop else 0.85)
            if bar in (DROP + 3, DROP2 + 1):
                hit_kick(bar, 14, 0.85)
        elif bar == BUILD + 3:
            hit_kick(bar, 0, 0.85)
            hit_kick(bar, 4, 0.85)
        # claps on the second and fourth beat
        if in_drop or BUILD + 1 <= bar < BUILD + 3:
            for beat in (1, 3):
                dry.add(at(bar, 4 * beat), clap, gain=0.62 if in_drop else 0.36)
                send.add(at(bar, 4 * beat), clap, gain=0.22)
        # hats: sixteenths with an accent off the beat, open ones in the drops
        if in_drop or BUILD <= bar < BUILD + 3 or bar in (INTRO + 2, INTRO + 3, BREAK + 2, BREAK + 3):
            soft = 1.0 if in_drop else 0.6
            for s in range(16):
                if s % 4 == 2 and in_drop:
                    dry.add(at(bar, s), opened, gain=0.52, pan=0.15)
                elif in_drop or s % 2 == 0:
                    level = (0.36, 0.20, 0.44, 0.24)[s % 4] * rng.uniform(0.8, 1.1)
                    dry.add(at(bar, s), closed, gain=soft * level, pan=0.35 if s % 2 else -0.2)
        # rolls before the drops: eighths, sixteenths, thirty-seconds, then a breath of silence
        if bar in (BUILD + 2, BUILD + 3, BREAK + 3):
            first = bar == BUILD + 2
            step = 0.0
            while step < (16 if first else 14):
                rise = (step + (0 if first else 16)) / 32
                dry.add(at(bar, step), snare, gain=0.08 + 0.34 * rise, pan=0.1)
                send.add(at(bar, step), snare, gain=0.10 * rise)
                step += 2 if first else 1 if step < 8 else 0.5
    # fills on the toms
    for bar in (DROP + 3, DROP + 7, DROP2 + 3):
        for s, which, gain in ((8, 0, 0.38), (9.5, 0, 0.34), (11, 1, 0.42), (12.5, 1, 0.38), (14, 2, 0.46), (15, 2, 0.42)):
            dry.add(at(bar, s), toms[which], gain=gain, pan=(-0.5, 0, 0.5)[which])
            send.add(at(bar, s), toms[which], gain=0.12, pan=(-0.5, 0, 0.5)[which])
    for bar, gain in ((BUILD, 0.16), (DROP, 0.36), (DROP + 4, 0.26), (BREAK, 0.2), (DROP2, 0.36), (END, 0.4)):
        dry.add(at(bar), crash, crash[211:], gain=1.3 * gain)
        send.add(at(bar), crash, gain=gain * 0.3)
    hit_kick(END, 0)
    return sorted(kicks)


def music(ducked, free, room, delay):
    for bar in range(END):
        c = bar % 4
        in_drop = DROP <= bar < BREAK or DROP2 <= bar < END
        left, right = strings(c)
        # chords: a slowly opening pad, or stabs in the drops
        if in_drop:
            for s, length in ((0, 2.6), (3, 2.6), (6, 1.7), (8, 2.6), (11, 2.6), (14, 1.7)):
                n = int(length * STEP)
                env = gate(n, 0.004, 0.03, 0.55, 0.1)
                o = int(s * STEP)
                pair = [
                    filtered(times(v[o : o + n], env), lambda i: 1500 + 9000 * math.exp(-i / (0.1 * RATE)), 0.9)
                    for v in (left, right)
                ]
                ducked.add(at(bar, s), *pair, gain=0.135)
                room.add(at(bar, s), *pair, gain=0.035)
        else:
            where = (bar - BREAK) / 4 if bar >= BREAK else bar / 8
            low, high = (500, 2600) if bar >= BREAK else (260, 5200)

            def cutoff(i):
                return low * (high / low) ** (where + i / BAR * (0.25 if bar >= BREAK else 0.125))

            env = gate(len(left), 0.05, 0.05)
            pair = [times(filtered(v, cutoff, 0.9), env) for v in (left, right)]
            ducked.add(at(bar), *pair, gain=0.062)
            room.add(at(bar), *pair, gain=0.03)
        # bass: off the kick in the drops, an opening pedal in the build
        if in_drop:
            for s in range(16):
                if s % 4:
                    note = ROOTS[c] + (12 if s in (7, 14) else 0)
                    ducked.add(at(bar, s), bass_note(note, 0.9, 1300), gain=0.30)
        elif BUILD <= bar < BUILD + 4:
            for s in range(2, 16 if bar < BUILD + 3 else 8, 4):
                ducked.add(at(bar, s), bass_note(ROOTS[c], 1.8, 300 + 150 * (bar - BUILD)), gain=0.36)
        # arpeggio: up and down through the chord, brighter towards the drop
        if not BREAK <= bar < BREAK + 2:
            bright = 8000 if in_drop else 500 + 550 * (bar % 8) if bar < BREAK else 1500
            notes = [n + 12 for n in CHORDS[c]] + [CHORDS[c][1] + 24, CHORDS[c][2] + 24]
            order = (0, 2, 4, 5, 1, 3, 6, 4, 0, 2, 5, 3, 1, 4, 6, 2)
            level = 0.15 if in_drop else 0.07 + 0.012 * (bar % 8)
            last = 14 if bar in (BUILD + 3, BREAK + 3) else 16
            for s in range(last):
                if bar < INTRO + 1 and s % 2:
                    continue
                sound = pluck(notes[order[s]], bright)
                pan = 0.55 * math.sin((bar * 16 + s) * 0.7)
                free.add(at(bar, s), sound, gain=level * (1.15 if s % 4 == 0 else 0.9), pan=pan)
                delay.add(at(bar, s), sound, gain=level * 0.35, pan=-pan)
                room.add(at(bar, s), sound, gain=level * 0.25, pan=pan)
        # melodies
        if in_drop:
            for s, length, note in HOOK_TURN if bar in (DROP + 7, DROP2 + 3) else HOOK[c]:
                pair = lead(note, length)
                ducked.add(at(bar, s), *pair, gain=0.18)
                delay.add(at(bar, s), *pair, gain=0.045)
                room.add(at(bar, s), *pair, gain=0.04)
        if BREAK <= bar < BREAK + 4 or bar in (INTRO, INTRO + 1, INTRO + 2, INTRO + 3):
            level = 0.17 if bar >= BREAK else 0.11
            for s, length, note in BELLS[c]:
                free.add(at(bar, s), bell(note, length), gain=level, pan=0.25 if s % 8 else -0.25)
                delay.add(at(bar, s), bell(note, length), gain=level * 0.35)
                room.add(at(bar, s), bell(note, length), gain=level * 0.6)
    # the last chord rings out: D minor with the ninth
    n = LENGTH - int(at(END))
    left, right = strings(0)
    env = decay(n, 0.5, 0.004)
    for pair in [[filtered(times(v, env), lambda i: 300 + 6000 * math.exp(-i / (0.4 * RATE)), 0.8) for v in (left, right)]]:
        free.add(at(END), *pair, gain=0.11)
        room.add(at(END), *pair, gain=0.06)
    free.add(at(END), times(bass_note(26 + 12, 14, 700), decay(int(14 * STEP), 0.6)), gain=0.4)
    free.add(at(END), bell(74, 8), gain=0.16)
    delay.add(at(END), bell(81, 8), gain=0.06)
    # risers into the drops, falls out of them
    for bar, bars in ((DROP, 4), (DROP2, 2)):
        rise = make_riser(bars)
        rise = rise[: len(rise) - int(2 * STEP)]
        fade = seconds(0.01)
        rise[-fade:] = [x * (1 - i / fade) for i, x in enumerate(rise[-fade:])]
        free.add(at(bar - bars), rise, [-x for x in rise], gain=0.34)
        room.add(at(bar - bars), rise, gain=0.06)
    fall = make_fall()
    for bar in (DROP, BREAK, DROP2):
        free.add(at(bar), fall, fall[37:], gain=0.3)


def duck_curve(kicks):
    """What the kicks leave of the music: down to a sixth at once, back within a third of a beat."""
    curve = array("d", [1.0]) * LENGTH
    n = int(BEAT * 0.9)
    shape = [1 - 0.84 * (0.5 + 0.5 * math.cos(math.pi * min(1.0, i / n * 1.15))) ** 1.5 for i in range(n)]
    for k in kicks:
        end = min(k + n, LENGTH)
        curve[k:end] = array("d", [min(a, b) for a, b in zip(curve[k:end], shape)])
    # without the first milliseconds being soft the music would click at each kick
    soft, level = 1 - math.exp(-1 / (0.0015 * RATE)), 1.0
    for i, x in enumerate(curve):
        level += (x - level) * soft
        curve[i] = level
    return curve


def make_song():
    beats, ducked, free, room, delay = Bus(), Bus(), Bus(), Bus(), Bus()
    kicks = drums(beats, room)
    music(ducked, free, room, delay)
    curve = duck_curve(kicks)
    echoes = echo(delay, 3, 0.42)
    for side in range(2):
        room.sides[side] = array("d", [a + 0.3 * b for a, b in zip(room.sides[side], echoes.sides[side])])
    space = reverberate(room, 0.80, 0.35)
    sides = []
    fade = seconds(0.35)
    for side in range(2):
        layers = zip(beats.sides[side], ducked.sides[side], free.sides[side], echoes.sides[side], space.sides[side], curve)
        mixed = [b + g * m + (0.45 + 0.55 * g) * (f + e + 0.30 * s) for b, m, f, e, s, g in layers]
        mixed = drive(filtered(mixed, 28, kind="high"), 0.75)  # rounds the highest peaks only
        mixed[-fade:] = [x * (1 - i / fade) for i, x in enumerate(mixed[-fade:])]
        sides.append(mixed)
    peak = max(max(map(abs, side)) for side in sides)
    gain = 10 ** (-2 / 20) / peak  # the decoded song then peaks at about -1 dBFS
    return [[x * gain for x in side] for side in sides], kicks


# ---- files ----


def make_cover(size=256):
    """A low sun over a dark sea, with a ring of bars round it, as PNG."""
    rows = []
    for y in range(size):
        row = bytearray([0])
        for x in range(size):
            u, v = (x - size / 2) / (size / 2), (y - size * 0.44) / (size / 2)
            r, a = math.hypot(u, v), math.atan2(v, u)
            red, green, blue = 18 + 26 * (1 - y / size), 14 + 10 * (1 - y / size), 44 + 40 * (1 - y / size)
            bar = math.floor((a / math.pi + 1) * 32) / 32
            reach = 0.50 + 0.24 * abs(math.sin(bar * 9.1) * math.cos(bar * 4.7))
            if r < 0.40:
                red, green, blue = 255, 196 - 120 * r, 90 - 60 * r
            elif 0.46 < r < reach and (a / math.pi + 1) * 32 % 1 < 0.62:
                t = (r - 0.46) / 0.28
                red, green, blue = 250 - 120 * t, 110 - 40 * t, 90 + 150 * t
            if v > 0.30:  # the sea
                wave_line = math.sin(v * 60 + 3 * math.sin(u * 7)) > 0.55
                red, green, blue = (red * 0.8, green * 0.75, blue * 0.85) if wave_line else (14, 16, 46 + 20 * (1 - v))
            row += bytes(max(0, min(255, int(c))) for c in (red, green, blue))
        rows.append(bytes(row))

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    header = struct.pack(">IIBBBBB", size, size, 8, 2, 0, 0, 0)
    body = zlib.compress(b"".join(rows), 9)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", body) + chunk(b"IEND", b"")


def opus_tags(cover, size):
    """The comment packet of an Opus stream (RFC 7845, 5.2), the cover as a FLAC picture block."""
    block = struct.pack(">II", 3, 9) + b"image/png" + struct.pack(">I", 0)
    block += struct.pack(">IIIII", size, size, 24, 0, len(cover)) + cover
    comments = [f"TITLE={TITLE}", f"ARTIST={ARTIST}", f"ALBUM={ALBUM}", f"DATE={YEAR}", "TRACKNUMBER=1"]
    comments += ["GENRE=Electronic", "LICENSE=CC0-1.0", "METADATA_BLOCK_PICTURE=" + base64.b64encode(block).decode()]
    packet = b"OpusTags" + struct.pack("<I", 5) + b"pxvis" + struct.pack("<I", len(comments))
    for c in comments:
        packet += struct.pack("<I", len(c.encode())) + c.encode()
    return packet


def ogg_page(flags, granule, sequence, lacing, body):
    page = bytearray(struct.pack("<4sBBqIIIB", b"OggS", 0, flags, granule, 0x70787669, sequence, 0, len(lacing)))
    page += bytes(lacing) + body
    crc = 0
    for byte in page:
        crc = (crc << 8 & 0xFFFFFFFF) ^ OGG_CRC[crc >> 24 ^ byte]
    page[22:26] = struct.pack("<I", crc)
    return bytes(page)


def ogg_crc_table():
    table = []
    for i in range(256):
        r = i << 24
        for _ in range(8):
            r = (r << 1 & 0xFFFFFFFF) ^ (0x04C11DB7 if r & 0x80000000 else 0)
        table.append(r)
    return table


OGG_CRC = ogg_crc_table()


def with_tags(ogg, packet):
    """Puts another comment packet into an Ogg Opus file and fixes the serial, so that runs agree."""
    pages, at_byte = [], 0
    while at_byte < len(ogg):
        flags, granule = struct.unpack_from("<Bq", ogg, at_byte + 5)
        count = ogg[at_byte + 26]
        lacing = ogg[at_byte + 27 : at_byte + 27 + count]
        start = at_byte + 27 + count
        at_byte = start + sum(lacing)
        pages.append((flags, granule, lacing, ogg[start:at_byte]))
    out, sequence = [ogg_page(*pages[0][:2], 0, *pages[0][2:])], 1
    lacing = [255] * (len(packet) // 255) + [len(packet) % 255]
    for first in range(0, len(lacing), 255):
        part = lacing[first : first + 255]
        done = first + 255 >= len(lacing)
        body = packet[first * 255 : first * 255 + sum(part)]
        out.append(ogg_page(1 if first else 0, 0 if done else -1, sequence, part, body))
        sequence += 1
    # the encoder's own comment packet ends at the first lacing value below 255
    old = 1
    while pages[old][2][-1] == 255:
        old += 1
    for flags, granule, lacing, body in pages[old + 1 :]:
        out.append(ogg_page(flags, granule, sequence, lacing, body))
        sequence += 1
    return b"".join(out)


def main():
    parser = argparse.ArgumentParser(description="Makes the demo song.")
    default = pathlib.Path(__file__).resolve().parent.parent / "data" / "demo"
    parser.add_argument("folder", nargs="?", type=pathlib.Path, default=default)
    parser.add_argument("--wav", type=pathlib.Path, help="keep the uncompressed song here")
    args = parser.parse_args()

    sides, kicks = make_song()
    dither = random.Random(1)
    pcm = array("h", bytes(4 * LENGTH))
    for side in range(2):
        pcm[side::2] = array("h", [round(x * 32767 + dither.random() - dither.random()) for x in sides[side]])
    if sys.byteorder == "big":
        pcm.byteswap()
    with tempfile.TemporaryDirectory() as folder:
        plain = args.wav or pathlib.Path(folder) / "song.wav"
        with wave.open(str(plain), "wb") as f:
            f.setnchannels(2)
            f.setsampwidth(2)
            f.setframerate(RATE)
            f.writeframes(pcm.tobytes())
        coded = pathlib.Path(folder) / "song.opus"
        encoder = "wavparse ! audioconvert ! opusenc bitrate=104000 bitrate-type=vbr ! oggmux"
        command = ["gst-launch-1.0", "-q", "filesrc", f"location={plain}", "!", *encoder.split(), "!", "filesink", f"location={coded}"]
        subprocess.run(command, check=True)
        args.folder.mkdir(parents=True, exist_ok=True)
        song = with_tags(coded.read_bytes(), opus_tags(make_cover(), 256))
        (args.folder / "pxvis-demo.opus").write_bytes(song)
    (args.folder / "kicks.txt").write_text("".join(f"{k / RATE:.6f}\n" for k in kicks))
    print(f"{len(song)} bytes, {LENGTH / RATE:.2f} s, {len(kicks)} kicks")


if __name__ == "__main__":
    main()
