# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""Threads, processes, memory, and how an interpreter ends."""

import multiprocessing
import os
import signal
import subprocess
import sys
import textwrap
import threading
import time

import numpy
import pytest
from conftest import disc8, disc_float

import umbrant

# Long enough for the slowest machine: only a process that hangs takes it.
HANGS = 1800


def drawn(distance, renderer="cpu"):
    """What a process draws with an effect of its own."""
    effect = umbrant.Effect(renderer=renderer)
    effect.update({"style/distance": distance, "style/softness": 12})
    picture = effect.render(disc8())
    return picture.array, picture.place


def expected_of(distances):
    return {distance: drawn(distance)[0].tobytes() for distance in distances}


def test_eight_threads_draw_at_once(effect):
    """One effect, a layer and values of each thread, images and targets."""
    expected = expected_of(range(10, 90, 10))
    start, wrong = threading.Barrier(8), []

    def work(distance):
        values = effect.current_values()
        values.update({"style/distance": distance, "style/softness": 12, "style/color": "black"})
        layer = disc8()
        start.wait()
        for _ in range(12):
            if effect.render(layer, values=values).array.tobytes() != expected[distance]:
                wrong.append(distance)
            place = effect.place(120, 90, values=values)
            target = numpy.empty((place.height, place.width, 4), numpy.uint8)
            effect.render_into(layer, target, values=values)
            if target.tobytes() != expected[distance]:
                wrong.append(-distance)

    threads = [threading.Thread(target=work, args=(distance,)) for distance in expected]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not wrong


def test_values_change_while_threads_draw_with_them(effect):
    """A frame has the values at the time of its call, never half of a change."""
    values = effect.current_values()
    values.update({"style/softness": 12, "style/color": "black"})
    expected = expected_of((20, 60))
    done, wrong = threading.Event(), []

    def change():
        while not done.is_set():
            for distance in expected:
                values["style/distance"] = distance

    values["style/distance"] = 20
    changing = threading.Thread(target=change)
    changing.start()
    try:
        for _ in range(40):
            if effect.render(disc8(), values=values).array.tobytes() not in expected.values():
                wrong.append(values["style/distance"])
    finally:
        done.set()
        changing.join()
    assert not wrong


def test_other_threads_run_while_the_effect_draws(effect):
    """The interpreter switches threads only where the lock is released: a thread that counts runs when a frame does so."""
    counts, done = [0], threading.Event()

    def count():
        while not done.is_set():
            counts[0] += 1
            time.sleep(0)

    layer = disc_float(300, 200)
    interval = sys.getswitchinterval()
    sys.setswitchinterval(1e6)
    counting = threading.Thread(target=count)
    counting.start()
    try:
        before, frames = counts[0], 0
        # On a busy machine the other thread may miss a frame.
        while counts[0] == before and frames < 2000:
            effect.render(layer)
            frames += 1
        assert counts[0] > before
    finally:
        done.set()
        sys.setswitchinterval(interval)
        counting.join()


@pytest.mark.parametrize("method", ["fork", "spawn", "forkserver"])
@pytest.mark.parametrize("first", [False, True], ids=["before the parent draws", "after the parent drew"])
def test_multiprocessing(method, first):
    expected = expected_of((10, 40, 70)) if first else None
    with multiprocessing.get_context(method).Pool(3) as pool:
        results = pool.map_async(drawn, [10, 40, 70]).get(HANGS)
    expected = expected or expected_of((10, 40, 70))
    assert [array.tobytes() for array, _ in results] == list(expected.values())
    assert all((place.height, place.width) == array.shape[:2] for array, place in results)


def test_a_forked_child_draws_with_the_effect_of_its_parent(effect):
    expected = effect.render(disc8()).array.tobytes()
    drawing, stop = threading.Event(), threading.Event()

    def draw():
        while not stop.is_set():
            effect.render(disc8())
            drawing.set()

    other = threading.Thread(target=draw)
    other.start()
    drawing.wait()
    statuses = []
    for _ in range(5):
        child = os.fork()
        if child == 0:
            signal.alarm(HANGS)
            os._exit(0 if effect.render(disc8()).array.tobytes() == expected else 1)
        statuses.append(os.waitpid(child, 0)[1])
    stop.set()
    other.join()
    assert statuses == [0] * 5


def test_opengl_in_a_forked_child_fails_with_a_sentence():
    code = """
        import os, sys, numpy, umbrant
        effect = umbrant.Effect(renderer="gl")
        layer = numpy.zeros((8, 8, 4), numpy.uint8)
        effect.render(layer)
        child = os.fork()
        if child == 0:
            for call in (lambda: effect.render(layer), lambda: umbrant.Effect(renderer="gl")):
                try:
                    call()
                    os._exit(1)
                except umbrant.EffectFailedError as error:
                    if error.code != 1 or "forked" not in str(error):
                        os._exit(2)
            umbrant.Effect(renderer="cpu").render(layer)
            os._exit(0)
        sys.exit(os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]))
    """
    assert run(code).returncode == 0


def resident():
    with open("/proc/self/statm") as file:
        return int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")


@pytest.mark.parametrize("way", ["pictures", "targets", "copies", "values", "failures"])
def test_memory_is_flat_over_ten_thousand_frames(effect, way):
    """What one frame leaked, if only its array of 5 kB, would be 50 MB."""
    layer = disc8(16, 12)
    target, texture = layer.copy(), numpy.asfortranarray(disc8(5, 5))
    wide = numpy.asfortranarray(layer)

    def frame():
        if way == "pictures":
            assert effect.render(layer, texture=texture).array[0, 0, 0] >= 0
        elif way == "targets":
            effect.render_into(layer, target, canvas="layer")
        elif way == "copies":
            effect.render_into(wide, wide, canvas="layer")
        elif way == "values":
            values = effect.current_values()
            values["style/distance"] = 10
            effect.render(layer, values=values.copy())
        else:
            with pytest.raises(umbrant.Error):
                effect.render_into(layer, target[1:], canvas="layer")

    for _ in range(1000):
        frame()
    before = resident()
    for _ in range(10000):
        frame()
    assert resident() - before < 8 << 20


def run(code, *options):
    return subprocess.run([sys.executable, "-B", *options, "-c", textwrap.dedent(code)], capture_output=True, text=True,
                          timeout=HANGS)  # fmt: skip


@pytest.mark.parametrize("renderer", ["cpu", "gl"])
@pytest.mark.parametrize(
    "end",
    [
        "pass",
        "raise SystemExit(0)",
        "import builtins; builtins.kept = [effect, picture, array]",
        "effect.itself = [effect]; del effect",
        "import atexit; atexit.register(effect.render, layer)",
        "import gc; del effect, picture; gc.collect(); assert array.sum() >= 0",
    ],
)
def test_an_interpreter_ends(renderer, end):
    done = run(f"""
        import numpy, umbrant
        layer = numpy.zeros((40, 40, 4), numpy.uint8)
        effect = umbrant.Effect(renderer="{renderer}")
        picture = effect.render(layer)
        array = picture.array
        {end}
    """)
    assert (done.returncode, done.stderr) == (0, "")


@pytest.mark.parametrize("renderer", ["cpu", "gl"])
def test_an_interpreter_ends_while_threads_draw(renderer):
    """Threads that nobody waits for draw, ask and set to the end."""
    for _ in range(5):
        done = run(f"""
            import threading, numpy, umbrant
            effect = umbrant.Effect(renderer="{renderer}")
            effect.update({{"style/distance": 20, "style/softness": 5}})
            started = threading.Barrier(9)
            def draw(number):
                layer = numpy.zeros((30 + number, 40, 4), numpy.uint8)
                started.wait()
                while True:
                    effect.render(layer).array
                    effect["style/distance"] = number
                    umbrant.Effect(renderer="{renderer}").place(4, 4)
            for number in range(8):
                threading.Thread(target=draw, args=(number,), daemon=True).start()
            started.wait()
            for _ in range(3): effect.render(numpy.zeros((8, 8, 4), numpy.uint8))
        """)
        assert (done.returncode, done.stderr) == (0, "")


IN_TWO_INTERPRETERS = """
    import _xxsubinterpreters as interpreters
    code = '''if True:
        import umbrant
        effect = umbrant.Effect(renderer="cpu")
        picture = effect.render(memoryview(bytes(256)).cast("B", (8, 8, 4)), seconds=1)
        assert memoryview(picture).shape[2] == 4 and picture.place.width == picture.width
        try: effect["style/distnce"]
        except umbrant.UnknownParameterError: print("drawn", flush=True)
    '''
    def main():
        exec(code)
    def other():
        inner = interpreters.create()
        try: interpreters.run_string(inner, code)
        except interpreters.RunFailedError as error: print(error)
        interpreters.destroy(inner)
"""
REFUSED = ("<class 'ImportError'>: umbrant cannot be imported in a sub-interpreter first; import it in the main "
           "interpreter before")  # fmt: skip


@pytest.mark.parametrize(
    "steps, said",
    [
        (["main", "other", "main", "other"], ["drawn"] * 4),
        (["other", "main", "other"], [REFUSED, "drawn", "drawn"]),
    ],
    ids=["after the main interpreter", "before the main interpreter"],
)
def test_a_subinterpreter(steps, said):
    """Draws once the main interpreter has the package, and ends. Without numpy, which only one interpreter of a process can
    import."""
    done = run(textwrap.dedent(IN_TWO_INTERPRETERS) + "".join(f"{step}()\n" for step in steps))
    assert (done.returncode, done.stdout.splitlines(), done.stderr) == (0, said, "")
