// SPDX-License-Identifier: BSD-3-Clause
// The stage: the picture on its backdrop, the layer's frame, the comparison with the layer. Pixels are kept as they came,
// since a canvas stores them premultiplied.

import { View } from "./view.js";

/** @typedef {import("./types.js").FrameInfo} FrameInfo */

/** @param {string} id @returns {any} */
const find = (id) => document.getElementById(id);

export class Stage {
  /** @param {() => void} placed called when the picture's place has changed */
  constructor(placed) {
    this.placed = placed;
    this.view = new View();
    this.element = find("stage");
    this.sheet = find("sheet");
    this.after = find("after");
    this.before = find("before");
    this.ground = find("ground");
    this.frame = find("frame");
    this.divider = find("divider");
    /** @type {{info: FrameInfo, pixels: Uint8ClampedArray} | null} */
    this.shown = null;
    this.splitAt = 0.5;
    this.isSplit = false;
    new ResizeObserver(() => (this.view.isFitted ? this.fit() : this.place())).observe(this.element);
  }

  /** What the picture covers, in pixels of the full-size layer. */
  get rect() {
    if (!this.shown) return [0, 0, 1, 1];
    const { rect, downsample, layer } = this.shown.info;
    const scaled = rect.map((side) => side * downsample);
    // A part of a pixel at the right and bottom edge of a draft is a whole pixel of it.
    const isLayer = rect[0] === 0 && rect[1] === 0 && rect[2] === Math.ceil(layer[0] / downsample) && rect[3] === Math.ceil(layer[1] / downsample);
    return isLayer ? [0, 0, layer[0], layer[1]] : scaled;
  }

  /** @param {FrameInfo} info @param {Uint8ClampedArray} pixels */
  show(info, pixels) {
    const isFirst = !this.shown || this.shown.info.layer.join() !== info.layer.join();
    this.shown = { info, pixels };
    const width = info.rect[2] - info.rect[0];
    const height = info.rect[3] - info.rect[1];
    if (this.after.width !== width) this.after.width = width;
    if (this.after.height !== height) this.after.height = height;
    if (pixels.length && pixels.length === 4 * width * height) {
      this.after.getContext("2d").putImageData(new ImageData(pixels, width, height), 0, 0);
    }
    this.sheet.hidden = false;
    if (isFirst) this.fit();
    else this.place();
  }

  /**
   * The layer without the effect.
   * @param {number} width @param {number} height @param {Uint8ClampedArray} pixels
   */
  showBefore(width, height, pixels) {
    this.before.width = width;
    this.before.height = height;
    this.before.getContext("2d").putImageData(new ImageData(pixels, width, height), 0, 0);
    this.place();
  }

  clear() {
    this.shown = null;
    this.sheet.hidden = true;
  }

  fit() {
    if (!this.shown) return;
    this.view.fit(this.rect, this.element.clientWidth, this.element.clientHeight);
    this.place();
  }

  /** @param {number} zoom @param {number} [x] @param {number} [y] */
  zoomTo(zoom, x = this.element.clientWidth / 2, y = this.element.clientHeight / 2) {
    this.view.zoomAt(zoom, x, y);
    this.place();
  }

  /** Puts everything where the view has it. */
  place() {
    if (!this.shown) return;
    const { layer } = this.shown.info;
    const picture = this.put(this.after, this.rect);
    this.put(this.ground, this.rect);
    const original = this.put(this.before, [0, 0, ...layer]);
    this.put(this.frame, [0, 0, ...layer]);
    for (const canvas of [this.after, this.before]) canvas.classList.toggle("sharp", this.view.zoom >= 2);
    const line = this.element.clientWidth * this.splitAt;
    this.divider.style.left = `${line}px`;
    this.divider.ariaValueNow = String(Math.round(this.splitAt * 100));
    this.after.style.clipPath = this.isSplit ? `inset(0 0 0 ${Math.max(0, line - picture.left)}px)` : "";
    this.before.style.clipPath = this.isSplit ? `inset(0 ${Math.max(0, original.left + original.width - line)}px 0 0)` : "";
    this.placed();
  }

  /** @param {HTMLElement} element @param {number[]} rect */
  put(element, rect) {
    // On whole pixels of the screen, so that 100 % is sharp.
    const { x, y } = this.view.toStage(rect[0], rect[1]);
    const [left, top] = [x, y].map((side) => Math.round(side * devicePixelRatio) / devicePixelRatio);
    const width = (rect[2] - rect[0]) * this.view.scale;
    Object.assign(element.style, {
      left: `${left}px`, top: `${top}px`, width: `${width}px`, height: `${(rect[3] - rect[1]) * this.view.scale}px`,
    });
    return { left, width };
  }

  /** @param {boolean} isSplit */
  split(isSplit) {
    this.isSplit = isSplit;
    this.divider.hidden = !isSplit;
    this.element.classList.toggle("split", isSplit);
    this.place();
  }

  /** @param {number} share of the stage's width */
  splitTo(share) {
    this.splitAt = Math.min(Math.max(share, 0), 1);
    this.place();
  }

  /** @param {boolean} isShown */
  showsBefore(isShown) {
    this.element.classList.toggle("shows-before", isShown);
  }

  /**
   * What is under a place of the stage: the drawn pixel and its channels; nothing outside of the picture and in drafts.
   * @param {number} x @param {number} y
   */
  pixelAt(x, y) {
    if (!this.shown || this.shown.info.downsample !== 1) return null;
    const { rect } = this.shown.info;
    const place = this.view.toLayer(x, y);
    const column = Math.floor(place.x) - rect[0];
    const row = Math.floor(place.y) - rect[1];
    const width = rect[2] - rect[0];
    if (column < 0 || row < 0 || column >= width || row >= rect[3] - rect[1]) return null;
    const at = 4 * (row * width + column);
    return { x: column + rect[0], y: row + rect[1], column, row, rgba: [...this.shown.pixels.subarray(at, at + 4)] };
  }
}
