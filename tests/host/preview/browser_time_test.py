# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""Time in the preview's page, and what leaves it: keys by mouse and keyboard, playing, undo, presets, files. Everything
is to the byte what `umbrant render` writes."""

import json
import os
import pathlib
import shlex
import shutil
import subprocess
import sys
import unittest
import zipfile

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import browser  # noqa: E402
from browser_test import InTheBrowser, key, row  # noqa: E402

LAYERS = pathlib.Path(os.environ["LAYERS"])
KEYS = {
    "style/angle": [{"frame": 1, "value": 20, "out": "ease"}, {"frame": 9, "value": 200, "in": "ease"}],
    "style/distance": [{"frame": 1, "value": 10}, {"frame": 9, "value": 30}],
}


class InTime(InTheBrowser):
    def setUp(self):
        super().setUp()
        shutil.copy(LAYERS / "card.png", self.folder)
        (self.folder / "moving.json").write_text(json.dumps({"version": 2, "values": {}, "keyframes": KEYS}))

    def render(self, *arguments):
        done = subprocess.run([browser.UMBRANT, "render", *map(str, arguments), "--renderer", "cpu", "--quiet"],
                              cwd=self.folder, capture_output=True, text=True)  # fmt: skip
        self.assertEqual(done.returncode, 0, done.stderr)

    def shown(self, page):
        return page.run("return window.umbrantState().shown")

    def save_preset(self, page):
        saved = page.downloads / "card.json"
        saved.unlink(missing_ok=True)
        page.find("#save-preset").click()
        return page.downloaded("card.json")

    def check_frame_of_preset(self, page, frame, what):
        """The page's frame is what `umbrant render` makes of the preset that it saves."""
        page.settle()
        preset = self.save_preset(page)
        self.render("card.png", "-o", "expected.png", "--preset", preset, "--frames", frame)
        browser.write_png(self.folder / "shown.png", *page.pixels())
        compared = subprocess.run([browser.UMBRANT, "compare", "--straight", "--json", "shown.png", "expected.png"],
                                  cwd=self.folder, capture_output=True, text=True)  # fmt: skip
        self.assertEqual(json.loads(compared.stdout)["worst"], 0, what)
        return json.loads(preset.read_text())

    def type(self, page, selector, text):
        # Emptying the field would be a change of its own.
        from selenium.webdriver.common.keys import Keys

        page.find(selector).send_keys(Keys.CONTROL, "a", Keys.CONTROL, f"{text}\n")

    def go_to(self, page, frame):
        self.type(page, "#frame-number", frame)
        page.settle()


class Keys(InTime):
    def test_by_mouse_and_keyboard(self):
        from selenium.webdriver.common.action_chains import ActionChains
        from selenium.webdriver.support.select import Select

        page = self.open("card.png", "--renderer", "cpu", "--set", "style/distance=25")
        page.settle()
        page.find("#timeline-shown").click()
        self.type(page, "#frames", "1-9")
        self.go_to(page, 1)
        page.find(row("style/angle", ".key-here")).click()
        self.go_to(page, 9)
        self.type(page, row("style/angle", "input[type=text]"), "200")
        preset = self.check_frame_of_preset(page, 9, "a key by a value")
        self.assertEqual([each["frame"] for each in preset["keyframes"]["style/angle"]], [1, 9])
        self.go_to(page, 5)
        self.check_frame_of_preset(page, 5, "between two keys")

        # The second key, selected by the mouse.
        page.driver.find_elements("css selector", "#lanes .key")[1].click()
        Select(page.find("#key-in")).select_by_visible_text("Ease")
        preset = self.check_frame_of_preset(page, 5, "an ease")
        self.assertEqual(preset["keyframes"]["style/angle"][1]["in"], "ease")
        Select(page.find("#key-in")).select_by_visible_text("Curve")
        self.type(page, "#key-in-speed", "90")
        self.type(page, "#key-in-influence", "60")
        preset = self.check_frame_of_preset(page, 5, "a speed")
        self.assertEqual(preset["keyframes"]["style/angle"][1]["in"], {"speed": 90, "influence": 60})

        width = page.run("return document.getElementById('ruler').clientWidth")
        second = page.driver.find_elements("css selector", "#lanes .key")[1]
        ActionChains(page.driver).drag_and_drop_by_offset(second, -round(width / 4), 0).perform()
        preset = self.check_frame_of_preset(page, 5, "a key that was dragged")
        self.assertEqual(preset["keyframes"]["style/angle"][1]["frame"], 7)
        key(page, "#lanes .key[aria-pressed=true]", "ARROW_LEFT")
        preset = self.check_frame_of_preset(page, 5, "a key that was moved by the keyboard")
        self.assertEqual(preset["keyframes"]["style/angle"][1]["frame"], 6)
        self.check_undo(page, preset["keyframes"])

        key(page, "#lanes .key[aria-pressed=true]", "DELETE")
        preset = self.check_frame_of_preset(page, 5, "a key that was removed")
        self.assertEqual(len(preset["keyframes"]["style/angle"]), 1)
        self.assertEqual(page.errors(), [])

    def check_undo(self, page, keys):
        for expected in (7, 9):
            key(page, "#stage", "CONTROL", "z")
            page.settle()
            self.assertEqual(self.shown(page)["keyframes"]["style/angle"][1]["frame"], expected)
        page.find("#redo").click()
        page.find("#redo").click()
        preset = self.check_frame_of_preset(page, 5, "after undo and redo")
        self.assertEqual(preset["keyframes"], keys)
        page.run("location.reload()")
        page.wait("return Boolean(window.umbrantFrame)")
        preset = self.check_frame_of_preset(page, 5, "after a reload")
        self.assertEqual(preset["keyframes"], keys)
        page.driver.find_elements("css selector", "#lanes .key")[1].click()

    def test_ruler_and_steps(self):
        from selenium.webdriver.common.action_chains import ActionChains

        page = self.open("card.png", "--preset", "moving.json", "--renderer", "cpu")
        page.settle()
        self.assertEqual(page.run("return document.getElementById('frames').value"), "1-9")
        ActionChains(page.driver).move_to_element(page.find("#ruler")).click_and_hold().move_by_offset(40, 0).move_by_offset(
            -40, 0).release().perform()  # fmt: skip
        self.check_frame_of_preset(page, 5, "the ruler by the mouse")
        key(page, "#ruler", "ARROW_RIGHT", "ARROW_RIGHT")
        self.check_frame_of_preset(page, 7, "the ruler by the keyboard")
        key(page, "#stage", ">")
        self.check_frame_of_preset(page, 9, "the next key")
        key(page, "#stage", ".")
        self.check_frame_of_preset(page, 1, "around the end")
        self.type(page, "#frames", "many")
        page.wait("return !document.getElementById('message').hidden")
        self.assertIn("many", page.find("#sentence").text)
        self.assertEqual(page.run("return document.getElementById('frames').value"), "1-9")
        field = row("style/angle", "input[type=text]")
        self.type(page, field, "steep")
        page.wait("return document.querySelector(arguments[0]).ariaInvalid === 'true'", field)
        self.assertIn("steep", page.find("#sentence").text)
        self.type(page, field, "33")
        preset = self.check_frame_of_preset(page, 1, "after a value that was refused")
        self.assertEqual(preset["keyframes"]["style/angle"][0]["value"], 33)


class Sequences(InTime):
    def test_a_sequence(self):
        for frame, layer in ((3, "card.png"), (4, "card.png")):
            shutil.copy(LAYERS / layer, self.folder / f"in.{frame:04}.png")
        page = self.open("in.####.png", "--renderer", "cpu", "--frames", "3-5")
        page.settle()
        self.assertTrue(page.find("#timeline").is_displayed())
        self.go_to(page, 4)
        browser.write_png(self.folder / "shown.png", *page.pixels())
        self.render("in.####.png", "-o", "out.####.png", "--frames", "4")
        compared = subprocess.run([browser.UMBRANT, "compare", "--straight", "--json", "shown.png", "out.0004.png"],
                                  cwd=self.folder, capture_output=True, text=True)  # fmt: skip
        self.assertEqual(json.loads(compared.stdout)["worst"], 0)
        page.find("#copy").click()
        self.assertEqual(page.wait("return window.umbrantCommand"), "umbrant render 'in.####.png' -o 'in-out.####.png' "
                         "--frames=3-5 --rate 24 --renderer cpu")  # fmt: skip
        self.type(page, "#frame-number", 5)
        page.wait("return !document.getElementById('message').hidden")
        self.assertIn("in.0005.png", page.find("#sentence").text)
        page.find("#render").click()
        page.find("#render-dialog .start").click()
        page.wait("return document.querySelector('#render-dialog .problem').textContent.includes('in.0005.png')")
        page.run("document.getElementById('render-dialog').close()")
        self.go_to(page, 3)
        self.assertFalse(page.find("#message").is_displayed())


class Tabs(InTime):
    def test_two_tabs_have_their_own_keys(self):
        page = self.open("card.png", "--preset", "moving.json", "--renderer", "cpu")
        page.settle()
        self.go_to(page, 9)
        first = page.driver.current_window_handle
        page.driver.switch_to.new_window("tab")
        page.driver.get(page.address)
        page.wait("return Boolean(window.umbrantFrame)")
        page.settle()
        self.assertEqual(self.shown(page)["index"], 0)
        key(page, "#ruler", "HOME")
        self.type(page, row("style/angle", "input[type=text]"), "90")
        page.settle()
        self.assertEqual(self.shown(page)["keyframes"]["style/angle"][0]["value"], "90")
        page.driver.switch_to.window(first)
        preset = self.check_frame_of_preset(page, 9, "the first tab, as before")
        self.assertEqual(preset["keyframes"]["style/angle"][0]["value"], 20)


class Playing(InTime):
    def test_a_loop_counts_what_it_drops_and_keeps_to_its_memory(self):
        page = self.open("card.png", "--preset", "moving.json", "--renderer", "cpu")
        page.settle()
        key(page, "#stage", " ")
        state = page.wait("const { player } = umbrantState(); return player.rounds > 1 && player.kept === 9 ? player : null")
        self.assertGreater(state["shown"], 3)
        self.assertLessEqual(state["bytes"], state["mostBytes"])
        self.assertRegex(page.find("#played").text, r"^\d+ dropped · 9 of 9 kept$")
        self.type(page, row("style/softness", "input[type=text]"), "40")
        page.wait("const { player, shown } = umbrantState(); return player.kept === 9 && shown.values['style/softness']")
        page.find("#play").click()
        frame = page.run("return Number(document.getElementById('frame-number').value)")
        self.check_frame_of_preset(page, frame, "where it was stopped")

    def test_a_server_that_ends_while_it_plays(self):
        page = self.open("card.png", "--preset", "moving.json", "--renderer", "cpu")
        page.settle()
        key(page, "#stage", " ")
        page.wait("return umbrantState().player.shown > 0")
        page.preview.terminate()
        # Whichever notices it first: the stream of events or the request of a frame. The second may replace the first's.
        page.wait(
            "return !document.getElementById('message').hidden"
            " && /connection|cannot be reached/.test(document.getElementById('sentence').textContent)"
        )


class Leaving(InTime):
    def test_files(self):
        page = self.open("card.png", "--preset", "moving.json", "--renderer", "cpu")
        page.settle()
        page.find("#render").click()
        page.find("#render-dialog .start").click()
        archive = page.downloaded("card-out.zip")
        page.wait("return document.querySelector('#render-dialog .task-text').textContent.includes('9 frames')")
        page.run("document.getElementById('render-dialog').close()")
        shutil.copy(self.save_preset(page), self.folder)
        page.find("#copy").click()
        command = shlex.split(page.wait("return window.umbrantCommand"))
        subprocess.run([browser.UMBRANT, *command[1:], "--quiet"], cwd=self.folder, capture_output=True, check=True)
        with zipfile.ZipFile(archive) as frames:
            self.assertIsNone(frames.testzip())
            self.assertEqual(frames.namelist(), [f"card-out.{frame:04}.png" for frame in range(1, 10)])
            for name in frames.namelist():
                self.assertEqual(frames.read(name), (self.folder / name).read_bytes(), name)
        page.find("#render").click()
        page.run("""const select = document.getElementById('render-which');
            select.value = 'one'; document.getElementById('render-format').value = 'exr';""")
        page.find("#render-dialog .start").click()
        one = page.downloaded("card-out.0001.exr")
        self.render("card.png", "-o", "one.exr", "--preset", "moving.json", "--frames", "1", "--rate", "24")
        self.assertEqual(one.read_bytes(), (self.folder / "one.exr").read_bytes())

    def test_rendering_that_is_cancelled(self):
        page = self.open("card.png", "--preset", "moving.json", "--renderer", "cpu")
        page.settle()
        self.type(page, "#frames", "1-5000")
        page.wait("return umbrantState().shown.frames === '1-5000'")
        page.settle()
        page.find("#render").click()
        page.find("#render-dialog .start").click()
        page.wait("return document.querySelector('#render-dialog .task-text').textContent.startsWith('1 of 5000')")
        page.find("#render-dialog .cancel").click()
        page.wait("return document.querySelector('#render-dialog .task-text').textContent.startsWith('Cancelled')")
        page.find("#render-dialog .cancel").click()
        self.assertFalse((page.downloads / "card-out.zip").exists())
        self.go_to(page, 5)
        self.check_frame_of_preset(page, 5, "after the rendering")

    def test_presets(self):
        (self.folder / "wrong.json").write_text('{"version": 1, "values": {"style/nothing": 1}}')
        page = self.open("card.png", "--renderer", "cpu")
        page.settle()
        page.find("#file").send_keys(str(self.folder / "wrong.json"))
        page.wait("return !document.getElementById('message').hidden")
        self.assertIn("style/nothing", page.find("#sentence").text)
        page.find("#file").send_keys(str(self.folder / "moving.json"))
        page.wait("return !document.getElementById('timeline').hidden")
        self.go_to(page, 4)
        self.check_frame_of_preset(page, 4, "a preset that was chosen")
        page.find("#undo").click()
        page.settle()
        self.assertEqual(self.shown(page)["keyframes"], {})

    def test_presets_by_name(self):
        page = self.open("card.png", "--set", "style/distance=33", "--renderer", "cpu")
        page.settle()
        page.wait("return !document.getElementById('presets').disabled")
        choose = """const list = document.getElementById('presets');
            list.value = arguments[0]; list.dispatchEvent(new Event('change'));"""
        page.run(choose, "neon")
        page.wait("return umbrantState().shown.values['style/color'] === '#ff2fa0'")
        self.assertNotIn("33", self.shown(page)["values"].get("style/distance", ""))
        self.assertEqual(page.run("return document.getElementById('presets').value"), "", "it can be chosen again")
        self.check_frame_of_preset(page, 1, "a preset by its name")
        page.find("#undo").click()
        page.settle()
        self.assertEqual(self.shown(page)["values"], {"style/distance": "33"}, "one step of undo")
        self.assertEqual(page.errors(), [])

    def test_a_preset_that_changes_on_disk(self):
        page = self.open("card.png", "--preset", "moving.json", "--renderer", "cpu")
        page.settle()
        (self.folder / "moving.json").write_text('{"version": 1, "values": {"style/distance": 60}}')
        page.wait("return !document.getElementById('notice').hidden")
        self.assertIn("moving.json", page.find("#notice").text)
        page.find("#load-again").click()
        page.wait("return umbrantState().shown.values['style/distance'] === '60'")
        self.check_frame_of_preset(page, 1, "the preset as it is now")

    def test_a_contact_sheet(self):
        page = self.open("card.png", "--renderer", "cpu")
        page.settle()
        page.run("""document.getElementById('backdrop').value = 'color';
            document.getElementById('backdrop').dispatchEvent(new Event('change'));""")
        page.find("#contact-sheet").click()
        page.run("""for (const [id, value] of [['across', 'style/distance'], ['down', 'style/softness']])
            document.getElementById(`sheet-${id}`).value = value;""")
        page.run("document.getElementById('sheet-down-values').value = '0 60'")
        self.type(page, "#sheet-across-values", "far")
        page.wait("return document.querySelector('#sheet-dialog .problem').textContent.includes('far')")
        self.assertFalse((page.downloads / "card-sheet.png").exists())
        self.type(page, "#sheet-across-values", "10 40 80")
        sheet = page.downloaded("card-sheet.png")
        self.check_cell(page, sheet)

    def check_cell(self, page, sheet):
        """The cell of the second column and the second row is the render over the backdrop."""
        cells = page.run("return window.umbrantSheet")
        left, top, right, bottom = cells["rect"]
        n = cells["downsample"]
        self.render("card.png", "-o", "cell.png", "--set", "style/distance=40", "--set", "style/softness=60", "--canvas",
                    f"{left},{top},{right},{bottom}", "--downsample", n)  # fmt: skip
        over = page.driver.execute_async_script("""
            const [sheet, cell, place, done] = arguments;
            const load = async (text) => createImageBitmap(new Blob([Uint8Array.from(atob(text), (c) => c.charCodeAt(0))]));
            (async () => {
              const picture = await load(cell);
              const [one, other] = [0, 1].map(() => Object.assign(document.createElement("canvas"),
                { width: picture.width, height: picture.height }).getContext("2d"));
              one.drawImage(await load(sheet), -place[0], -place[1]);
              other.fillStyle = "#808080";
              other.fillRect(0, 0, picture.width, picture.height);
              other.drawImage(picture, 0, 0);
              const [a, b] = [one, other].map((each) => each.getImageData(0, 0, picture.width, picture.height).data);
              let worst = 0;
              a.forEach((value, i) => { worst = Math.max(worst, Math.abs(value - b[i])); });
              done([worst, new Set(b).size]);
            })();""", *[browser.base64.b64encode(file.read_bytes()).decode() for file in (sheet, self.folder / "cell.png")],
            cells["places"][4])  # fmt: skip
        self.assertLessEqual(over[0], 1)
        self.assertGreater(over[1], 20, "the cell has a gradient")


if __name__ == "__main__":
    unittest.main()
