// SPDX-License-Identifier: BSD-3-Clause
// Time on the page: which frame is shown, playing, keys and their curve.

import { CurveView } from "./curves.js";
import { KeyEditor } from "./key_editor.js";
import { keyAt, moveKey, nextKey, removeKey, setKey, setSide } from "./keys.js";
import { Player } from "./player.js";
import { Timeline } from "./timeline.js";

/** @typedef {import("../types.js").Request} Request */

/** @param {string} id @returns {any} */
const find = (id) => document.getElementById(id);
const NEW_FRAMES = "1-48";

/**
 * @typedef {object} Page
 * @property {import("../connection.js").Connection} connection
 * @property {import("../types.js").State} state
 * @property {import("../panel.js").Panel} panel
 * @property {import("../stage.js").Stage} stage
 * @property {() => Request} request
 * @property {(moving: boolean) => void} draw       the frame that is chosen
 * @property {(more: object) => number} drawToPlay   another one; returns the request's number
 * @property {() => void} commit                     the state is a step of the history
 * @property {(info: import("../types.js").FrameInfo, pixels: Uint8ClampedArray) => void} show
 * @property {(sentence: string) => void} fail
 */

export class Time {
  /** @param {Page} page */
  constructor(page) {
    this.page = page;
    this.isFixed = false;
    this.framesPerSecond = 24;
    this.asked = "";
    this.showsCurve = false;
    this.curve = new CurveView(page.connection);
    this.isHidden = false;
    this.timeline = new Timeline({
      seek: (index, moving) => this.seek(index, moving),
      move: (row, from, to, moving) => this.moveKey(row, from, to, moving),
      remove: (row, frame) => this.removeKey(row, frame),
      select: (row, frame) => this.select(row, frame),
      name: (row) => page.panel.current[row]?.name || row,
    });
    this.editor = new KeyEditor({
      setSide: (which, side) => this.onSelected((keys, { row, frame }) => setSide(keys, row, frame, which, side)),
      moveTo: (frame) => {
        if (this.timeline.selected) this.moveKey(this.timeline.selected.row, this.timeline.selected.frame, frame, false);
      },
      remove: () => {
        if (this.timeline.selected) this.removeKey(this.timeline.selected.row, this.timeline.selected.frame);
      },
    });
    this.player = new Player({
      ask: (frame, downsample) => page.drawToPlay({ frame, downsample }),
      show: (index, { info, pixels }) => {
        page.state.index = index;
        this.timeline.showIndex(index);
        page.show(info, pixels);
      },
      look: () => JSON.stringify({ ...page.request(), frame: 0 }),
      downsample: () => Math.min(Math.max(Math.floor(1 / page.stage.view.zoom), 1), 12),
      changed: () => this.showPlayed(),
    });
    this.listen();
  }

  get hasKeys() {
    return Object.keys(this.page.state.keyframes).length > 0;
  }

  /** Whether frames have times; else there is a single image. */
  get isUsed() {
    const { layer, texture, hasTimeline } = this.page.state;
    return hasTimeline || this.hasKeys || Boolean(layer?.moving) || Boolean(texture?.moving);
  }

  get frame() {
    return this.timeline.frame;
  }

  /** What a request has of time. @returns {Partial<Request>} */
  request() {
    if (!this.isUsed) return {};
    const { keyframes, frames, rate, index } = this.page.state;
    return { keyframes: this.hasKeys ? JSON.stringify(keyframes) : "", frames: frames || NEW_FRAMES, rate, frame: index };
  }

  listen() {
    find("timeline-shown").addEventListener("click", () => this.toggle());
    find("play").addEventListener("click", () => this.toggleToPlay());
    find("frame-before").addEventListener("click", () => this.step(-1));
    find("frame-after").addEventListener("click", () => this.step(1));
    find("curves-shown").addEventListener("click", () => this.toggleCurve());
    find("frame-number").addEventListener("change", () => {
      const frame = parseFloat(find("frame-number").value);
      if (Number.isFinite(frame)) this.seek(this.timeline.nearest(frame), false);
      find("frame-number").value = String(this.frame);
    });
    for (const name of /** @type {("frames" | "rate")[]} */ (["frames", "rate"])) {
      find(name).addEventListener("change", async () => {
        const before = this.page.state[name];
        this.page.state[name] = find(name).value.trim();
        if (await this.refresh()) {
          this.page.commit();
          return this.page.draw(false);
        }
        this.page.state[name] = before;
        find(name).value = before;
      });
    }
    document.addEventListener("keydown", (event) => this.keyDown(event));
    matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => this.showPlayed());
  }

  /** @param {KeyboardEvent} event */
  keyDown(event) {
    const target = /** @type {HTMLElement} */ (event.target);
    if (event.ctrlKey || event.metaKey || event.altKey || target.matches("input[type=text], select, textarea, dialog *")) return;
    // A button takes the space bar itself.
    if (event.key === " " && target.matches("button, input, summary")) return;
    if (event.key.toLowerCase() === "t") return void this.toggle();
    /** @type {Record<string, () => void>} */
    const keys = {
      " ": () => this.toggleToPlay(), ",": () => this.step(-1), ".": () => this.step(1), "<": () => this.toKey(-1),
      ">": () => this.toKey(1), ";": () => this.toKey(-1), ":": () => this.toKey(1), c: () => this.toggleCurve(),
    };
    const action = keys[event.key];
    if (!action || !this.isUsed) return;
    event.preventDefault();
    action();
  }

  /** @param {number} steps */
  step(steps) {
    this.seek((this.page.state.index + steps + this.timeline.numbers.length) % this.timeline.numbers.length, false);
  }

  /** @param {1 | -1} direction */
  toKey(direction) {
    const frame = nextKey(this.page.state.keyframes, this.frame, direction);
    if (frame !== null) this.seek(this.timeline.nearest(frame), false);
  }

  /** @param {number} index @param {boolean} moving */
  seek(index, moving) {
    this.player.stop();
    this.page.state.index = index;
    this.timeline.showIndex(index);
    this.showKeys();
    this.page.draw(moving);
  }

  async toggle() {
    const { state } = this.page;
    const isShown = !find("timeline").hidden;
    // With keys or a sequence it can be hidden, and stays what frames depend on.
    state.hasTimeline = !isShown;
    this.isHidden = isShown;
    if (isShown) this.player.stop();
    await this.refresh();
    this.page.commit();
    this.page.draw(false);
  }

  toggleToPlay() {
    if (this.player.isPlaying) {
      this.player.stop();
      this.page.draw(false);
    } else if (this.page.state.layer) {
      this.player.start(this.page.state.index, this.timeline.numbers.length, this.framesPerSecond);
    }
  }

  toggleCurve() {
    this.showsCurve = !this.showsCurve;
    find("curves-shown").setAttribute("aria-pressed", String(this.showsCurve));
    this.showCurve();
  }

  /** Asks for the frames again where they may have changed. Returns whether there are any. */
  async refresh() {
    const { state, connection, panel } = this.page;
    const isShown = this.isUsed && !this.isHidden;
    find("timeline").hidden = !isShown;
    find("timeline-shown").setAttribute("aria-pressed", String(isShown));
    panel.place.classList.toggle("has-time", this.isUsed);
    if (!this.isUsed) {
      this.player.stop();
      return true;
    }
    state.frames ||= NEW_FRAMES;
    find("frames").value = state.frames;
    find("rate").value = state.rate;
    find("rate").disabled = this.isFixed && Boolean(state.layer?.moving || state.texture?.moving);
    const { layer, texture, frames, rate } = state;
    const asked = JSON.stringify([layer?.id, texture?.id, frames, rate]);
    if (asked !== this.asked) {
      const before = this.frame;
      const reply = await connection.ask("timeline", this.page.request());
      if ("error" in reply) {
        this.page.fail(reply.error);
        return false;
      }
      const isFirst = this.asked === "";
      this.asked = asked;
      this.framesPerSecond = reply.framesPerSecond;
      this.player.stop();
      this.timeline.numbers = reply.numbers;
      state.index = isFirst ? Math.min(state.index, reply.numbers.length - 1) : this.timeline.nearest(before);
      this.timeline.showFrames(reply.numbers, state.index);
    }
    this.showKeys();
    this.showPlayed();
    return true;
  }

  /** Shows the keys everywhere. */
  showKeys() {
    const { state, panel } = this.page;
    const { selected } = this.timeline;
    if (selected && !keyAt(state.keyframes, selected.row, selected.frame)) this.timeline.selected = null;
    this.timeline.showKeys(state.keyframes);
    panel.showKeys(state.keyframes, this.frame);
    const row = this.timeline.selected?.row ?? "";
    this.editor.show(this.timeline.selected, state.keyframes, panel.current[row]?.name || row,
      Boolean(panel.rows.get(row)?.declared.discrete));
    this.showCurve();
  }

  showPlayed() {
    const { player } = this;
    find("play").textContent = player.isPlaying ? "Stop" : "Play";
    find("play").setAttribute("aria-pressed", String(player.isPlaying));
    const kept = `${player.cache.frames.size} of ${this.timeline.numbers.length} kept`;
    find("played").textContent = player.isPlaying || player.shown ? `${player.dropped} dropped · ${kept}` : "";
    this.timeline.showKept([...player.cache.frames.keys()]);
  }

  /** @param {string} row @param {number} frame */
  select(row, frame) {
    this.timeline.selected = { row, frame };
    this.showKeys();
  }

  /** @param {(keys: import("../types.js").Keyframes, selected: {row: string, frame: number}) => import("../types.js").Keyframes} change */
  onSelected(change) {
    const { selected } = this.timeline;
    if (selected) this.setKeys(change(this.page.state.keyframes, selected), false);
  }

  /** @param {string} row @param {number} from @param {number} to @param {boolean} moving */
  moveKey(row, from, to, moving) {
    const moved = moveKey(this.page.state.keyframes, row, from, to);
    if (moved !== this.page.state.keyframes) this.timeline.selected = { row, frame: to };
    this.setKeys(moved, moving);
  }

  /** @param {string} row @param {number} frame */
  removeKey(row, frame) {
    const { state } = this.page;
    const keys = removeKey(state.keyframes, row, frame);
    // The value of the last key stays.
    const last = keyAt(state.keyframes, row, frame);
    if (!keys[row] && last) state.values[row] = String(last.value);
    this.setKeys(keys, false);
  }

  /** Sets or removes a row's key at this frame. @param {string} row @param {string} value */
  toggleKey(row, value) {
    const { state } = this.page;
    if (keyAt(state.keyframes, row, this.frame)) return this.removeKey(row, this.frame);
    this.timeline.selected = { row, frame: this.frame };
    this.setKeys(setKey(state.keyframes, row, this.frame, value), false);
  }

  /** @param {import("../types.js").Keyframes} keyframes @param {boolean} moving */
  setKeys(keyframes, moving) {
    this.page.state.keyframes = keyframes;
    this.showKeys();
    if (!moving) this.page.commit();
    this.page.draw(moving);
  }

  /** Gives the value to the key at this frame where the row moves. @param {string} row @param {string} value */
  change(row, value) {
    const { state } = this.page;
    if (!state.keyframes[row]) return;
    state.keyframes = setKey(state.keyframes, row, this.frame, value);
    this.showKeys();
  }

  showCurve() {
    const { state, panel } = this.page;
    const row = this.timeline.selected?.row ?? Object.keys(state.keyframes)[0] ?? "";
    this.curve.show(this.showsCurve ? row : "", panel.current[row]?.name || row, { ...this.page.request(), frame: 0, values: {} });
  }
}
