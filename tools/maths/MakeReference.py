#!/usr/bin/env python3
"""Makes tests/kernels/MathsReference.inc, exact results for the tests of the maths.

    python3 tools/maths/MakeReference.py > tests/kernels/MathsReference.inc

Needs mpmath (Debian: python3-mpmath), which computes with any number of bits and reduces huge
arguments correctly. A row is the argument (for pow two), the result rounded to the nearest double,
and what the rounding took away, in ulp of that double.
"""
import math
import random
import struct

import mpmath
from mpmath import mp, mpf

mp.prec = 2400  # 1024 bits for the whole part of huge arguments, as many for tiny results

rng = random.Random(1)


def from_bits(bits):
    return struct.unpack("<d", struct.pack("<Q", bits))[0]


def neighbours(x, count=1):
    result = [x]
    for direction in (math.inf, -math.inf):
        y = x
        for _ in range(count):
            y = math.nextafter(y, direction)
            result.append(y)
    return result


def log_uniform(low, high):
    return rng.choice((-1, 1)) * 2.0 ** rng.uniform(math.log2(low), math.log2(high))


def many(count, make):
    return [make() for _ in range(count)]


def nearest_to_half_pi(exponent):
    """The m 2^exponent, m of 53 bits, that come nearest to multiples of pi/2: m is a multiple of the
    denominator of a convergent of 2^exponent 2/pi."""
    rest = mpmath.frac(mpmath.ldexp(2 / mp.pi, exponent))
    q, q_before = 1, 0
    found = []
    while True:
        rest = 1 / rest
        whole = int(mpmath.floor(rest))
        rest -= whole
        q, q_before = whole * q + q_before, q
        if q >= 2**53:
            break
        found.append(((2**53 - 1) // q) * q)
    return [math.ldexp(m, exponent) for m in found[-2:] if m >= 2**52]


def trigonometric():
    x = [5e-324, 1e-310, 2.0**-1022, 1e-8, float.fromhex("0x1.6ac5b262ca1ffp849"), 1.7976931348623157e308]
    for threshold in (0.75, 2.0**20, math.pi / 4, 2.0**-26, 2.0**-13):
        x += neighbours(threshold, 2)
    for k in list(range(1, 20)) + many(40, lambda: rng.randrange(20, 667000)):
        x += neighbours(float(k * mp.pi / 2))
    for exponent in range(-53, 971, 8):
        x += nearest_to_half_pi(exponent)
    x += many(30, lambda: rng.uniform(-0.7854, 0.7854))
    x += many(60, lambda: rng.uniform(-100, 100))
    x += many(40, lambda: rng.uniform(-(2**20), 2**20))
    x += many(60, lambda: log_uniform(2.0**20, 1e308))
    x += many(30, lambda: log_uniform(1e-320, 1))
    return x


def arctangent():
    x = [5e-324, 1e-310, 1.7976931348623157e308, 0.5, 1.0, 2.0]
    for threshold in (0.4142, 2.4142, 2.0**60, 2.0**53, 1.0):
        x += neighbours(threshold, 3)
    x += many(80, lambda: rng.uniform(-0.4142, 0.4142))
    x += many(100, lambda: rng.uniform(0.41, 0.5))
    x += many(80, lambda: rng.uniform(0.5, 2.5))
    x += many(50, lambda: rng.uniform(-20, 20))
    x += many(60, lambda: log_uniform(1e-320, 1e308))
    return x


def arccosine():
    x = [0.0, 5e-324, -1e-310, -1.0]
    for threshold in (0.5, -0.5, 0.25):
        x += neighbours(threshold, 3)
    x += [math.nextafter(1, 0), math.nextafter(-1, 0)]
    x += many(100, lambda: rng.uniform(-1, 1))
    x += many(60, lambda: rng.uniform(0.5, 0.6))
    x += many(60, lambda: -rng.uniform(0.5, 0.6))
    x += many(60, lambda: rng.choice((-1, 1)) * (1 - abs(log_uniform(1e-16, 0.1))))
    x += many(60, lambda: rng.uniform(-0.5, 0.5))
    x += many(30, lambda: log_uniform(1e-320, 1))
    return x


def logarithm():
    x = [5e-324, 1.7976931348623157e308, 2.0, 0.5, 3.0, 10.0]
    for threshold in (2.0**-1022, math.sqrt(0.5), math.sqrt(2)):
        x += neighbours(threshold, 3)
    x += [math.nextafter(1, 2), math.nextafter(1, 0)]
    x += many(60, lambda: from_bits(rng.getrandbits(52) >> rng.randrange(52)) or 1e-320)
    x += many(80, lambda: from_bits(rng.randrange(1, 0x7FF0000000000000)))
    x += many(60, lambda: 1 + log_uniform(1e-16, 0.3))
    x += many(60, lambda: rng.uniform(0.5, 2))
    x += many(80, lambda: rng.choice((0.7, 1.4)) * rng.uniform(0.98, 1.03))
    x += many(40, lambda: rng.uniform(0, 1000))
    return x


def exponential():
    x = [5e-324, -5e-324, 1e-17, -1e-17, 709.782712893384, -708.3964185322641, -745.1332191019411]
    x += neighbours(0.34657359027997264) + neighbours(-0.34657359027997264)
    x += many(100, lambda: rng.uniform(-0.35, 0.35))
    x += many(100, lambda: (rng.randrange(-100, 100) + 0.5) * math.log(2) * rng.uniform(0.999, 1.001))
    x += many(80, lambda: rng.uniform(-708, 709.78))
    x += many(80, lambda: rng.uniform(-745.1, -708))
    x += many(30, lambda: log_uniform(1e-320, 0.1))
    return x


def power():
    pairs = [(10.0, 22.0), (10.0, -5.0), (0.5, 1074.0), (5e-324, 1.0), (5e-324, -0.9), (1.5, -1835.0)]
    pairs += many(80, lambda: (rng.uniform(0, 10), rng.uniform(-3, 3)))

    def towards(base, low, high):
        return (base, rng.uniform(low, high) / math.log(abs(base)))

    pairs += many(60, lambda: towards(from_bits(rng.randrange(1, 0x7FF0000000000000)), -708, 709))
    pairs += many(80, lambda: towards(1 + log_uniform(1e-10, 0.3), -708, 709))
    pairs += many(80, lambda: towards(rng.uniform(0.7, 1.42), -708, 709))
    pairs += many(60, lambda: towards(rng.uniform(0, 100), -745, -708))
    pairs += many(40, lambda: (rng.uniform(-20, 20), float(rng.randrange(-40, 40))))
    return pairs


def row(exact, *arguments):
    result = float(exact)
    if math.isinf(result):
        return None
    ulp = math.ulp(result)
    lost = (exact - mpf(result)) / mpf(ulp)
    numbers = ", ".join(argument.hex() for argument in arguments)
    return "    { %s, %s, %.4f }," % (numbers, result.hex(), lost)


def table(name, kind, rows):
    print("static constexpr %s %s[] = {" % (kind, name))
    print("\n".join(r for r in rows if r))
    print("};\n")


print("// Made by tools/maths/MakeReference.py; change that, not this.\n")
angles = trigonometric()
table("sinReference", "UnaryReference", [row(mp.sin(mpf(x)), x) for x in angles])
table("cosReference", "UnaryReference", [row(mp.cos(mpf(x)), x) for x in angles])
table("tanReference", "UnaryReference", [row(mp.tan(mpf(x)), x) for x in angles])
table("atanReference", "UnaryReference", [row(mp.atan(mpf(x)), x) for x in arctangent()])
table("acosReference", "UnaryReference", [row(mp.acos(mpf(x)), x) for x in arccosine()])
table("logReference", "UnaryReference", [row(mp.log(mpf(x)), x) for x in logarithm()])
table("expReference", "UnaryReference", [row(mp.exp(mpf(x)), x) for x in exponential()])
table("powReference", "BinaryReference", [row(mp.power(mpf(x), mpf(y)), x, y) for x, y in power()])
