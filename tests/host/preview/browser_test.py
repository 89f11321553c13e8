# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""The preview's page in a real browser: what it shows is to the byte what `umbrant render` writes, however the settings
were made."""

import json
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import browser  # noqa: E402

LAYERS = pathlib.Path(os.environ["LAYERS"])
MODULES = pathlib.Path(os.environ["TEST_MODULES"])


def key(browser_, selector, *keys):
    from selenium.webdriver.common.keys import Keys

    browser_.find(selector).send_keys(*[getattr(Keys, name, name) for name in keys])


def row(path, control):
    return f'.row[data-key="{path}"] {control}'


class InTheBrowser(unittest.TestCase):
    def setUp(self):
        if reason := browser.missing():
            self.skipTest(reason)
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)

    def open(self, *arguments, environment=None):
        page = browser.Browser(self.folder, *arguments, environment=environment)
        self.addCleanup(page.close)
        return page

    def check_frame(self, page, what):
        """The page's frame is what the command that it copies writes."""
        page.settle()
        page.run("window.umbrantCommand = null")
        page.find("#copy").click()
        command = shlex.split(page.wait("return window.umbrantCommand"))
        self.assertEqual(command[:2], ["umbrant", "render"])
        done = subprocess.run([browser.UMBRANT, *command[1:]], cwd=self.folder, capture_output=True, text=True)
        self.assertEqual(done.returncode, 0, f"{what}: {done.stderr}")
        rendered = self.folder / done.stdout.strip()
        shown = self.folder / "shown.png"
        browser.write_png(shown, *page.pixels())
        compared = subprocess.run([browser.UMBRANT, "compare", "--straight", "--json", shown, rendered],
                                  capture_output=True, text=True)  # fmt: skip
        self.assertEqual(json.loads(compared.stdout)["worst"], 0, what)
        rendered.unlink()
        return command


class Settings(InTheBrowser):
    def test_by_mouse_and_keyboard(self):
        from selenium.webdriver.common.action_chains import ActionChains
        from selenium.webdriver.support.select import Select

        shutil.copy(LAYERS / "card.png", self.folder / "a card's.png")
        page = self.open("a card's.png", "--renderer", "cpu")
        self.check_frame(page, "the defaults")

        said = json.loads(subprocess.check_output([browser.UMBRANT, "params", "--json"], cwd=self.folder))
        for path in ("style/softness", "texture/layer", "about-support/gpu-spec"):
            description = next(each["description"] for each in said if each["path"] == path)
            self.assertEqual(page.find(f'.row[data-key="{path}"]').get_attribute("title"), description)
        field = page.find(row("style/distance", "input[type=text]"))
        self.assertTrue(field.get_attribute("aria-description").startswith("The length of the shadow"))

        field = page.find(row("style/distance", "input[type=text]"))
        field.clear()
        field.send_keys("60\n")
        self.assertIn("style/distance=60", self.check_frame(page, "a number by the keyboard"))

        key(page, row("style/softness", "input[type=range]"), "ARROW_LEFT", "ARROW_LEFT", "HOME", "ARROW_RIGHT", "PAGE_UP")
        self.check_frame(page, "a slider by the keyboard")
        key(page, row("style/softness", "input[type=text]"), "ARROW_UP", "ARROW_UP")
        self.check_frame(page, "steps of a field")

        slider = page.find(row("opacity/opacity-end", "input[type=range]"))
        ActionChains(page.driver).drag_and_drop_by_offset(slider, 25, 0).perform()
        self.assertTrue(any(word.startswith("opacity/opacity-end=") for word in self.check_frame(page, "a slider by the mouse")))

        key(page, row("style/angle", ".dial"), "ARROW_UP", "PAGE_UP")
        self.assertIn("style/angle=151", self.check_frame(page, "the dial by the keyboard"))
        ActionChains(page.driver).move_to_element(page.find(row("style/angle", ".dial"))).click_and_hold().move_by_offset(
            20, 0).release().perform()  # fmt: skip
        turned = [word for word in self.check_frame(page, "the dial by the mouse") if word.startswith("style/angle=")]
        self.assertAlmostEqual(float(turned[0].split("=")[1]), 90, delta=5)

        handle = page.find(".handle:not([hidden])")
        ActionChains(page.driver).drag_and_drop_by_offset(handle, -40, 60).perform()
        self.check_frame(page, "the handle by the mouse")
        key(page, ".handle:not([hidden])", "ARROW_LEFT", "ARROW_DOWN")
        self.check_frame(page, "the handle by the keyboard")

        color = page.find(row("style/color", "input[type=text]"))
        color.clear()
        color.send_keys("#203060\n")
        self.assertIn("style/color=#203060", self.check_frame(page, "a colour"))

        Select(page.find(row("style/shadow-type", "select"))).select_by_visible_text("Inner")
        self.assertIn("style/shadow-type=inner", self.check_frame(page, "a popup"))
        key(page, row("style/shadow-type", "select"), "ARROW_DOWN")
        self.assertIn("style/shadow-type=radial", self.check_frame(page, "a popup by the keyboard"))
        page.wait("return !document.querySelector(arguments[0]).hidden", '.row[data-key="style/origin"]')
        self.assertTrue(page.run("return document.querySelector(arguments[0]).hidden", '.row[data-key="style/angle"]'))
        point = page.find(".handle:not([hidden])")
        ActionChains(page.driver).drag_and_drop_by_offset(point, 90, 50).perform()
        self.check_frame(page, "a point by the mouse")

        self.check_more_settings(page)
        page.find(row("style/color", ".reset")).click()
        self.assertNotIn("style/color=#203060", self.check_frame(page, "a row reset"))
        page.run("location.reload()")
        page.wait("return Boolean(window.umbrantFrame)")
        self.assertIn("style/shadow-type=radial", self.check_frame(page, "after a reload"))
        page.find("#reset-all").click()
        self.assertFalse(any(word == "--set" for word in self.check_frame(page, "all reset")))
        self.assertEqual(page.errors(), [])


    def check_more_settings(self, page):
        """Points, angles and colours in their other ways, sliders at their ends, a texture."""
        from selenium.webdriver.support.select import Select

        key(page, ".handle:not([hidden])", "ARROW_RIGHT", "ARROW_UP")
        self.check_frame(page, "a point by the keyboard")
        for place, text in enumerate(("120.5", "33")):
            field = page.driver.find_elements("css selector", row("style/origin", "input[type=text]"))[place]
            field.clear()
            field.send_keys(f"{text}\n")
        self.assertIn("style/origin=120.5,33", self.check_frame(page, "a point in its fields"))
        page.run("""const well = document.querySelector(arguments[0]);
            well.value = '#a04080';
            for (const kind of ['input', 'change']) well.dispatchEvent(new Event(kind));""",
                 row("style/color", "input[type=color]"))  # fmt: skip
        self.assertIn("style/color=#a04080", self.check_frame(page, "a colour's well"))
        key(page, row("opacity/opacity-master", "input[type=range]"), "HOME", "ARROW_RIGHT")
        self.check_frame(page, "near the end of a slider")
        for twirl in page.driver.find_elements("css selector", ".twirl[aria-expanded=false]"):
            page.run("arguments[0].click()", twirl)
        Select(page.find(row("texture/blend-mode", "select"))).select_by_visible_text("Normal")
        page.find(row("texture/layer", "button")).click()
        page.find("#file").send_keys(str(LAYERS / "dusk.jpg"))
        page.wait("return document.querySelector(arguments[0]).textContent === 'dusk.jpg'", row("texture/layer", ".file"))
        shutil.copy(LAYERS / "dusk.jpg", self.folder)
        self.assertIn("dusk.jpg", self.check_frame(page, "a texture"))
        page.find(row("texture/layer", ".reset")).click()
        self.assertNotIn("dusk.jpg", self.check_frame(page, "no texture"))
        key(page, row("compositing/source-opacity", "input[type=text]"), "ARROW_DOWN", "PAGE_DOWN")
        self.check_frame(page, "a percentage by the keyboard")

class Page(InTheBrowser):
    def check_pixels(self, page):
        """What is under the pointer, and the layer without the effect while a key is held."""
        from selenium.webdriver.common.action_chains import ActionChains

        key(page, "#stage", "s")
        ActionChains(page.driver).move_to_element_with_offset(page.find("#stage"), 100, 0).perform()
        self.assertRegex(page.find("#pixel").text, r"^x \d+\s+y \d+\s+R \d+\s+G \d+\s+B \d+\s+A \d+$")
        ActionChains(page.driver).key_down("b").perform()
        self.assertEqual(page.run("return getComputedStyle(document.getElementById('after')).visibility"), "hidden")
        ActionChains(page.driver).key_up("b").perform()
        self.assertEqual(page.run("return getComputedStyle(document.getElementById('after')).visibility"), "visible")

    def test_stage_and_messages(self):
        page = self.open("--renderer", "cpu")
        self.assertTrue(page.find("#empty").is_displayed())
        page.find("[data-example='title.png']").click()
        page.settle()
        self.assertFalse(page.find("#empty").is_displayed())
        self.assertIn("1920 × 1080", page.find("#sizes").text)

        key(page, "#stage", "1")
        self.assertEqual(page.find("#zoom").text, "100 %")
        key(page, "#stage", "+", "+")
        self.assertEqual(page.find("#zoom").text, "156 %")
        key(page, "#stage", "0")
        key(page, "#stage", "s")
        self.assertEqual(page.find("#split").get_attribute("aria-pressed"), "true")
        key(page, "#divider", "ARROW_LEFT")
        self.assertEqual(page.find("#divider").get_attribute("aria-valuenow"), "49")

        self.check_pixels(page)

        field = page.find(row("style/distance", "input[type=text]"))
        field.clear()
        field.send_keys("far\n")
        page.wait("return !document.getElementById('message').hidden")
        self.assertIn("far", page.find("#sentence").text)
        self.assertEqual(field.get_attribute("aria-invalid"), "true")
        field.clear()
        field.send_keys("30\n")
        page.settle()
        self.assertFalse(page.find("#message").is_displayed())

        (self.folder / "broken.png").write_text("no image")
        page.find("#file").send_keys(str(self.folder / "broken.png"))
        page.wait("return !document.getElementById('message').hidden")
        self.assertIn("broken.png", page.find("#sentence").text)
        page.find("#file").send_keys(str(LAYERS / "card.png"))
        page.settle()
        page.wait("return document.getElementById('sizes').textContent.startsWith('card.png')")
        # What the browser reports of refused requests is not the page's.
        self.assertEqual([entry for entry in page.errors() if "status of 422" not in entry], [])

    def test_the_screen_has_the_frame_over_the_backdrop(self):
        page = self.open(LAYERS / "card.png", "--renderer", "cpu", "--set", "style/color=#c03020")
        page.settle()
        page.run("""
            const set = (id, kind, value) => {
              document.getElementById(id).value = value;
              document.getElementById(id).dispatchEvent(new Event(kind));
            };
            set('backdrop', 'change', 'color');
            set('backdrop-color', 'input', '#406080');
            for (const id of ['frame', 'handles']) document.getElementById(id).style.visibility = 'hidden';
            document.getElementById('zoom-full').click();""")
        left, top = page.run("const box = document.getElementById('after').getBoundingClientRect(); return [box.x, box.y]")
        # A part of the stage's middle, where the shadow ends.
        x, y, width, height = 300, 200, 320, 240
        expected = bytearray()
        frame_width, _, rgba = page.pixels()
        for row_ in range(y - round(top), y - round(top) + height):
            at = 4 * (row_ * frame_width + x - round(left))
            for pixel in range(at, at + 4 * width, 4):
                alpha = rgba[pixel + 3] / 255
                over = zip(rgba[pixel : pixel + 3], (0x40, 0x60, 0x80))
                expected += bytes(round(above * alpha + below * (1 - alpha)) for above, below in over) + b"\xff"
        browser.write_png(self.folder / "expected.png", width, height, bytes(expected))
        page.screenshot(self.folder / "screen.png", x, y, width, height)
        compared = subprocess.run([browser.UMBRANT, "compare", "--json", self.folder / "screen.png",
                                   self.folder / "expected.png"], capture_output=True, text=True)  # fmt: skip
        self.assertLessEqual(json.loads(compared.stdout)["worst"], 1.001 / 255, compared.stdout)
        self.assertGreater(len(set(expected[::4])), 20, "the part has a gradient")

    def test_memory_of_2000_drags(self):
        page = self.open(LAYERS / "card.png", "--renderer", "cpu")
        page.settle()
        used = []
        for _ in range(4):
            page.driver.execute_async_script("""
                const done = arguments[0];
                const slider = document.querySelector('.row[data-key="style/distance"] input[type=range]');
                let left = 500;
                const move = () => {
                  for (let i = 0; i < 2; i++) {
                    slider.value = 20 + (left-- % 200);
                    slider.dispatchEvent(new Event('input', { bubbles: true }));
                  }
                  if (left > 0) return requestAnimationFrame(move);
                  slider.dispatchEvent(new Event('change', { bubbles: true }));
                  done();
                };
                move();""")
            page.settle()
            page.driver.execute_cdp_cmd("HeapProfiler.collectGarbage", {})
            status = pathlib.Path(f"/proc/{page.preview.pid}/status").read_text(encoding="ascii")
            server = int(re.search(r"VmRSS:\s+(\d+)", status)[1]) / 1024
            used.append((server, page.run("return performance.memory.usedJSHeapSize") / 2**20))
        # A leak of one of the 2,000 frames would be half a mebibyte, of all of them a gibibyte.
        self.assertLess(used[-1][0] - used[0][0], 48, used)
        self.assertLess(used[-1][1] - used[0][1], 16, used)

    def test_a_module_that_crashes(self):
        page = self.open(LAYERS / "card.png", "--module", MODULES / "leaver.so",
                         environment={"UMBRANT_TEST_LEAVES": "render:crash"})  # fmt: skip
        for _ in range(2):
            page.wait("return ['message', 'restart'].every((id) => !document.getElementById(id).hidden)")
            self.assertIn("crashed with signal 11", page.find("#sentence").text)
            page.find("#restart").click()

    def test_a_preview_that_ends(self):
        page = self.open(LAYERS / "card.png", "--renderer", "cpu")
        page.settle()
        page.preview.terminate()
        page.wait("return !document.getElementById('message').hidden")
        self.assertIn("connection", page.find("#sentence").text)


if __name__ == "__main__":
    unittest.main()
