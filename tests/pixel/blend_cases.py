#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""Writes blend_cases.inc: what the blend functions must return, to the bit.

Every step is exact rational arithmetic followed by one rounding to single or double precision, so the table owes
nothing to a compiler or a floating-point unit. Run it from this folder after changing a formula: only the standard
library is needed, and the output is committed.
"""
import random
from fractions import Fraction
from math import floor


def round_to(value, digits):
    """`value` rounded to `digits` significant bits, ties to even (no case here comes near the exponent's limits)."""
    if value == 0:
        return Fraction(0)
    magnitude = abs(value)
    exponent = magnitude.numerator.bit_length() - magnitude.denominator.bit_length()
    if magnitude >= Fraction(2) ** exponent:
        exponent += 1
    unit = Fraction(2) ** (exponent - digits)
    scaled = magnitude / unit
    whole = floor(scaled)
    rest = scaled - whole
    if rest > Fraction(1, 2) or (rest == Fraction(1, 2) and whole % 2 == 1):
        whole += 1
    return (whole if value > 0 else -whole) * unit


def single(value):
    return round_to(value, 24)


def double(value):
    return round_to(value, 53)


DOUBLE_001 = double(Fraction(1, 1000))
SINGLE_001 = single(Fraction(1, 1000))
SINGLE_255TH = single(Fraction(3921569, 10**9))


def term(mode, a, b):
    """(term in single precision, the b that the last step uses)"""
    if mode == 4 and not b > DOUBLE_001:
        b = SINGLE_001
    if mode == 1:
        return a, b
    if mode == 3:
        return single(a * b), b
    if mode == 4:
        return single(double(1 - double(double(1 - a) / b))), b
    if mode == 6:
        return single(a + b), b
    if mode == 7:
        return min(single(a + b), Fraction(1)), b
    if mode == 9:
        if Fraction(1, 2) > a:
            return single(double(b * double(2 * a))), b
        over = double(double(1 - a) + double(1 - a))
        return single(double(1 - double(double(1 - b) * over))), b
    if mode == 10:
        twice = single(b + b)
        product = single(twice * a)
        return single(double(product + double(double(a * a) * single(1 - twice)))), b
    return Fraction(0), b


def last_step(f, b, opacity):
    return single(double(double(b * double(1 - opacity)) + single(f * opacity)))


def blend32(a, b, opacity, mode):
    f, b = term(mode, a, b)
    return last_step(f, b, opacity), b


def blend8(a, b, opacity, mode):
    wide_b = single(b * SINGLE_255TH)
    f, wide_b = term(mode, single(a * SINGLE_255TH), wide_b)
    scaled = single(last_step(f, wide_b, opacity) * 255)
    return floor(max(min(scaled, Fraction(255)), Fraction(0)))


def text(value):
    mantissa, exponent = float(value).hex().split("p")
    return (mantissa.rstrip("0").rstrip(".") if "." in mantissa else mantissa) + "p" + exponent + "f"


TERM_MODES = [1, 3, 4, 6, 7, 9, 10]
OTHER_MODES = [0, 2, 5, 8, 11, 12, 13, 14, 15, 16, -1, -2147483648, 2147483647]
OPACITIES = [Fraction(0), Fraction(1, 4), single(Fraction(7, 10)), Fraction(1)]


def main():
    random.seed(20260)
    edges = [Fraction(0), SINGLE_001, single(Fraction(11, 10000)), Fraction(1, 2), single(Fraction(4, 5)), Fraction(1)]
    pairs = [(a, b) for a in edges for b in edges if (a + b).numerator % 3 != 0]
    for _ in range(24):
        pairs.append((single(Fraction(random.uniform(-0.5, 2.5))), single(Fraction(random.uniform(-0.5, 2.5)))))
    with open("blend_cases.inc", "w") as out:
        out.write("// SPDX-License-Identifier: BSD-3-Clause\n// Copyright 2026 the Umbrant authors\n\n")
        out.write("// Written by blend_cases.py; do not edit.\n\n")
        out.write("const Blend32Case kBlend32Cases[] = {\n")
        for mode in TERM_MODES + OTHER_MODES:
            for a, b in pairs if mode in TERM_MODES else pairs[:4] + pairs[-2:]:
                opacity = random.choice(OPACITIES + [single(Fraction(random.random()))])
                result, b_after = blend32(a, b, opacity, mode)
                name = "-2147483647 - 1" if mode == -2147483648 else str(mode)
                out.write("    {%s, %s, %s, %s, %s, %s},\n"
                          % (name, text(a), text(b), text(opacity), text(result), text(b_after)))
        out.write("};\n\nconst Blend8Case kBlend8Cases[] = {\n")
        for mode in TERM_MODES + [0, 2, 11, -1]:
            for opacity in OPACITIES:
                digest = 0xCBF29CE484222325
                for a in range(0, 256, 5):
                    for b in range(256):
                        digest = ((digest ^ blend8(a, b, opacity, mode)) * 0x100000001B3) & 0xFFFFFFFFFFFFFFFF
                out.write("    {%d, %s, 0x%016Xu},\n" % (mode, text(opacity), digest))
        out.write("};\n")


main()
