# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""The same shadow as its author would write it with OpenCV: float arithmetic, blurred and united at a reduced scale.

Usage: opencv_peer.py WORK SCALE [LAYER.png OUTPUT.png]. WORK is the JSON that bench/peers/compare writes. With two files
it draws one into the other and ends; otherwise it answers "frame" and "save FILE" on standard input like the other peers.
"""

import json
import sys
import time

import cv2
import numpy as np

work = json.load(open(sys.argv[1]))
scale = float(sys.argv[2])
files = sys.argv[3:5]
if files:
    # Blue first, as OpenCV has it in files: only the alpha is treated differently.
    layer = cv2.imread(files[0], cv2.IMREAD_UNCHANGED)
else:
    layer = np.fromfile(work["layer"], np.uint8).reshape(work["height"], work["width"], 4)
width, height, left, top = work["frame"]
small = (round(width * scale), round(height * scale))


def blurred(alpha, reach):
    # The same bell: its standard deviation is sqrt(0.06) of the reach, beyond which it is cut off.
    size = 2 * round(reach * scale) + 1
    if size < 3:
        return alpha
    return cv2.GaussianBlur(alpha, (size, size), reach * scale * 0.06**0.5, borderType=cv2.BORDER_CONSTANT)


def draw():
    canvas = np.zeros((height, width, 4), np.float32)
    canvas[-top : -top + work["height"], -left : -left + work["width"]] = layer
    canvas *= 1 / 255
    alpha = cv2.resize(canvas[..., 3], small, interpolation=cv2.INTER_AREA)
    rest = np.ones(alpha.shape, np.float32)
    for sample in work["samples"]:
        if sample["opacity"] <= 0:
            continue
        shift = np.float32([[1, 0, sample["x"] * scale], [0, 1, sample["y"] * scale]])
        moved = cv2.warpAffine(blurred(alpha, sample["softness"]), shift, small, flags=cv2.INTER_LINEAR)
        # rest *= 1 - opacity * moved, without a temporary picture more than needed.
        cv2.multiply(moved, -sample["opacity"], moved)
        cv2.add(moved, 1.0, moved)
        cv2.multiply(rest, moved, rest)
    shadow = 1 - cv2.resize(rest, (width, height), interpolation=cv2.INTER_LINEAR)
    # The black shadow under the layer: only its alpha is left to mix.
    over = canvas[..., 3]
    united = over + shadow * (1 - over)
    canvas[..., :3] *= cv2.merge([over / np.maximum(united, 1e-6)] * 3)
    canvas[..., 3] = united
    return (canvas * 255 + 0.5).astype(np.uint8)


result = draw()
if files:
    cv2.imwrite(files[1], result)
    sys.exit()
print("ready", flush=True)
for line in sys.stdin:
    if line.strip() == "frame":
        begin = time.perf_counter()
        result = draw()
        print(time.perf_counter() - begin, flush=True)
    elif line.startswith("save "):
        result[..., 3].tofile(line[5:].strip())
        print("saved", flush=True)
