// SPDX-License-Identifier: BSD-3-Clause
// Handles on the stage: one for each visible point, and one for an angle and a distance of the same group together.

import { make, nearestTurn, numberText } from "./controls.js";

/** @typedef {import("./types.js").Declared} Declared */
/** @typedef {import("./types.js").Current} Current */

/**
 * @typedef {object} Handle
 * @property {HTMLButtonElement} element
 * @property {() => {x: number, y: number}} place       in pixels of the layer
 * @property {(x: number, y: number, moving: boolean) => void} move
 * @property {() => string} name
 * @property {() => boolean} isShown
 * @property {SVGSVGElement} [spoke]
 */

export class Handles {
  /**
   * @param {HTMLElement} place
   * @param {import("./stage.js").Stage} stage
   * @param {import("./panel.js").Panel} panel
   * @param {(values: Record<string, string>, moving: boolean) => void} change
   */
  constructor(place, stage, panel, change) {
    this.parent = place;
    this.stage = stage;
    this.panel = panel;
    this.change = change;
    /** @type {Handle[]} */
    this.handles = [];
    /** @type {{handle: Handle, x: number, y: number} | null} */
    this.moved = null;
  }

  /** @param {Declared[]} rows */
  build(rows) {
    this.parent.replaceChildren();
    this.handles = rows.filter((row) => row.kind === "point").map((row) => this.makePoint(row));
    for (const angle of rows.filter((row) => row.kind === "angle")) {
      const group = angle.key.slice(0, angle.key.lastIndexOf("/") + 1);
      const distance = rows.find((row) => row.kind === "slider" && row.key === `${group}distance`);
      if (distance && angle.key === `${group}angle`) this.handles.push(this.makeReach(angle, distance));
    }
  }

  /** @param {string} key @returns {Current | undefined} */
  now(key) {
    return this.panel.current[key];
  }

  get layer() {
    return this.stage.shown?.info.layer ?? [0, 0];
  }

  /** @param {Declared} row */
  makePoint(row) {
    return this.makeHandle({
      place: () => {
        const { numbers = [0, 0], percent = false } = this.now(row.key) ?? {};
        const [x, y] = percent ? numbers.map((part, i) => (part * this.layer[i]) / 100) : numbers;
        return { x, y };
      },
      move: (x, y, moving) => this.change({ [row.key]: `${numberText(x, 1)},${numberText(y, 1)}` }, moving),
      name: () => this.now(row.key)?.name ?? "",
      isShown: () => this.isShown(row.key),
    });
  }

  /** @param {Declared} angle @param {Declared} distance */
  makeReach(angle, distance) {
    const centre = () => ({ x: this.layer[0] / 2, y: this.layer[1] / 2 });
    const handle = this.makeHandle({
      place: () => {
        const radians = ((this.now(angle.key)?.numbers?.[0] ?? 0) * Math.PI) / 180;
        const length = this.now(distance.key)?.numbers?.[0] ?? 0;
        return { x: centre().x + length * Math.sin(radians), y: centre().y - length * Math.cos(radians) };
      },
      move: (x, y, moving) => {
        const [right, up] = [x - centre().x, centre().y - y];
        const length = Math.min(Math.max(Math.hypot(right, up), distance.min ?? 0), distance.max ?? Infinity);
        const before = this.now(angle.key)?.numbers?.[0] ?? 0;
        const degrees = length === 0 ? before : nearestTurn((Math.atan2(right, up) * 180) / Math.PI, before);
        this.change({
          [angle.key]: numberText(degrees, 1),
          [distance.key]: numberText(length, distance.precision),
        }, moving);
      },
      name: () => `${this.now(angle.key)?.name ?? ""} and ${this.now(distance.key)?.name ?? ""}`,
      isShown: () => this.isShown(angle.key) && this.isShown(distance.key),
    });
    handle.spoke = this.makeSpoke();
    return handle;
  }

  makeSpoke() {
    const kind = "http://www.w3.org/2000/svg";
    const spoke = /** @type {SVGSVGElement} */ (document.createElementNS(kind, "svg"));
    spoke.setAttribute("class", "spoke");
    spoke.append(document.createElementNS(kind, "line"), document.createElementNS(kind, "line"));
    this.parent.prepend(spoke);
    return spoke;
  }

  /** @param {string} key */
  isShown(key) {
    const now = this.now(key);
    return Boolean(now) && !now?.hidden && !now?.disabled;
  }

  /** @param {Omit<Handle, "element">} parts @returns {Handle} */
  makeHandle(parts) {
    const element = make("button", { type: "button", className: "handle" });
    const handle = { ...parts, element };
    const { view } = this.stage;
    const placeOf = (/** @type {PointerEvent} */ event) => {
      const box = this.stage.element.getBoundingClientRect();
      return view.toLayer(event.clientX - box.x, event.clientY - box.y);
    };
    element.addEventListener("pointerdown", (event) => {
      event.stopPropagation();
      element.setPointerCapture(event.pointerId);
    });
    element.addEventListener("pointermove", (event) => {
      if (!element.hasPointerCapture(event.pointerId)) return;
      const { x, y } = placeOf(event);
      this.moved = { handle, x, y };
      handle.move(x, y, true);
      this.place();
    });
    element.addEventListener("lostpointercapture", () => {
      if (!this.moved) return;
      const { x, y } = this.moved;
      this.moved = null;
      handle.move(x, y, false);
    });
    element.addEventListener("keydown", (event) => {
      const step = { ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1] }[event.key];
      if (!step) return;
      event.preventDefault();
      event.stopPropagation();
      const { x, y } = handle.place();
      const far = event.shiftKey ? 10 : 1;
      handle.move(x + step[0] * far, y + step[1] * far, false);
    });
    this.parent.append(element);
    return handle;
  }

  /** Puts the handles where their values are; the one that is moved stays under the pointer. */
  place() {
    for (const handle of this.handles) {
      const isShown = Boolean(this.stage.shown) && handle.isShown();
      handle.element.hidden = !isShown;
      if (handle.spoke) handle.spoke.style.display = isShown ? "" : "none";
      if (!isShown) continue;
      handle.element.ariaLabel = `${handle.name()}, handle`;
      handle.element.title = handle.name();
      const { x, y } = this.moved?.handle === handle ? this.moved : handle.place();
      const on = this.stage.view.toStage(x, y);
      Object.assign(handle.element.style, { left: `${on.x}px`, top: `${on.y}px` });
      if (!handle.spoke) continue;
      const from = this.stage.view.toStage(this.layer[0] / 2, this.layer[1] / 2);
      for (const line of handle.spoke.children) {
        for (const [name, value] of Object.entries({ x1: from.x, y1: from.y, x2: on.x, y2: on.y })) {
          line.setAttribute(name, String(value));
        }
      }
    }
  }
}
