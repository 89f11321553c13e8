// SPDX-License-Identifier: BSD-3-Clause
// What is known of the selected key: its frame, and how its value is come to and left.

import { keyAt } from "./keys.js";

/** @typedef {import("../types.js").Side} Side */
/** @typedef {import("../types.js").Key} Key */

/** @param {string} id @returns {any} */
const find = (id) => document.getElementById(id);

/**
 * @typedef {object} Handlers
 * @property {(which: "in" | "out", side: Side) => void} setSide
 * @property {(frame: number) => void} moveTo
 * @property {() => void} remove
 */

export class KeyEditor {
  /** @param {Handlers} handlers */
  constructor(handlers) {
    /** @type {Key | undefined} */
    this.key = undefined;
    for (const which of /** @type {("in" | "out")[]} */ (["in", "out"])) {
      find(`key-${which}`).addEventListener("change", () => handlers.setSide(which, this.sideChosen(which)));
      for (const part of ["speed", "influence"]) {
        find(`key-${which}-${part}`).addEventListener("change", () => {
          const speed = parseFloat(find(`key-${which}-speed`).value) || 0;
          const influence = parseFloat(find(`key-${which}-influence`).value) || 100 / 3;
          handlers.setSide(which, { speed, influence: Math.min(Math.max(influence, 0.1), 100) });
        });
      }
    }
    find("key-frame").addEventListener("change", () => {
      const frame = parseFloat(find("key-frame").value);
      if (Number.isFinite(frame)) handlers.moveTo(frame);
      else find("key-frame").value = String(this.key?.frame ?? "");
    });
    find("key-remove").addEventListener("click", () => handlers.remove());
  }

  /** @param {"in" | "out"} which @returns {Side} */
  sideChosen(which) {
    const chosen = find(`key-${which}`).value;
    if (chosen !== "curve") return chosen;
    const side = this.key?.[which];
    return typeof side === "object" ? side : { speed: 0, influence: 100 / 3 };
  }

  /**
   * @param {{row: string, frame: number} | null} selected
   * @param {import("../types.js").Keyframes} keyframes
   * @param {string} name @param {boolean} isDiscrete
   */
  show(selected, keyframes, name, isDiscrete) {
    const key = selected ? keyAt(keyframes, selected.row, selected.frame) : undefined;
    this.key = key;
    find("key-fields").hidden = !key;
    find("no-key").hidden = Boolean(key);
    if (!key) return;
    find("key-name").textContent = name;
    find("key-frame").value = String(key.frame);
    for (const which of /** @type {("in" | "out")[]} */ (["in", "out"])) {
      const side = isDiscrete ? "hold" : key[which] ?? "linear";
      const isCurve = typeof side === "object";
      const select = find(`key-${which}`);
      select.value = isCurve ? "curve" : side;
      select.disabled = isDiscrete;
      if (which === "in") select.querySelector("[value=hold]").hidden = !isDiscrete;
      find(`key-${which}-curve`).hidden = !isCurve;
      if (!isCurve) continue;
      find(`key-${which}-speed`).value = String(side.speed);
      find(`key-${which}-influence`).value = String(Number(side.influence.toPrecision(5)));
    }
  }
}
