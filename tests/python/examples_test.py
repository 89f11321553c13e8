# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""The examples run as their first lines say, and make pictures with shadows in them."""

import os
import pathlib
import subprocess
import sys

import av
import numpy
import PIL.Image

SOURCE = pathlib.Path(os.environ["SOURCE_FOLDER"])
EXAMPLES = SOURCE / "examples/python"
TITLE = SOURCE / "assets/layers/title.png"


def run(example, *arguments, cwd):
    return subprocess.run([sys.executable, "-B", EXAMPLES / example, *map(str, arguments)], cwd=cwd, capture_output=True,
                          text=True)  # fmt: skip


def test_a_contact_sheet(tmp_path):
    done = run("contact_sheet.py", TITLE, cwd=tmp_path)
    assert (done.returncode, done.stderr) == (0, "")
    sheet = numpy.asarray(PIL.Image.open(tmp_path / "contact_sheet.png").convert("RGB")).astype(int)
    rows, columns = 4, 3
    height, width = sheet.shape[0] // rows, sheet.shape[1] // columns
    cells = [sheet[y * height : (y + 1) * height, x * width : (x + 1) * width] for y in range(rows) for x in range(columns)]
    assert len({cell.tobytes() for cell in cells}) == 12
    for cell in cells:
        # Something is drawn over grey, and some of it is neither grey nor the layer's white: a shadow.
        flat = cell[:236].reshape(-1, 3)
        assert ((flat == 128).all(1)).any() and (abs(flat - 128).max(1) > 20).sum() > 500


def test_a_title_over_a_clip(tmp_path):
    with av.open(str(tmp_path / "clip.mkv"), "w") as output:
        stream = output.add_stream("ffv1", rate=10)
        stream.width, stream.height, stream.pix_fmt = 161, 91, "bgr0"
        for number in range(20):
            ground = numpy.full((91, 161, 3), 90 + 4 * number, numpy.uint8)
            output.mux(stream.encode(av.VideoFrame.from_ndarray(ground, format="rgb24")))
        output.mux(stream.encode())
    done = run("title_over_clip.py", TITLE, "clip.mkv", "out.mp4", cwd=tmp_path)
    assert (done.returncode, done.stderr) == (0, ""), done.stderr
    assert done.stdout.startswith("out.mp4: 20 frames, drawn by ")
    with av.open(str(tmp_path / "out.mp4")) as clip:
        frames = [frame.to_ndarray(format="rgb24").astype(int) for frame in clip.decode(video=0)]
        assert clip.streams.video[0].average_rate == 10
    assert len(frames) == 20 and frames[0].shape == (90, 160, 3)
    for number, frame in enumerate(frames):
        assert abs(numpy.median(frame[:6]) - (90 + 4 * number)) < 12
    # The shadow turns: to the lower right of the title at first, and not there two seconds later.
    dark = [numpy.mean(frame[60:, 110:]) - numpy.mean(frame[:6]) for frame in (frames[0], frames[19])]
    assert abs(dark[0] - dark[1]) > 3


def test_mistakes_have_one_sentence(tmp_path):
    for arguments in ([], ["a", "b", "c", "d", "e"]):
        for example in ("contact_sheet.py", "title_over_clip.py"):
            done = run(example, *arguments, cwd=tmp_path)
            assert done.returncode == 2 and "Usage: " in done.stderr
    (tmp_path / "text.png").write_text("no image")
    (tmp_path / "preset.json").write_text('{"version": 2, "values": {"style/distnce": 1}}')
    for example, arguments, word in (
        ("contact_sheet.py", ["none.png"], "none.png"),
        ("contact_sheet.py", ["text.png"], "text.png"),
        ("title_over_clip.py", [TITLE, "none.mp4", "out.mp4"], "none.mp4"),
        ("title_over_clip.py", [TITLE, "none.mp4", "out.mp4", "preset.json"], "closest: 'style/distance'"),
    ):
        done = run(example, *arguments, cwd=tmp_path)
        assert done.returncode == 1 and word in done.stderr and done.stderr.count("\n") == 1, done.stderr
    assert not (tmp_path / "out.mp4").exists()
