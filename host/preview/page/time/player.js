// SPDX-License-Identifier: BSD-3-Clause
// Plays the timeline in a loop at its rate. A frame that is not there when it is due is
// shown late or dropped; those are counted, and drawn for a later round.

import { FrameCache } from "./frame_cache.js";

/** @typedef {import("./frame_cache.js").Drawn} Drawn */

/**
 * @typedef {object} Stagehand
 * @property {(index: number, downsample: number) => number} ask   draws a frame; returns the request's number
 * @property {(index: number, drawn: Drawn) => void} show
 * @property {() => string} look          all that frames depend on, apart from their time
 * @property {() => number} downsample    of frames that fill the stage
 * @property {() => void} changed         it was started or stopped, or has counted
 */

export class Player {
  /** @param {Stagehand} stagehand @param {FrameCache} [cache] */
  constructor(stagehand, cache = new FrameCache()) {
    this.stagehand = stagehand;
    this.cache = cache;
    this.isPlaying = false;
    this.count = 0;
    this.framesPerSecond = 24;
    this.dropped = 0;
    this.shown = 0;
    this.rounds = 0;
    this.look = "";
    this.pending = 0;
    /** Frames that cannot be drawn. @type {Set<number>} */
    this.refused = new Set();
  }

  /** What was played since the start, and what is kept. */
  get facts() {
    const { dropped, shown, rounds, cache } = this;
    return { dropped, shown, rounds, bytes: cache.bytes, kept: cache.frames.size, mostBytes: cache.mostBytes };
  }

  /** @param {number} index the frame to begin with @param {number} count @param {number} framesPerSecond */
  start(index, count, framesPerSecond) {
    Object.assign(this, { isPlaying: true, count, framesPerSecond, dropped: 0, shown: 0, rounds: 0, pending: 0 });
    this.first = index;
    this.index = index;
    this.ordinal = -1;
    this.begin = performance.now();
    this.downsample = this.stagehand.downsample();
    this.refused.clear();
    this.stagehand.changed();
    const tick = (/** @type {number} */ now) => {
      if (!this.isPlaying) return;
      this.tick(now);
      requestAnimationFrame(tick);
    };
    requestAnimationFrame(tick);
  }

  stop() {
    this.isPlaying = false;
    this.stagehand.changed();
  }

  /** @param {number} now milliseconds */
  tick(now) {
    const look = `${this.stagehand.look()} ${this.downsample}`;
    if (look !== this.look) {
      this.look = look;
      this.cache.clear();
      this.refused.clear();
      this.pending = 0;
    }
    const ordinal = Math.max(0, Math.floor(((now - (this.begin ?? 0)) * this.framesPerSecond) / 1000));
    const due = ((this.first ?? 0) + ordinal) % this.count;
    this.showNewest(ordinal);
    if (!this.pending) this.askFor(this.missingFrom(due));
  }

  /** Shows the newest frame that is there and was not due before the one that is shown. @param {number} ordinal */
  showNewest(ordinal) {
    const last = this.ordinal ?? -1;
    for (let each = ordinal; each > last && each > ordinal - this.count; each--) {
      const index = ((this.first ?? 0) + each) % this.count;
      const drawn = this.cache.get(index);
      if (!drawn) continue;
      this.dropped += each - last - 1;
      this.shown++;
      this.ordinal = each;
      this.index = index;
      this.rounds = Math.floor(each / this.count);
      this.stagehand.show(index, drawn);
      this.stagehand.changed();
      return;
    }
  }

  /** The first frame from the one that is due on that is not there; -1 where nothing more is to be drawn. @param {number} due */
  missingFrom(due) {
    const size = this.cache.frames.size ? this.cache.bytes / this.cache.frames.size : 0;
    for (let ahead = 0; ahead < this.count; ahead++) {
      const index = (due + ahead) % this.count;
      if (this.cache.get(index) || this.refused.has(index)) continue;
      // A full cache has no room for what is not due yet: that would cost a frame that is needed sooner.
      return ahead > 1 && this.cache.isFullFor(size) ? -1 : index;
    }
    return -1;
  }

  /** @param {number} index */
  askFor(index) {
    if (index < 0) return;
    this.asked = index;
    this.pending = this.stagehand.ask(index, this.downsample ?? 1);
  }

  /** A request was answered: with a frame, or null for a failure. @param {number} serial @param {Drawn | null} drawn */
  answered(serial, drawn) {
    if (!this.pending || serial < this.pending) return;
    const isOwn = serial === this.pending;
    this.pending = 0;
    if (!isOwn || this.asked === undefined) return;
    if (drawn) this.cache.put(this.asked, drawn, this.index ?? 0, this.count);
    else this.refused.add(this.asked);
  }
}
