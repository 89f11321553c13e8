// SPDX-License-Identifier: BSD-3-Clause
// The control of one row: what it shows, and what a person does with it. Values are texts as `--set` takes them.

/** @typedef {import("./types.js").Declared} Declared */
/** @typedef {import("./types.js").Current} Current */

/**
 * @typedef {object} Control
 * @property {HTMLElement} element
 * @property {(current: Current, isBusy: boolean) => void} show   `isBusy`: a person is about to change it
 * @property {boolean} [isWide]                                    takes the whole row
 * @property {boolean} [isGroup]                                   several elements, which need the row's name each
 */

/** @typedef {(text: string, moving: boolean) => void} Change */

let count = 0;

/**
 * @template {keyof HTMLElementTagNameMap} Tag
 * @param {Tag} tag
 * @param {object} [properties]
 * @param {...(Node | string)} children
 * @returns {HTMLElementTagNameMap[Tag]}
 */
export function make(tag, properties = {}, ...children) {
  const element = Object.assign(document.createElement(tag), properties);
  element.append(...children);
  return element;
}

/** @param {number} value @param {number} [precision] */
export function numberText(value, precision = 2) {
  return value.toFixed(precision).replace(/^-(0(\.0*)?)$/, "$1");
}

/**
 * A field for text that is taken over with Enter or when the field is left, and steps with the arrow keys.
 * @param {Change} change
 * @param {(text: string, steps: number) => string} [step]
 */
function textField(change, step) {
  const field = make("input", { type: "text", spellcheck: false, id: `field-${++count}` });
  field.addEventListener("change", () => change(field.value.trim(), false));
  field.addEventListener("keydown", (event) => {
    const direction = event.key === "ArrowUp" ? 1 : event.key === "ArrowDown" ? -1 : 0;
    if (direction && step) {
      event.preventDefault();
      field.value = step(field.value, direction * (event.shiftKey ? 10 : 1));
      change(field.value, false);
    }
  });
  return field;
}

/** @param {HTMLInputElement} field @param {string} text */
function setField(field, text) {
  if (document.activeElement !== field || field.dataset.shown !== text) field.value = text;
  field.dataset.shown = text;
}

/** @param {Declared} row @param {Change} change @returns {Control} */
function slider(row, change) {
  const precision = row.precision ?? 2;
  const unit = Math.pow(10, -precision);
  const low = row.sliderMin ?? 0;
  const high = row.sliderMax ?? 100;
  // A track of a few hundred pixels has no finer steps to offer.
  const step = Math.max(unit, Math.pow(10, Math.floor(Math.log10((high - low) / 200))));
  const range = make("input", { type: "range", min: String(low), max: String(high), step: String(step) });
  const field = textField(change, (text, steps) => numberText((parseFloat(text) || 0) + steps * Math.max(unit, step), precision));
  field.inputMode = "decimal";
  range.addEventListener("input", () => {
    field.value = numberText(range.valueAsNumber, precision);
    change(field.value, true);
  });
  range.addEventListener("change", () => change(numberText(range.valueAsNumber, precision), false));
  const number = make("span", { className: row.unit ? "number has-unit" : "number" }, field);
  if (row.unit) number.append(make("span", { className: "unit", textContent: row.unit, ariaHidden: "true" }));
  return {
    element: make("div", { className: "control" }, range, number),
    isGroup: true,
    show({ numbers = [0], disabled, name }, isBusy) {
      range.disabled = field.disabled = disabled;
      range.ariaLabel = name;
      field.ariaLabel = `${name}, number`;
      range.ariaValueText = `${numberText(numbers[0], precision)} ${row.unit ?? ""}`.trim();
      if (isBusy) return;
      range.value = String(numbers[0]);
      setField(field, numberText(numbers[0], precision));
    },
  };
}

/** @param {Declared} row @param {Change} change @returns {Control} */
function angle(row, change) {
  const needle = make("i");
  const dial = make("button", { type: "button", className: "dial", role: "slider" }, needle);
  const field = textField(change, (text, steps) => numberText((parseFloat(text) || 0) + steps, 1));
  field.inputMode = "decimal";
  let degrees = 0;
  const turn = (/** @type {number} */ value, /** @type {boolean} */ moving) => {
    degrees = value;
    needle.style.transform = `rotate(${value}deg)`;
    field.value = numberText(value, 1);
    change(numberText(value, 1), moving);
  };
  const follow = (/** @type {PointerEvent} */ event, /** @type {boolean} */ moving) => {
    const box = dial.getBoundingClientRect();
    const x = event.clientX - box.x - box.width / 2;
    const y = event.clientY - box.y - box.height / 2;
    let pointed = (Math.atan2(x, -y) * 180) / Math.PI;
    if (event.shiftKey) pointed = Math.round(pointed / 15) * 15;
    turn(nearestTurn(Math.round(pointed * 10) / 10, degrees), moving);
  };
  dial.addEventListener("pointerdown", (event) => {
    dial.setPointerCapture(event.pointerId);
    follow(event, true);
  });
  dial.addEventListener("pointermove", (event) => {
    if (dial.hasPointerCapture(event.pointerId)) follow(event, true);
  });
  dial.addEventListener("lostpointercapture", () => change(numberText(degrees, 1), false));
  dial.addEventListener("keydown", (event) => {
    const steps = { ArrowUp: 1, ArrowRight: 1, ArrowDown: -1, ArrowLeft: -1, PageUp: 15, PageDown: -15 }[event.key];
    if (!steps) return;
    event.preventDefault();
    turn(degrees + steps * (event.shiftKey ? 10 : 1), false);
  });
  const number = make("span", { className: "number has-unit" }, field,
    make("span", { className: "unit", textContent: "°", ariaHidden: "true" }));
  return {
    element: make("div", { className: "control" }, dial, number),
    isGroup: true,
    show({ numbers = [0], disabled, name }, isBusy) {
      dial.disabled = field.disabled = disabled;
      dial.ariaLabel = name;
      field.ariaLabel = `${name}, degrees`;
      if (isBusy) return;
      degrees = numbers[0];
      dial.ariaValueNow = String(degrees);
      dial.ariaValueMin = String(Math.min(0, degrees));
      dial.ariaValueMax = String(Math.max(360, degrees));
      dial.ariaValueText = `${numberText(degrees, 1)}°`;
      needle.style.transform = `rotate(${degrees}deg)`;
      setField(field, numberText(degrees, 1));
    },
  };
}

/**
 * The angle with the same direction that is nearest to another.
 * @param {number} pointed @param {number} before
 */
export function nearestTurn(pointed, before) {
  return pointed + 360 * Math.round((before - pointed) / 360);
}

/** @param {Declared} row @param {Change} change @returns {Control} */
function popup(row, change) {
  const select = make("select");
  (row.items ?? []).forEach((item, index) => {
    select.append(item.startsWith("(-") ? make("hr") : make("option", { value: String(index + 1), textContent: item }));
  });
  select.addEventListener("change", () => change(select.value, false));
  return {
    element: make("div", { className: "control" }, select),
    show({ numbers = [1], disabled, name }) {
      select.disabled = disabled;
      select.ariaLabel = name || row.key;
      select.value = String(numbers[0]);
    },
  };
}

/**
 * A popup with nothing to choose.
 * @param {Declared} row
 * @returns {Control}
 */
function readout(row) {
  return { element: make("div", { className: "control readout", textContent: row.items?.[0] ?? "" }), show() {} };
}

/** @param {Declared} row @param {Change} change @returns {Control} */
function check(row, change) {
  const box = make("input", { type: "checkbox" });
  box.addEventListener("change", () => change(box.checked ? "on" : "off", false));
  const label = make("label", { className: "check" }, box, row.label ?? "");
  return {
    element: make("div", { className: "control" }, label),
    show({ numbers = [0], disabled, name }) {
      box.disabled = disabled;
      box.ariaLabel = row.label ? `${name}: ${row.label}` : name;
      box.checked = numbers[0] !== 0;
    },
  };
}

/** @param {Declared} row @param {Change} change @returns {Control} */
function color(row, change) {
  const well = make("input", { type: "color" });
  const field = textField(change);
  well.addEventListener("input", () => {
    field.value = well.value;
    change(well.value, true);
  });
  well.addEventListener("change", () => change(well.value, false));
  return {
    element: make("div", { className: "control" }, well, field),
    isGroup: true,
    show({ text = "", numbers = [], disabled, name }, isBusy) {
      well.disabled = field.disabled = disabled;
      well.ariaLabel = name;
      field.ariaLabel = `${name}, as #rrggbb or a name`;
      if (isBusy) return;
      const channels = numbers.slice(-3).map((channel) => Math.round(channel).toString(16).padStart(2, "0"));
      well.value = `#${channels.join("")}`;
      setField(field, text);
    },
  };
}

/** @param {Declared} row @param {Change} change @param {number} size @returns {Control} */
function point(row, change, size) {
  const names = ["X", "Y", "Z"].slice(0, size);
  let isPercent = false;
  const send = () => change(fields.map((field) => field.value.trim() + (isPercent ? "%" : "")).join(","), false);
  const fields = names.map(() =>
    textField(send, (text, steps) => numberText((parseFloat(text) || 0) + steps, 1)));
  const parts = fields.map((field, i) =>
    make("label", { className: "coordinate" }, names[i], field));
  return {
    element: make("div", { className: "control" }, ...parts),
    isGroup: true,
    show({ numbers = [], percent = false, disabled, name }, isBusy) {
      if (!isBusy) isPercent = percent;
      fields.forEach((field, i) => {
        field.disabled = disabled;
        field.ariaLabel = `${name}, ${names[i]}${percent ? " in percent of the layer" : ""}`;
        if (!isBusy) setField(field, numberText(numbers[i] ?? 0, 1));
      });
    },
  };
}

/**
 * The control of a row that has a value; nothing for other rows.
 * @param {Declared} row @param {Change} change
 * @returns {Control | null}
 */
export function makeControl(row, change) {
  switch (row.kind) {
    case "slider": return slider(row, change);
    case "angle": return angle(row, change);
    case "popup": return row.items?.length === 1 ? readout(row) : popup(row, change);
    case "check": return check(row, change);
    case "color": return color(row, change);
    case "point": return point(row, change, 2);
    case "point3d": return point(row, change, 3);
    default: return null;
  }
}
