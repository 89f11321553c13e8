// SPDX-License-Identifier: BSD-3-Clause
// What was shown before, for undo and redo.

/** @typedef {import("./types.js").Shown} Shown */

const MOST_STEPS = 300;

export class History {
  constructor() {
    /** @type {string[]} */
    this.steps = [];
    this.at = -1;
  }

  get canUndo() {
    return this.at > 0;
  }

  get canRedo() {
    return this.at < this.steps.length - 1;
  }

  /** Adds a step, unless nothing has changed. What was undone is forgotten. @param {Shown} shown */
  add(shown) {
    const step = JSON.stringify(shown);
    if (this.steps[this.at] === step) return;
    this.steps.splice(this.at + 1, Infinity, step);
    if (this.steps.length > MOST_STEPS) this.steps.shift();
    this.at = this.steps.length - 1;
  }

  /** Corrects the newest step. @param {Shown} shown */
  replace(shown) {
    if (this.at < 0) return;
    this.steps[this.at] = JSON.stringify(shown);
    if (this.steps[this.at] === this.steps[this.at - 1]) this.steps.splice(this.at--, 1);
  }

  /** @returns {Shown | null} */
  undo() {
    return this.canUndo ? JSON.parse(this.steps[--this.at]) : null;
  }

  /** @returns {Shown | null} */
  redo() {
    return this.canRedo ? JSON.parse(this.steps[++this.at]) : null;
  }
}
