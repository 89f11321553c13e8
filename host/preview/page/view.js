// SPDX-License-Identifier: BSD-3-Clause
// Where the picture is on the stage: its zoom and its place. In CSS pixels of the stage and pixels of the full-size layer.

/** The range of the zoom, in pixels of the screen for one of the layer. */
export const LEAST_ZOOM = 0.25;
export const MOST_ZOOM = 8;

export class View {
  constructor() {
    this.zoom = 1;
    this.x = 0;
    this.y = 0;
    /** The picture is fitted again when it or the stage changes its size. */
    this.isFitted = true;
  }

  /** CSS pixels for a pixel of the layer. */
  get scale() {
    return this.zoom / devicePixelRatio;
  }

  /** @param {number} x @param {number} y a place in the layer */
  toStage(x, y) {
    return { x: this.x + x * this.scale, y: this.y + y * this.scale };
  }

  /** @param {number} x @param {number} y a place on the stage */
  toLayer(x, y) {
    return { x: (x - this.x) / this.scale, y: (y - this.y) / this.scale };
  }

  /**
   * Shows a rectangle of the layer as large as it fits with a margin, but not enlarged.
   * @param {number[]} rect left, top, right, bottom
   * @param {number} width @param {number} height of the stage
   */
  fit(rect, width, height) {
    const margin = 24;
    const [left, top, right, bottom] = rect;
    const wanted = Math.min((width - 2 * margin) / (right - left), (height - 2 * margin) / (bottom - top));
    this.zoom = Math.max(Math.min(wanted * devicePixelRatio, 1), 0.01);
    this.x = Math.round((width - (left + right) * this.scale) / 2);
    this.y = Math.round((height - (top + bottom) * this.scale) / 2);
    this.isFitted = true;
  }

  /**
   * Changes the zoom; the layer's place under (x, y) of the stage stays.
   * @param {number} zoom @param {number} x @param {number} y
   */
  zoomAt(zoom, x, y) {
    const place = this.toLayer(x, y);
    this.zoom = Math.max(Math.min(zoom, MOST_ZOOM), Math.min(LEAST_ZOOM, this.zoom));
    this.x = Math.round(x - place.x * this.scale);
    this.y = Math.round(y - place.y * this.scale);
    this.isFitted = false;
  }

  /** @param {number} x @param {number} y */
  move(x, y) {
    this.x += x;
    this.y += y;
    this.isFitted = false;
  }
}
