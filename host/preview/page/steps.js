// SPDX-License-Identifier: BSD-3-Clause
// Undo and redo: of the state's parts that are steps, by buttons and keys.

import { History } from "./history.js";

/** @typedef {import("./types.js").State} State */

/** @param {string} id @returns {any} */
const find = (id) => document.getElementById(id);

export class Steps {
  /**
   * @param {State} state
   * @param {(isOtherLayer: boolean) => void} restored  called when the state has changed
   */
  constructor(state, restored) {
    this.state = state;
    this.restored = restored;
    this.history = new History();
    find("undo").addEventListener("click", () => this.go("undo"));
    find("redo").addEventListener("click", () => this.go("redo"));
    document.addEventListener("keydown", (event) => this.keyDown(event), { capture: true });
  }

  get shown() {
    const { values, keyframes, layer, texture, frames, rate, hasTimeline } = this.state;
    return { values, keyframes, layer, texture, frames, rate, hasTimeline };
  }

  add() {
    this.history.add(this.shown);
    this.showButtons();
  }

  /** The newest step was refused in part, and the state corrected. */
  correct() {
    this.history.replace(this.shown);
    this.showButtons();
  }

  /** @param {"undo" | "redo"} way */
  go(way) {
    const step = this.history[way]();
    if (!step) return;
    const isOther = step.layer?.id !== this.state.layer?.id;
    Object.assign(this.state, step);
    this.showButtons();
    this.restored(isOther);
  }

  showButtons() {
    find("undo").disabled = !this.history.canUndo;
    find("redo").disabled = !this.history.canRedo;
  }

  /** @param {KeyboardEvent} event */
  keyDown(event) {
    if (!(event.ctrlKey || event.metaKey) || event.altKey) return;
    const key = event.key.toLowerCase();
    const way = key === "y" || (key === "z" && event.shiftKey) ? "redo" : key === "z" ? "undo" : null;
    const target = /** @type {HTMLElement} */ (event.target);
    // Text that is being typed has an undo of its own.
    const isTyping = target instanceof HTMLInputElement && target.type === "text" &&
      target.dataset.shown !== undefined && target.value !== target.dataset.shown;
    if (!way || isTyping || target.closest("dialog")) return;
    event.preventDefault();
    this.go(way);
  }
}
