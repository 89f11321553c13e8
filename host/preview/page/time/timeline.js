// SPDX-License-Identifier: BSD-3-Clause
// The timeline: the ruler with the place in time, and the keys of each row that moves.

import { make } from "../controls.js";
import { keyAt } from "./keys.js";

/** @typedef {import("../types.js").Keyframes} Keyframes */
/** @typedef {import("../types.js").Key} Key */

/** @param {string} id @returns {any} */
const find = (id) => document.getElementById(id);

/**
 * @typedef {object} Handlers
 * @property {(index: number, moving: boolean) => void} seek
 * @property {(row: string, from: number, to: number, moving: boolean) => void} move   frames; `from` when it was taken
 * @property {(row: string, frame: number) => void} remove
 * @property {(row: string, frame: number) => void} select
 * @property {(row: string) => string} name
 */

export class Timeline {
  /** @param {Handlers} handlers */
  constructor(handlers) {
    this.handlers = handlers;
    /** Frames in rising order. */
    this.numbers = [0, 1];
    this.index = 0;
    /** @type {Keyframes} */
    this.keyframes = {};
    /** @type {{row: string, frame: number} | null} */
    this.selected = null;
    this.ruler = find("ruler");
    this.lanes = find("lanes");
    /** @type {{row: string, from: number, frame: number} | null} */
    this.dragged = null;
    this.listenToRuler();
    new ResizeObserver(() => this.showTicks()).observe(this.ruler);
  }

  get first() {
    return this.numbers[0];
  }

  get last() {
    return this.numbers[this.numbers.length - 1];
  }

  get frame() {
    return this.numbers[this.index] ?? this.first;
  }

  /** A frame's place as a share of the lanes. @param {number} frame */
  share(frame) {
    return this.last === this.first ? 0 : (frame - this.first) / (this.last - this.first);
  }

  /** @param {PointerEvent} event */
  frameUnder(event) {
    const box = this.ruler.getBoundingClientRect();
    return this.first + ((event.clientX - box.x) / box.width) * (this.last - this.first);
  }

  /** The index of the frame of the timeline that is nearest. @param {number} frame */
  nearest(frame) {
    let best = 0;
    this.numbers.forEach((each, i) => {
      if (Math.abs(each - frame) < Math.abs(this.numbers[best] - frame)) best = i;
    });
    return best;
  }

  listenToRuler() {
    const follow = (/** @type {PointerEvent} */ event, /** @type {boolean} */ moving) =>
      this.handlers.seek(this.nearest(this.frameUnder(event)), moving);
    this.ruler.addEventListener("pointerdown", (/** @type {PointerEvent} */ event) => {
      this.ruler.setPointerCapture(event.pointerId);
      follow(event, true);
    });
    this.ruler.addEventListener("pointermove", (/** @type {PointerEvent} */ event) => {
      if (this.ruler.hasPointerCapture(event.pointerId)) follow(event, true);
    });
    this.ruler.addEventListener("lostpointercapture", () => this.handlers.seek(this.index, false));
    this.ruler.addEventListener("keydown", (/** @type {KeyboardEvent} */ event) => {
      const far = event.shiftKey ? 10 : 1;
      const end = this.numbers.length - 1;
      const to = {
        ArrowLeft: this.index - far, ArrowDown: this.index - far, ArrowRight: this.index + far, ArrowUp: this.index + far,
        PageUp: this.index + 10, PageDown: this.index - 10, Home: 0, End: end,
      }[event.key];
      if (to === undefined) return;
      event.preventDefault();
      event.stopPropagation();
      this.handlers.seek(Math.min(Math.max(to, 0), end), false);
    });
  }

  /** @param {number} index */
  showIndex(index) {
    this.index = index;
    const place = `${this.share(this.frame) * 100}%`;
    for (const line of document.querySelectorAll(".playhead")) /** @type {HTMLElement} */ (line).style.left = place;
    this.ruler.ariaValueMin = String(this.first);
    this.ruler.ariaValueMax = String(this.last);
    this.ruler.ariaValueNow = String(this.frame);
    this.ruler.ariaValueText = `Frame ${this.frame} of ${this.first} to ${this.last}`;
    const field = find("frame-number");
    if (document.activeElement !== field) field.value = String(this.frame);
  }

  /** @param {number[]} numbers @param {number} index */
  showFrames(numbers, index) {
    this.numbers = numbers;
    this.showTicks();
    this.showIndex(index);
    this.showKeys(this.keyframes);
  }

  showTicks() {
    const place = find("ticks");
    const room = Math.max(2, Math.floor(this.ruler.clientWidth / 60));
    const span = Math.max(this.last - this.first, 1);
    const power = Math.pow(10, Math.floor(Math.log10(span / room)));
    const step = [1, 2, 5, 10].map((each) => Math.max(1, each * power)).find((each) => span / each <= room) ?? span;
    const ticks = [];
    for (let frame = Math.ceil(this.first / step) * step; frame <= this.last; frame += step) {
      const tick = make("span", { className: "tick", textContent: String(frame) });
      tick.style.left = `${this.share(frame) * 100}%`;
      ticks.push(tick);
    }
    place.replaceChildren(...ticks);
  }

  /** Which frames are kept for playing. @param {number[]} indices */
  showKept(indices) {
    const canvas = find("kept");
    if (canvas.width !== canvas.clientWidth) canvas.width = Math.max(1, canvas.clientWidth);
    const context = canvas.getContext("2d");
    context.clearRect(0, 0, canvas.width, canvas.height);
    context.fillStyle = getComputedStyle(canvas).color;
    const width = canvas.width / this.numbers.length;
    for (const index of indices) context.fillRect(Math.floor(index * width), 0, Math.ceil(width), canvas.height);
  }

  /** Shows the keys; elements of keys that stay are kept, and with them the focus. @param {Keyframes} keyframes */
  showKeys(keyframes) {
    this.keyframes = keyframes;
    const rows = Object.keys(keyframes);
    find("no-keys").hidden = rows.length > 0;
    const before = new Map([...this.lanes.children].map((lane) => [lane.dataset.row, lane]));
    const lanes = rows.map((row) => before.get(row) ?? this.makeLane(row));
    if (lanes.some((lane, i) => this.lanes.children[i] !== lane) || before.size !== lanes.length) {
      const focused = /** @type {HTMLElement | null} */ (document.activeElement);
      this.lanes.replaceChildren(...lanes);
      if (focused?.isConnected) focused.focus();
    }
    lanes.forEach((lane, i) => this.showLane(lane, rows[i], keyframes[rows[i]]));
    this.showIndex(this.index);
  }

  /** @param {string} row */
  makeLane(row) {
    const lane = make("div", { className: "lane" }, make("div", { className: "playhead", ariaHidden: "true" }));
    const track = make("div", { className: "track" }, make("span", { className: "track-name" }), lane);
    track.dataset.row = row;
    track.setAttribute("role", "group");
    return track;
  }

  /** @param {HTMLElement} track @param {string} row @param {Key[]} keys */
  showLane(track, row, keys) {
    const name = this.handlers.name(row);
    const label = /** @type {HTMLElement} */ (track.querySelector(".track-name"));
    label.textContent = label.title = name;
    track.ariaLabel = `Keys of ${name}`;
    const lane = /** @type {HTMLElement} */ (track.querySelector(".lane"));
    const elements = /** @type {HTMLButtonElement[]} */ ([...lane.querySelectorAll(".key")]);
    while (elements.length > keys.length) elements.pop()?.remove();
    while (elements.length < keys.length) elements.push(lane.appendChild(this.makeKey(row)));
    keys.forEach((key, i) => {
      const element = elements[i];
      const isSelected = this.selected?.row === row && Math.abs(this.selected.frame - key.frame) < 1e-6;
      element.dataset.frame = String(key.frame);
      element.style.left = `${this.share(key.frame) * 100}%`;
      element.hidden = key.frame < this.first || key.frame > this.last;
      element.classList.toggle("holds", key.out === "hold");
      element.ariaLabel = `${name}, key at frame ${key.frame}: ${key.value}`;
      element.title = `${name}, frame ${key.frame}: ${key.value}`;
      element.setAttribute("aria-pressed", String(isSelected));
    });
  }

  /** @param {string} row */
  makeKey(row) {
    const element = make("button", { type: "button", className: "key" });
    const frameOf = () => Number(element.dataset.frame);
    element.addEventListener("pointerdown", (event) => {
      element.setPointerCapture(event.pointerId);
      this.dragged = { row, from: frameOf(), frame: frameOf() };
      this.handlers.select(row, frameOf());
    });
    element.addEventListener("pointermove", (event) => {
      if (!this.dragged || !element.hasPointerCapture(event.pointerId)) return;
      const frame = this.numbers[this.nearest(this.frameUnder(event))];
      const isFree = frame === this.dragged.from || !keyAt(this.keyframes, row, frame);
      if (frame === this.dragged.frame || !isFree) return;
      this.handlers.move(row, this.dragged.frame, frame, true);
      this.dragged.frame = frame;
    });
    element.addEventListener("lostpointercapture", () => {
      const moved = this.dragged;
      this.dragged = null;
      if (moved && moved.frame !== moved.from) this.handlers.move(row, moved.frame, moved.frame, false);
    });
    element.addEventListener("click", () => this.handlers.select(row, frameOf()));
    element.addEventListener("keydown", (event) => this.keyDown(event, element, row, frameOf()));
    return element;
  }

  /** @param {KeyboardEvent} event @param {HTMLElement} element @param {string} row @param {number} frame */
  keyDown(event, element, row, frame) {
    const step = { ArrowLeft: -1, ArrowRight: 1 }[event.key];
    if (step) {
      event.preventDefault();
      event.stopPropagation();
      const to = Math.min(Math.max(this.nearest(frame) + step * (event.shiftKey ? 10 : 1), 0), this.numbers.length - 1);
      this.handlers.move(row, frame, this.numbers[to], false);
      // The keys stay in the order of their frames: another element may show this one now.
      const lane = element.parentElement;
      /** @type {HTMLElement | null | undefined} */ (lane?.querySelector(`.key[data-frame="${this.numbers[to]}"]`))?.focus();
    } else if (event.key === "Delete" || event.key === "Backspace") {
      event.preventDefault();
      this.ruler.focus();
      this.handlers.remove(row, frame);
    }
  }
}
