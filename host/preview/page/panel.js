// SPDX-License-Identifier: BSD-3-Clause
// The panel, built from the declared rows alone: groups with twirls, a control for each row, resets, marks of changed
// values.

import { make, makeControl } from "./controls.js";
import { keyAt } from "./time/keys.js";

/** @typedef {import("./types.js").Declared} Declared */
/** @typedef {import("./types.js").Current} Current */
/** @typedef {import("./types.js").Layer} Layer */

/**
 * @typedef {object} PanelHandlers
 * @property {(key: string, text: string, moving: boolean) => void} change
 * @property {(key: string) => void} reset
 * @property {(key: string, text: string) => void} toggleKey
 * @property {(key: string) => void} press
 * @property {() => void} chooseTexture
 * @property {() => void} clearTexture
 */

/**
 * Says what a row does to the picture: as a tool tip, and to screen readers with the fields of its value.
 * @param {HTMLElement} element @param {string} description
 */
function describe(element, description) {
  const twirl = /** @type {HTMLElement | null} */ (element.querySelector(".twirl"));
  (twirl ?? element).title = description;
  if (twirl) return;
  for (const field of element.querySelectorAll(".control input, .control select")) {
    field.setAttribute("aria-description", description);
  }
}

/**
 * @typedef {object} Row
 * @property {Declared} declared
 * @property {HTMLElement} element
 * @property {HTMLElement} [name]
 * @property {HTMLButtonElement} [reset]
 * @property {HTMLButtonElement} [keyHere]   sets a key, where the row may have some
 * @property {import("./controls.js").Control | null} control
 * @property {HTMLElement} [problem]
 * @property {HTMLElement} [count]       of a group: how many of its values are changed
 * @property {(current: Current) => void} [show]
 */

export class Panel {
  /**
   * @param {HTMLElement} place
   * @param {PanelHandlers} handlers
   */
  constructor(place, handlers) {
    this.place = place;
    this.handlers = handlers;
    /** @type {Map<string, Row>} */
    this.rows = new Map();
    /** @type {Record<string, Current>} */
    this.current = {};
    /** The row that a person moves: what it shows is theirs until they let go. */
    this.moving = "";
  }

  /** @param {Declared[]} declared @param {Record<string, boolean>} open groups that a person opened or closed */
  build(declared, open) {
    this.place.replaceChildren();
    this.rows.clear();
    const parents = [this.place];
    declared.forEach((row, index) => {
      parents.length = Math.min(parents.length, row.depth + 1);
      const parent = parents[parents.length - 1];
      const isEmpty = (declared[index + 1]?.depth ?? 0) <= row.depth;
      const made = row.kind === "group" ? (isEmpty ? this.makeHeading(row) : this.makeGroup(row, open)) : this.makeRow(row);
      parent.append(made.element);
      this.rows.set(row.key, made);
      if (row.description) describe(made.element, row.description);
      if (row.kind === "group" && !isEmpty) parents.push(/** @type {HTMLElement} */ (made.element.lastElementChild));
    });
  }

  /** @param {Declared} row @returns {Row} */
  makeHeading(row) {
    const element = make("div", { className: "heading" });
    return { declared: row, element, control: null, show: ({ name }) => {
      element.textContent = name;
      element.className = name ? "heading" : "spacer";
    } };
  }

  /** @param {Declared} row @param {Record<string, boolean>} open @returns {Row} */
  makeGroup(row, open) {
    const name = make("span");
    const count = make("span", { className: "count" });
    const twirl = make("button", { type: "button", className: "twirl" }, name, count);
    const inside = make("div", { id: `group-${row.index}` });
    const set = (/** @type {boolean} */ isOpen) => {
      twirl.setAttribute("aria-expanded", String(isOpen));
      inside.hidden = !isOpen;
    };
    twirl.setAttribute("aria-controls", inside.id);
    set(open[row.key] ?? !row.collapsed);
    twirl.addEventListener("click", () => {
      open[row.key] = inside.hidden;
      set(inside.hidden);
      this.place.dispatchEvent(new Event("twirl"));
    });
    const element = make("div", { className: "group" }, twirl, inside);
    return { declared: row, element, control: null, count, show: (current) => { name.textContent = current.name; } };
  }

  /** @param {Declared} row @returns {Row} */
  makeRow(row) {
    const element = make("div", { className: "row" });
    element.dataset.key = row.key;
    const name = make("span", { className: "name", id: `name-${row.index}` });
    if (row.kind === "button") return this.makeButton(row, element, name);
    if (row.kind === "layer") return this.makeTexture(row, element, name);
    if (row.kind === "own") return this.makeOwn(row, element);
    const control = makeControl(row, (text, moving) => {
      this.moving = moving ? row.key : "";
      this.handlers.change(row.key, text, moving);
    });
    if (!control) return { declared: row, element: make("div", { hidden: true }), control: null };
    const reset = make("button", { type: "button", className: "reset", textContent: "↺" });
    reset.addEventListener("click", () => this.handlers.reset(row.key));
    const problem = make("span", { className: "problem", id: `problem-${row.index}`, hidden: true });
    element.append(name, control.element, reset, problem);
    const keyHere = row.animatable ? make("button", { type: "button", className: "key-here" }) : undefined;
    if (keyHere) {
      keyHere.addEventListener("click", () => this.handlers.toggleKey(row.key, this.current[row.key]?.text ?? ""));
      element.prepend(keyHere);
    }
    if (control.isGroup) {
      control.element.setAttribute("role", "group");
      control.element.setAttribute("aria-labelledby", name.id);
    }
    return { declared: row, element, name, reset, keyHere, control, problem };
  }

  /** @param {Declared} row @param {HTMLElement} element @param {HTMLElement} name @returns {Row} */
  makeButton(row, element, name) {
    const button = make("button", { type: "button", textContent: row.label || "…" });
    button.addEventListener("click", () => this.handlers.press(row.key));
    element.append(name, make("div", { className: "control" }, button));
    return { declared: row, element, name, control: null, show: ({ disabled }) => { button.disabled = disabled; } };
  }

  /** @param {Declared} row @param {HTMLElement} element @param {HTMLElement} name @returns {Row} */
  makeTexture(row, element, name) {
    const file = make("span", { className: "file", textContent: "None" });
    const choose = make("button", { type: "button", textContent: "Choose…" });
    const clear = make("button", { type: "button", className: "reset", textContent: "↺", title: "Remove the image" });
    choose.addEventListener("click", () => this.handlers.chooseTexture());
    clear.addEventListener("click", () => this.handlers.clearTexture());
    element.append(name, make("div", { className: "control" }, file, choose), clear);
    element.classList.add("texture");
    return { declared: row, element, name, control: null, show: (current) => {
      choose.disabled = current.disabled;
      choose.ariaLabel = `${current.name}: choose an image`;
      clear.ariaLabel = `${current.name}: remove the image`;
    } };
  }

  /** @param {Declared} row @param {HTMLElement} element @returns {Row} */
  makeOwn(row, element) {
    const image = make("img", { className: "own", alt: "", width: row.width, height: row.height });
    const dark = matchMedia("(prefers-color-scheme: dark)");
    const load = () => {
      image.src = `row?index=${row.index}&scale=${devicePixelRatio > 1 ? 2 : 1}&theme=${dark.matches ? "dark" : "light"}`;
    };
    dark.addEventListener("change", load);
    element.classList.add("wide");
    element.append(make("div", { className: "own-place" }, image));
    return { declared: row, element, control: null, show: ({ hidden }) => {
      if (!hidden && !image.src) load();
    } };
  }

  /**
   * Shows how the rows are now.
   * @param {Record<string, Current>} current
   */
  show(current) {
    this.current = current;
    let changedInAll = 0;
    /** @type {[Row, number][]} */
    const counts = [];
    for (const [key, row] of this.rows) {
      const now = current[key];
      if (!now) continue;
      row.element.hidden = now.hidden;
      const isChanged = now.text !== undefined && now.text !== row.declared.default;
      while (counts.length && counts[counts.length - 1][0].declared.depth >= row.declared.depth) counts.pop();
      if (row.count) counts.push([row, 0]);
      if (isChanged && !now.hidden) counts.forEach((entry) => entry[1]++);
      for (const [group, count] of counts) this.showCount(group, count);
      if (isChanged) changedInAll++;
      if (row.name) row.name.textContent = now.name;
      row.element.classList.toggle("is-disabled", now.disabled);
      if (row.keyHere) row.keyHere.disabled = now.disabled;
      if (row.control) row.element.classList.toggle("is-changed", isChanged);
      if (row.reset) {
        row.reset.title = `Reset to ${row.declared.default}`;
        row.reset.ariaLabel = `Reset ${now.name} to ${row.declared.default}`;
        row.reset.disabled = !isChanged;
      }
      row.control?.show(now, this.moving === key);
      row.show?.(now);
      this.showProblem(key, "");
    }
    return changedInAll;
  }

  /** @param {import("./types.js").Keyframes} keyframes @param {number} frame */
  showKeys(keyframes, frame) {
    for (const [key, { keyHere }] of this.rows) {
      if (!keyHere) continue;
      const isHere = Boolean(keyAt(keyframes, key, frame));
      keyHere.classList.toggle("moves", Boolean(keyframes[key]));
      keyHere.setAttribute("aria-pressed", String(isHere));
      keyHere.ariaLabel = `${this.current[key]?.name ?? key}: key at frame ${frame}`;
      keyHere.title = isHere ? "Remove the key at this frame" : "Set a key at this frame";
    }
  }

  /** @param {Row} group @param {number} count */
  showCount(group, count) {
    if (!group.count) return;
    group.count.textContent = count ? `${count} changed` : "";
  }

  /**
   * Shows why a row's value is refused; an empty sentence removes it.
   * @param {string} key @param {string} sentence
   */
  showProblem(key, sentence) {
    const row = this.rows.get(key);
    if (!row?.problem || (!sentence && row.problem.hidden)) return;
    row.problem.hidden = !sentence;
    row.problem.textContent = sentence;
    for (const field of row.element.querySelectorAll("input[type=text]")) {
      if (sentence) {
        field.setAttribute("aria-invalid", "true");
        field.setAttribute("aria-describedby", row.problem.id);
      } else {
        field.removeAttribute("aria-invalid");
        field.removeAttribute("aria-describedby");
      }
    }
  }

  /** @param {Layer | null} texture */
  showTexture(texture) {
    for (const element of this.place.querySelectorAll(".row.texture")) {
      const file = /** @type {HTMLElement} */ (element.querySelector(".file"));
      file.textContent = texture ? texture.name : "None";
      file.title = texture ? texture.name : "";
      element.classList.toggle("is-changed", Boolean(texture));
    }
  }
}
