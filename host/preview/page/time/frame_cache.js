// SPDX-License-Identifier: BSD-3-Clause
// Frames that were drawn for a loop, within a limit of bytes. When it is reached, the frame that is needed last goes.

/** @typedef {import("../types.js").FrameInfo} FrameInfo */
/** @typedef {{info: FrameInfo, pixels: Uint8ClampedArray}} Drawn */

export const MOST_BYTES = 256 * 1024 * 1024;

export class FrameCache {
  /** @param {number} [mostBytes] */
  constructor(mostBytes = MOST_BYTES) {
    this.mostBytes = mostBytes;
    /** @type {Map<number, Drawn>} */
    this.frames = new Map();
    this.bytes = 0;
  }

  clear() {
    this.frames.clear();
    this.bytes = 0;
  }

  /** @param {number} index */
  get(index) {
    return this.frames.get(index);
  }

  /** Whether another frame of this size would make one go. @param {number} bytes */
  isFullFor(bytes) {
    return this.bytes + bytes > this.mostBytes;
  }

  /**
   * Keeps a frame, unless it is itself the one that is needed last.
   * @param {number} index
   * @param {Drawn} drawn
   * @param {number} now    the frame that is due
   * @param {number} count  frames of the loop
   */
  put(index, drawn, now, count) {
    this.remove(index);
    const ahead = (/** @type {number} */ each) => (each - now + count) % count;
    while (this.isFullFor(drawn.pixels.byteLength)) {
      let last = index;
      for (const each of this.frames.keys()) if (ahead(each) > ahead(last)) last = each;
      if (last === index) return;
      this.remove(last);
    }
    this.frames.set(index, drawn);
    this.bytes += drawn.pixels.byteLength;
  }

  /** @param {number} index */
  remove(index) {
    this.bytes -= this.frames.get(index)?.pixels.byteLength ?? 0;
    this.frames.delete(index);
  }
}
