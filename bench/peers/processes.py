# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""The same shadows as whole processes: each starts, reads a PNG, draws, writes a PNG and ends.

Every program encodes as it does by default, libvips at zlib's quickest level; the table has the sizes of the files.
"""

import json
import pathlib
import shutil
import statistics
import subprocess
import sys
import time

import cv2
import numpy as np

from work import HEIGHT, WIDTH, full_layer

HERE = pathlib.Path(__file__).resolve().parent
OURS = "ours"


class Process:
    def __init__(self, command, output):
        self.command = [str(word) for word in command]
        self.output = output
        self.seconds = []

    def run(self):
        begin = time.monotonic()
        done = subprocess.run(self.command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        seconds = time.monotonic() - begin
        if done.returncode:
            sys.exit(f"{' '.join(self.command)} ended with {done.returncode}: {done.stderr.strip()}")
        self.seconds.append(seconds)
        return done.stdout

    def image(self):
        return cv2.imread(str(self.output), cv2.IMREAD_UNCHANGED).astype(np.float32)


def build_vips_peer(folder):
    """The program, or None and the reason that it cannot be built."""
    program = folder / "vips_peer"
    source = HERE / "vips_peer.cpp"
    if shutil.which("c++") is None:
        return None, "there is no C++ compiler"
    if not program.exists() or program.stat().st_mtime < source.stat().st_mtime:
        built = subprocess.run(["c++", "-O2", "-o", program, source, "-l:libvips.so.42"], capture_output=True, text=True)
        if built.returncode:
            return None, "c++ could not link libvips.so.42; install the Debian package libvips-tools"
    return program, ""


def commands(name, work, folder, program, skia, vips):
    """{title: process}, ours first. The frame's rectangle, which all of them draw, is asked of ours."""
    layer = folder / "layer.png"
    settings = [word for setting in work["settings"] for word in ("--set", setting)]
    render = [program, "render", layer, "--renderer", "cpu", *settings]

    def output(title):
        return folder / f"{name}_{title}.png"

    processes = {
        OURS: Process([*render, "-o", output("ours")], output("ours")),
        "ours, `--compression fast`": Process([*render, "--compression", "fast", "-o", output("fast")], output("fast")),
    }
    report = Process([*render, "--json", "-o", output("ours")], None).run()
    rectangle = json.loads(report)["rectangles"]["result"]
    frame = [rectangle[edge] for edge in ("width", "height", "left", "top")]
    description = folder / f"{name}_process.json"
    description.write_text(json.dumps({"width": WIDTH, "height": HEIGHT, "frame": frame, "samples": work["samples"]}))
    opencv = [sys.executable, HERE / "opencv_peer.py", description, "0.6", layer, output("opencv")]
    processes["OpenCV, float, scale 0.6"] = Process(opencv, output("opencv"))
    canvas = ["node", HERE / "skia_peer.mjs", description, *work["skia"].split(), skia, layer, output("skia")]
    processes[f"Skia, 8-bit, {work['skia']}"] = Process(canvas, output("skia"))
    for amplitude in work["vips"] if vips else []:
        sample = work["samples"][-1]
        width, height, left, top = frame
        chain = [vips, layer, output(f"vips_{amplitude}"), left, top, width, height, sample["x"], sample["y"],
                 sample["softness"] * 0.06**0.5, sample["opacity"], amplitude]
        processes[f"libvips, 8-bit, blur cut at {amplitude}"] = Process(chain, output(f"vips_{amplitude}"))
    return processes


def check_images(processes):
    """Mean and greatest difference in alpha from ours, of 255; beyond a mean of 2 it is another image."""
    for process in processes.values():
        process.run()

    def colour(image):
        return image[..., :3] * image[..., 3:] / 255

    ours = processes[OURS].image()
    differences = {}
    for title, process in processes.items():
        image = process.image()
        if image.shape != ours.shape:
            sys.exit(f"{title} writes {image.shape[1]} x {image.shape[0]} pixels of {image.shape[2]} channels.")
        away = np.abs(image[..., 3] - ours[..., 3])
        for what, mean in (("alpha", away.mean()), ("colour", np.abs(colour(image) - colour(ours)).mean())):
            if mean > 2:
                sys.exit(f"{title} draws another image: its {what} is {mean:.2f} of 255 away on average.")
        differences[title] = (float(away.mean()), int(away.max()))
    return differences


def compare_processes(name, work, folder, program, skia, vips, rounds):
    cv2.imwrite(str(folder / "layer.png"), cv2.cvtColor(full_layer(), cv2.COLOR_RGBA2BGRA))
    processes = commands(name, work, folder, program, skia, vips)
    differences = check_images(processes)
    for process in processes.values():
        process.seconds.clear()
    for _ in range(rounds):
        for process in processes.values():
            process.run()

    base = processes[OURS].seconds
    print(f"\n{name}, whole processes, PNG to PNG: {WIDTH} x {HEIGHT} layer, {len(work['samples'])} copies, {rounds} rounds\n")
    print("| | ms, median | least to most | ours is faster by | mean, greatest difference of 255 | file, KiB |")
    print("|---|---|---|---|---|---|")
    rows = {}
    for title, process in processes.items():
        seconds = process.seconds
        # Ratios of the same round, so that a slow minute of the machine cancels.
        ratio = statistics.median(theirs / mine for theirs, mine in zip(seconds, base))
        size = process.output.stat().st_size
        rows[title] = {"seconds": seconds, "ratio": ratio, "bytes": size}
        print(f"| {title} | {1e3 * statistics.median(seconds):.0f} | {1e3 * min(seconds):.0f} to {1e3 * max(seconds):.0f} "
              f"| {ratio:.2f} | {differences[title][0]:.2f}, {differences[title][1]} | {size / 1024:.0f} |")
    return rows
