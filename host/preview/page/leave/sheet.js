// SPDX-License-Identifier: BSD-3-Clause
// The contact sheet: one parameter's values across, another's down, as one picture with labels.

/** @typedef {import("../types.js").Declared} Declared */
/** @typedef {{key: string, name: string, values: string[]}} Axis */

export const MOST_VALUES = 8;
const CELL = 320;
const GAP = 12;
const LABEL = 22;
const SIDE = 110;

/** Values to begin with. @param {Declared} row @param {string} now */
export function proposedValues(row, now) {
  if (row.kind === "angle") return "0 90 180 270";
  if (row.kind === "check") return "off on";
  if (row.kind === "popup") {
    const numbers = (row.items ?? []).flatMap((item, i) => (item.startsWith("(-") ? [] : [i + 1]));
    return numbers.slice(0, 4).join(" ");
  }
  if (row.kind !== "slider") return now;
  const [low, high] = [row.sliderMin ?? 0, row.sliderMax ?? 100];
  const at = (/** @type {number} */ share) => Number((low + share * (high - low)).toFixed(row.precision ?? 0));
  return [at(0.1), at(0.4), at(0.7)].join(" ");
}

/** The values of a text, between blanks. Throws an Error with a sentence. @param {string} text @param {string} name */
export function valuesOf(text, name) {
  const values = text.trim().split(/\s+/).filter(Boolean);
  if (!values.length) throw new Error(`${name} has no values; write some, with blanks between them.`);
  if (values.length > MOST_VALUES) throw new Error(`${name} has ${values.length} values; a sheet has at most ${MOST_VALUES} of each.`);
  return values;
}

/** @param {number[][]} rects left, top, right, bottom */
export function union(rects) {
  const side = (/** @type {number} */ i, /** @type {(...all: number[]) => number} */ pick) => pick(...rects.map((rect) => rect[i]));
  return [side(0, Math.min), side(1, Math.min), side(2, Math.max), side(3, Math.max)];
}

/**
 * Draws a sheet. Throws an Error with a sentence.
 * @param {object} what
 * @param {import("../connection.js").Connection} what.connection
 * @param {(values: Record<string, string>) => import("../types.js").Request} what.requestWith  with these values, which keep still
 * @param {Axis} what.across
 * @param {Axis | null} what.down
 * @param {number} what.width        the layer's, pixels
 * @param {string} what.title
 * @param {string} what.ground       a colour behind the pictures; empty for a checker
 * @param {AbortSignal} signal
 * @param {(done: number, all: number) => void} progress
 * @returns {Promise<Blob>}
 */
export async function drawSheet({ connection, requestWith, across, down, width, title, ground }, signal, progress) {
  const downsample = Math.min(Math.max(1, Math.ceil(width / CELL)), 64);
  const cells = (down?.values ?? [null]).flatMap((rowValue) => across.values.map((value) => ({
    ...requestWith({ [across.key]: value, ...(down && rowValue !== null ? { [down.key]: rowValue } : {}) }), downsample,
  })));
  const rects = [];
  for (const cell of cells) {
    signal.throwIfAborted();
    const reply = await connection.ask("covers", cell);
    if ("error" in reply) throw new Error(reply.error);
    rects.push(reply.canvas.split(",").map(Number));
  }
  const rect = union(rects);
  const pictures = [];
  for (const cell of cells) {
    progress(pictures.length, cells.length);
    pictures.push(await createImageBitmap(await connection.file("render", { ...cell, canvas: rect.join(","), format: "png" }, signal)));
  }
  return compose(pictures, across, down, title, ground, { rect, downsample });
}

/** @param {ImageBitmap[]} pictures @param {Axis} across @param {Axis | null} down @param {string} title @param {string} ground @param {object} facts */
function compose(pictures, across, down, title, ground, facts) {
  const [width, height] = [pictures[0].width, pictures[0].height];
  const columns = across.values.length;
  const left = down ? SIDE : GAP;
  const top = 44 + 2 * LABEL;
  const canvas = document.createElement("canvas");
  canvas.width = left + columns * (width + GAP);
  canvas.height = top + (pictures.length / columns) * (height + GAP);
  const context = /** @type {CanvasRenderingContext2D} */ (canvas.getContext("2d"));
  context.fillStyle = "#ffffff";
  context.fillRect(0, 0, canvas.width, canvas.height);
  const write = (/** @type {string} */ text, /** @type {number} */ x, /** @type {number} */ y, /** @type {number} */ room, bold = false) => {
    context.fillStyle = "#1b1d22";
    context.font = `${bold ? "600 15px" : "13px"} system-ui, "Noto Sans", sans-serif`;
    context.fillText(text, x, y, room);
  };
  write(title, GAP, 28, canvas.width - 2 * GAP, true);
  write(across.name, left, 44 + LABEL - 8, canvas.width - left - GAP);
  if (down) write(down.name, GAP, 44 + 2 * LABEL - 8, left - 2 * GAP);
  across.values.forEach((value, i) => write(value, left + i * (width + GAP), 44 + 2 * LABEL - 8, width, true));
  /** @type {number[][]} */
  const places = [];
  pictures.forEach((picture, i) => {
    const x = left + (i % columns) * (width + GAP);
    const y = top + Math.floor(i / columns) * (height + GAP);
    if (down && i % columns === 0) write(down.values[i / columns], GAP, y + 18, left - 2 * GAP, true);
    context.fillStyle = ground || checker(context);
    context.fillRect(x, y, width, height);
    context.drawImage(picture, x, y);
    places.push([x, y]);
  });
  // Tests read where the pictures are.
  Object.assign(window, { umbrantSheet: { ...facts, places } });
  return new Promise((resolve, reject) => canvas.toBlob((file) => (file ? resolve(file)
    : reject(new Error("The browser has no memory for the sheet; choose fewer values."))), "image/png"));
}

/** @param {CanvasRenderingContext2D} context */
function checker(context) {
  const tile = document.createElement("canvas");
  tile.width = tile.height = 20;
  const on = /** @type {CanvasRenderingContext2D} */ (tile.getContext("2d"));
  on.fillStyle = "#ffffff";
  on.fillRect(0, 0, 20, 20);
  on.fillStyle = "#e4e7ec";
  on.fillRect(0, 0, 10, 10);
  on.fillRect(10, 10, 10, 10);
  return /** @type {CanvasPattern} */ (context.createPattern(tile, "repeat"));
}
