// SPDX-License-Identifier: BSD-3-Clause
// The status line and the message on the stage.

/** @param {string} id @returns {any} */
const find = (id) => document.getElementById(id);

export class Status {
  /** @param {import("./stage.js").Stage} stage */
  constructor(stage) {
    this.stage = stage;
    this.asked = 0;
    find("help").addEventListener("click", () => find("keys").showModal());
    find("dismiss").addEventListener("click", () => this.succeed());
    find("dismiss-notice").addEventListener("click", () => (find("notice").hidden = true));
    stage.element.addEventListener("pointermove", (/** @type {PointerEvent} */ event) => this.showPixel(event));
    stage.element.addEventListener("pointerleave", () => (find("pixel").textContent = ""));
  }

  /** @param {string} sentence @param {boolean} [gone] the effect's process has ended */
  fail(sentence, gone = false) {
    const text = sentence.charAt(0).toUpperCase() + sentence.slice(1);
    find("sentence").textContent = /[.!?]$/.test(text) ? text : `${text}.`;
    find("restart").hidden = !gone;
    find("message").hidden = false;
  }

  succeed() {
    find("message").hidden = true;
  }

  /** @param {string} sentence for the screen reader */
  announce(sentence) {
    find("said").textContent = sentence;
  }

  /** @param {string} sentence for the eye and the screen reader, for a while */
  say(sentence) {
    this.announce(sentence);
    const button = find("copy");
    button.textContent = "Copied";
    setTimeout(() => (button.textContent = "Copy command"), 1500);
  }

  /** Offers a preset that has changed on disk. @param {string} name */
  offer(name) {
    find("notice-text").textContent = `${name.slice(name.lastIndexOf("/") + 1)} has changed on disk.`;
    find("notice").hidden = false;
  }

  /** @param {import("./types.js").FrameInfo} info @param {import("./types.js").Layer | null} layer */
  showFrame(info, layer) {
    const [left, top, right, bottom] = this.stage.rect;
    const name = layer ? layer.name.slice(layer.name.lastIndexOf("/") + 1) : "";
    find("sizes").textContent =
      `${name}   ${info.layer[0]} × ${info.layer[1]}   Picture ${right - left} × ${bottom - top}   ${info.bits} bit`;
    const drawer = info.drawnBy === "cpu" ? "CPU" : "GPU";
    const draft = info.draft ? `   draft 1/${info.downsample}` : "";
    find("speed").textContent = `${info.milliseconds.toFixed(info.milliseconds < 10 ? 1 : 0)} ms   ${drawer}${draft}`;
  }

  showDrawing() {
    find("speed").textContent = "Drawing…";
  }

  showZoom() {
    find("zoom").textContent = `${Math.round(this.stage.view.zoom * 100)} %`;
  }

  /** @param {PointerEvent} event */
  showPixel(event) {
    const box = this.stage.element.getBoundingClientRect();
    const pixel = this.stage.pixelAt(event.clientX - box.x, event.clientY - box.y);
    const place = find("pixel");
    if (!pixel) return void (place.textContent = "");
    const write = (/** @type {(string | number)[]} */ [r, g, b, a]) =>
      (place.textContent = `x ${pixel.x}  y ${pixel.y}   R ${r}  G ${g}  B ${b}  A ${a}`);
    const info = this.stage.shown?.info;
    if (!info || info.bits === 8) return void write(pixel.rgba);
    this.askForPixel(info.frame, pixel.column, pixel.row, write);
  }

  /**
   * The channels in float, which only the server has.
   * @param {number} frame @param {number} x @param {number} y @param {(rgba: string[]) => void} write
   */
  async askForPixel(frame, x, y, write) {
    const asked = ++this.asked;
    await new Promise((resolve) => requestAnimationFrame(resolve));
    if (asked !== this.asked) return;
    const reply = await fetch(`pixel?client=${this.client}&frame=${frame}&x=${x}&y=${y}`);
    if (!reply.ok || asked !== this.asked) return;
    const { rgba } = await reply.json();
    write(rgba.map((/** @type {string} */ channel) => Number(channel).toPrecision(5)));
  }

  /** The page's number on the server. */
  client = 0;
}
