#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""Puts an image with an animated shadow over a clip.

Usage: title_over_clip.py IMAGE CLIP OUTPUT [PRESET]

Each frame of CLIP is read with PyAV (Debian: python3-av), the image with its shadow at that time is composited over it, and
the result is written to OUTPUT, such as out.mp4. PRESET is a preset with keyframes; without one the shadow turns once
around the image in 4 seconds. Needs Pillow for the image.
"""

import json
import sys

import av
import numpy
import PIL.Image

import umbrant

BITS_PER_SECOND = 8_000_000
TURNING = json.dumps(
    {
        "version": 2,
        "values": {"style/distance": 260, "style/softness": 70, "opacity/opacity-start": 35, "opacity/opacity-end": 0},
        "keyframes": {"style/angle": [{"seconds": 0, "value": 135}, {"seconds": 4, "value": 495}]},
    }
)


def title_layer(file, width, height):
    """The image in the middle of a transparent frame of the clip's size, at most four fifths of it."""
    image = PIL.Image.open(file).convert("RGBA")
    image.thumbnail((width * 4 // 5, height * 4 // 5), PIL.Image.Resampling.LANCZOS)
    frame = PIL.Image.new("RGBA", (width, height))
    frame.paste(image, ((width - image.width) // 2, (height - image.height) // 2))
    return numpy.asarray(frame)


def over(picture, ground):
    """Straight alpha over an opaque ground, both 8 bits."""
    alpha = picture[..., 3:].astype(numpy.uint32)
    return ((picture[..., :3] * alpha + ground * (255 - alpha) + 127) // 255).astype(numpy.uint8)


def main():
    if len(sys.argv) not in (4, 5):
        print(__doc__, file=sys.stderr)
        return 2
    image, source, target = sys.argv[1:4]
    effect = umbrant.Effect()
    if len(sys.argv) == 5:
        effect.load_preset(sys.argv[4])
    else:
        effect.apply_preset(TURNING)

    with av.open(source) as clip, av.open(target, "w") as output:
        video = clip.streams.video[0]
        rate = video.average_rate
        # Most encoders need even sides.
        width, height = video.width // 2 * 2, video.height // 2 * 2
        stream = output.add_stream("mpeg4", rate=rate)
        stream.width, stream.height, stream.pix_fmt, stream.bit_rate = width, height, "yuv420p", BITS_PER_SECOND
        stream.codec_context.bit_rate_tolerance = BITS_PER_SECOND
        layer = title_layer(image, width, height)
        frame_of_all = numpy.empty_like(layer)
        count = 0
        for frame in clip.decode(video):
            ground = frame.to_ndarray(format="rgb24")[:height, :width]
            effect.render_into(layer, frame_of_all, canvas="layer", seconds=count / rate, rate=rate)
            drawn = av.VideoFrame.from_ndarray(over(frame_of_all, ground), format="rgb24")
            output.mux(stream.encode(drawn))
            count += 1
        output.mux(stream.encode())
    print(f"{target}: {count} frames, {effect.renderer_text}")
    return 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    except (umbrant.Error, OSError, av.AVError) as error:
        sys.exit(f"title_over_clip.py: {error}")
