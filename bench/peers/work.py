# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""What the peers draw: a layer, and the copies of its alpha that make the shadow, as the effect's panel defines them."""

import math

import numpy as np

WIDTH, HEIGHT = 1920, 1080


def full_layer():
    """Discs and bars over the whole frame, with soft edges and a colour ramp. Four pixels of margin stay empty: what
    touches a layer's edge goes on beyond it in this effect, which no peer does."""
    y, x = np.mgrid[0:HEIGHT, 0:WIDTH].astype(np.float32)
    rings = np.hypot((x + 60) % 240 - 120, (y + 60) % 240 - 120)
    edge = np.minimum(np.minimum(x, WIDTH - 1 - x), np.minimum(y, HEIGHT - 1 - y)) - 4
    cover = np.clip(np.minimum(np.maximum(90 - rings, 24 - edge), edge), 0, 1)
    layer = np.empty((HEIGHT, WIDTH, 4), np.uint8)
    layer[..., 0] = 230
    layer[..., 1] = (x * 200 / WIDTH + 40).astype(np.uint8)
    layer[..., 2] = (y * 200 / HEIGHT + 40).astype(np.uint8)
    layer[..., 3] = (cover * 255 + 0.5).astype(np.uint8)
    return layer


def ease_in(i, begin, change, count):
    return begin if i == 0 else begin + change * 2 ** (10 * (i / count - 1))


def samples(count, distance, softness, ease, angle=135, weights=(0.8, 1, 1), opacities=(0.2, 0.5), offset=1):
    """Position in pixels (right, down), reach of the blur in pixels and opacity of each copy, in drawing order."""
    radians = math.radians(angle)
    right, down = math.sin(radians), -math.cos(radians)

    def mix(linear, eased, weight):
        return linear - (linear - eased) * weight * ease

    copies = []
    for i in range(count):
        u, v = i / count, (i + 1) / count
        travelled = mix(u * distance, ease_in(i, 0, distance, count), weights[0]) + offset
        ramp = v * opacities[1] + (1 - v) * opacities[0]
        copies.append({
            "x": right * travelled,
            "y": down * travelled,
            "softness": mix(u * softness, ease_in(i, 0, softness, count), weights[1]),
            "opacity": mix(ramp, abs(ease_in(i, opacities[0], opacities[1] - opacities[0], count)), weights[2]),
        })
    return copies


WORKS = {
    # The effect as it is applied: 36 copies.
    "default": {
        "samples": samples(36, 250, 250, 1),
        "settings": [],
        "skia": "filter 0.6",
        "vips": [],
    },
    # One plain soft shadow: of the two copies the first is not blurred, one pixel away, below the layer.
    "plain": {
        "samples": samples(2, 200, 120, 0),
        "settings": ["quality/samples=2", "easing/ease=0", "style/softness=120", "style/distance=200"],
        "skia": "shadow 1",
        # Where libvips cuts its blur off: as it does by default, and nearer to the effect's bell.
        "vips": ["0.2", "0.05"],
    },
}
